// What is wrong with a catalogue file, and what it lacks.
#ifndef NVSUPPORT_TOOLS_CATALOGUE_CATALOGUE_CHECK_H
#define NVSUPPORT_TOOLS_CATALOGUE_CATALOGUE_CHECK_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nvsupport {

// Stands in the place of a translation that is not made yet.
inline constexpr std::string_view placeholder = "XXXX";

inline std::string_view WithoutLineEnd(std::string_view column) {
  if (column.ends_with('\r')) column.remove_suffix(1);
  return column;
}

struct Finding {
  std::size_t line;  // counted from 1
  std::string message;
};

// What the reader will drop, replace or change against the translator's intention, in the order of the lines; then the
// letters that '&' marks for more than one text of a dialog.
std::vector<Finding> CheckCatalogue(std::string_view bytes);

// The texts that have no entry in the file.
std::vector<std::string_view> FindMissingTexts(std::string_view bytes, std::span<const std::string_view> texts);

// Writes a text as a column of a catalogue. A carriage return cannot be written.
std::string EscapeCatalogueText(std::string_view text);

}  // namespace nvsupport

#endif
