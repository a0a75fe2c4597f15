// printf-style text, cut to 999 characters.
#ifndef NVSUPPORT_STORAGE_FORMAT_TEXT_H
#define NVSUPPORT_STORAGE_FORMAT_TEXT_H

#include <cstdarg>
#include <string>

namespace nvsupport {

[[gnu::format(printf, 1, 2)]] std::string FormatText(const char* format, ...);
[[gnu::format(printf, 1, 0)]] std::string FormatTextArgs(const char* format, std::va_list arguments);
[[gnu::format(printf, 2, 3)]] void AppendFormatText(std::string& target, const char* format, ...);

}  // namespace nvsupport

#endif
