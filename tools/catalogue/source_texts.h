// Every English text that the library shows through the catalogue. A test compares the list with the dialog templates
// and the library's sources.
#ifndef NVSUPPORT_TOOLS_CATALOGUE_SOURCE_TEXTS_H
#define NVSUPPORT_TOOLS_CATALOGUE_SOURCE_TEXTS_H

#include <span>
#include <string_view>

namespace nvsupport {

// Each text once, in the order of the shipped catalogues.
std::span<const std::string_view> SourceTexts();

}  // namespace nvsupport

#endif
