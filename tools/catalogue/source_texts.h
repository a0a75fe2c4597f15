// Every English text that the library shows through the catalogue.
#ifndef NVSUPPORT_TOOLS_CATALOGUE_SOURCE_TEXTS_H
#define NVSUPPORT_TOOLS_CATALOGUE_SOURCE_TEXTS_H

#include <span>
#include <string_view>

namespace nvsupport {

// Each text once: those of the dialogs, then those of the sources.
std::span<const std::string_view> SourceTexts();
// The texts of message boxes.
std::span<const std::string_view> MessageTexts();

struct DialogText {
  int dialog;
  std::string_view text;
};

// The texts of the dialogs' controls, each once for each dialog that has it.
std::span<const DialogText> DialogTexts();

}  // namespace nvsupport

#endif
