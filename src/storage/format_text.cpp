#include "storage/format_text.h"

#include <cstdio>

namespace nvsupport {

std::string FormatTextArgs(const char* format, std::va_list arguments) {
  char buffer[1000] = {};
  // The caller's va_start is out of the checker's sight.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  std::vsnprintf(buffer, sizeof buffer, format, arguments);
  return buffer;
}

std::string FormatText(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::string text = FormatTextArgs(format, arguments);
  va_end(arguments);
  return text;
}

void AppendFormatText(std::string& target, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  target += FormatTextArgs(format, arguments);
  va_end(arguments);
}

}  // namespace nvsupport
