// The bytes of the services' items, written without any of the library's code.
#ifndef NVSUPPORT_TESTS_SUPPORT_WIRE_ITEMS_H
#define NVSUPPORT_TESTS_SUPPORT_WIRE_ITEMS_H

#include <concepts>
#include <string>

namespace nvsupport::testing {

std::string Int(std::integral auto value) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift & 0xFF);
  return bytes;
}

inline std::string Text(const std::string& text) {
  std::string bytes = Int(text.size());
  for (const char byte : text) (bytes += byte) += (byte & 0x80) != 0 ? '\xFF' : '\0';
  return bytes;
}

}  // namespace nvsupport::testing

#endif
