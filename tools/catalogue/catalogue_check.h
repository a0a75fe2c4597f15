// What is wrong with a catalogue file, and what it lacks.
#ifndef NVSUPPORT_TOOLS_CATALOGUE_CATALOGUE_CHECK_H
#define NVSUPPORT_TOOLS_CATALOGUE_CATALOGUE_CHECK_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nvsupport {

// What stands for a translation that is still to be made.
inline constexpr std::string_view placeholder = "XXXX";

inline std::string_view WithoutLineEnd(std::string_view column) {
  if (column.ends_with('\r')) column.remove_suffix(1);
  return column;
}

struct Finding {
  std::size_t line;  // counted from 1
  std::string message;
};

// What the reader will drop, replace or change although the translator hardly meant it, in the order of the lines; then
// the letters that '&' marks for more than one text of a dialog.
std::vector<Finding> CheckCatalogue(std::string_view bytes);

// Those of the texts that have no entry.
std::vector<std::string_view> FindMissingTexts(std::string_view bytes, std::span<const std::string_view> texts);

// A text as a column that the reader turns back into it. A carriage return has no such form.
std::string EscapeCatalogueText(std::string_view text);

}  // namespace nvsupport

#endif
