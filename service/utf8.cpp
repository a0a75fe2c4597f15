#include "service/utf8.h"

#include <array>
#include <cstdint>

namespace nvsupport::service {
namespace {

constexpr char16_t replacement = 0xFFFD;

// Windows-1252 from 0x80 to 0x9F; above, it is Latin-1. The five that it leaves open stay control characters.
constexpr std::array<char16_t, 32> upperControls = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char16_t FromWindows1252(unsigned char c) {
  return c >= 0x80 && c < 0xA0 ? upperControls[c - 0x80U] : c;
}

// Of a character from U+0000 to U+FFFF.
void Append(std::string& text, char16_t c) {
  if (c < 0x80) {
    text += static_cast<char>(c);
  } else if (c < 0x800) {
    text += {static_cast<char>(0xC0 | c >> 6), static_cast<char>(0x80 | (c & 0x3F))};
  } else {
    text += {static_cast<char>(0xE0 | c >> 12), static_cast<char>(0x80 | (c >> 6 & 0x3F)),
             static_cast<char>(0x80 | (c & 0x3F))};
  }
}

// The length of the well-formed character at the beginning, 0 if there is none.
std::size_t CharacterLength(std::string_view text) {
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  if (first < 0x80) return 1;
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (text.size() < length) return 0;
  std::uint32_t character = first & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    character = character << 6 | (byte(i) & 0x3FU);
  }
  // The smallest that needs so many bytes; what is above Unicode's end and a half of a pair is no character.
  constexpr std::array<std::uint32_t, 5> smallest = {0, 0, 0x80, 0x800, 0x10000};
  const bool half = character >= 0xD800 && character <= 0xDFFF;
  return first < 0xC0 || character < smallest[length] || character > 0x10FFFF || half ? 0 : length;
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

}  // namespace

std::string ToUtf8(std::string_view text) {
  const bool asItIs = IsUtf8(text);
  std::string converted;
  for (const char c : text) {
    if (c == '\0') {
      Append(converted, replacement);
    } else if (asItIs) {
      converted += c;
    } else {
      Append(converted, FromWindows1252(static_cast<unsigned char>(c)));
    }
  }
  return converted;
}

}  // namespace nvsupport::service
