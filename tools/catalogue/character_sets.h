// Converts text from one character set to another.
#ifndef NVSUPPORT_TOOLS_CATALOGUE_CHARACTER_SETS_H
#define NVSUPPORT_TOOLS_CATALOGUE_CHARACTER_SETS_H

#include <optional>
#include <string>
#include <string_view>

namespace nvsupport {

// The names are those of iconv. No value if the bytes are no text in the first set.
std::optional<std::string> Converted(const char* from, const char* to, std::string_view bytes);

}  // namespace nvsupport

#endif
