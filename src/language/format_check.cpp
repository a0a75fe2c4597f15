#include "language/format_check.h"

#include <algorithm>

namespace nvsupport {
namespace {

// Everything that may stand between the '%' and the letter of a conversion, on any of the platforms: flags, width,
// precision, argument positions and sizes.
constexpr std::string_view conversionPrefixes = "-+ #0'123456789*.$hljztLqwIZ";

// Takes the next conversion off the front of a format; empty when there is none left.
std::string_view TakeConversion(std::string_view& format) {
  while (true) {
    format.remove_prefix(std::min(format.find('%'), format.size()));
    if (!format.starts_with("%%")) break;
    format.remove_prefix(2);
  }
  std::size_t length = std::min(format.find_first_not_of(conversionPrefixes, 1), format.size());
  // A '%' behind an unfinished conversion begins the next one.
  if (length < format.size() && format[length] != '%') ++length;
  const std::string_view conversion = format.substr(0, length);
  format.remove_prefix(length);
  return conversion;
}

}  // namespace

bool HaveSameConversions(std::string_view source, std::string_view translation) {
  while (true) {
    const std::string_view expected = TakeConversion(source);
    if (TakeConversion(translation) != expected) return false;
    if (expected.empty()) return true;
  }
}

}  // namespace nvsupport
