// From one character set to another.
#ifndef NVSUPPORT_TOOLS_CATALOGUE_CHARACTER_SETS_H
#define NVSUPPORT_TOOLS_CATALOGUE_CHARACTER_SETS_H

#include <optional>
#include <string>
#include <string_view>

namespace nvsupport {

// Names as iconv has them. No value if the bytes are no text of the first set.
std::optional<std::string> Converted(const char* from, const char* to, std::string_view bytes);

}  // namespace nvsupport

#endif
