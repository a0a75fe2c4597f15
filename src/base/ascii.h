// ASCII text, whatever the locale: trimming, letters of either case, control characters, hexadecimal digits. Knows
// neither the library nor the system, so both sides of the platform seam use it.
#ifndef NVSUPPORT_BASE_ASCII_H
#define NVSUPPORT_BASE_ASCII_H

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace base {

inline constexpr std::string_view lowerHexDigits = "0123456789abcdef";

// The text without those of `marks` that stand at its ends.
constexpr std::string_view Trim(std::string_view text, std::string_view marks) {
  const std::size_t start = text.find_first_not_of(marks);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(marks) - start + 1);
}

constexpr char ToLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string ToLower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = ToLower(c);
  return lower;
}

constexpr bool IsLetterOrDigit(char c) {
  return (c >= '0' && c <= '9') || (ToLower(c) >= 'a' && ToLower(c) <= 'z');
}

// A line end or a zero in a text that becomes part of a line could smuggle in another line.
constexpr bool HasControlCharacters(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; });
}

// -1 for any other character.
constexpr int HexDigitValue(char c) {
  const std::size_t value = lowerHexDigits.find(ToLower(c));
  return value != std::string_view::npos ? static_cast<int>(value) : -1;
}

inline void AppendHexByte(std::string& text, std::uint8_t byte) {
  text += {lowerHexDigits[byte >> 4], lowerHexDigits[byte & 0xF]};
}

}  // namespace base

#endif
