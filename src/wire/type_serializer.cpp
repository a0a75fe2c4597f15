#include "wire/type_serializer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string_view>

#include "platform/platform.h"

namespace nvsupport {

// Values go out as they lie in memory.
static_assert(std::endian::native == std::endian::little);

void CTypeSerializer::WriteValue(std::int32_t value) {
  WriteBlock(&value, sizeof value);
}

void CTypeSerializer::WriteValue(std::uint32_t value) {
  WriteBlock(&value, sizeof value);
}

void CTypeSerializer::WriteValue(std::uint8_t value) {
  WriteBlock(&value, sizeof value);
}

void CTypeSerializer::WriteBlock(const void* data, std::int32_t size) {
  Write(data, size);
  count += static_cast<std::uint32_t>(size);
}

void CTypeSerializer::WriteString(std::string_view text) {
  WriteValue(static_cast<std::uint32_t>(text.size()));
  std::array<char16_t, 256> units;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view piece = rest.substr(0, units.size());
    rest.remove_prefix(piece.size());
    // Widened with its sign, whatever the sign of char is here.
    const auto widen = [](char character) { return static_cast<char16_t>(static_cast<signed char>(character)); };
    std::transform(piece.begin(), piece.end(), units.begin(), widen);
    const void* const bytes = wide != 0 ? static_cast<const void*>(units.data()) : piece.data();
    WriteBlock(bytes, static_cast<std::int32_t>(piece.size() * UnitSize()));
  }
  // The text may be a secret, which must not stay behind on the stack.
  std::fill_n(static_cast<volatile char16_t*>(units.data()), std::min(text.size(), units.size()), u'\0');
}

void CTypeSerializer::ReadValue(std::int32_t& value) {
  ReadBlock(&value, sizeof value);
}

void CTypeSerializer::ReadValue(std::uint32_t& value) {
  ReadBlock(&value, sizeof value);
}

void CTypeSerializer::ReadValue(std::uint8_t& value) {
  ReadBlock(&value, sizeof value);
}

void CTypeSerializer::ReadBlock(void* data, std::int32_t size) {
  count += static_cast<std::uint32_t>(size);
  if (size > 0 && static_cast<std::uint32_t>(size) <= readEnd - readPos) {
    std::memcpy(data, readAhead + readPos, static_cast<std::size_t>(size));
    readPos += static_cast<std::uint32_t>(size);
    return;
  }
  const bool delivered = Read(data, size);
  good = IsGood() && delivered ? 1 : 0;
}

bool CTypeSerializer::ReadString(std::string& text) {
  text.clear();
  std::uint32_t length = 0;
  ReadValue(length);
  if (!IsGood() || length > maxStringLength) return false;
  text.reserve(length);
  while (text.size() < length) {
    AppendReadAhead(text, length);
    if (text.size() == length) break;
    char unit[2] = {};
    ReadBlock(unit, static_cast<std::int32_t>(UnitSize()));
    if (!IsGood()) return false;
    text += unit[0];  // the low byte; the other one only repeats the sign
  }
  return true;
}

void CTypeSerializer::AppendReadAhead(std::string& text, std::size_t length) {
  const std::uint32_t unitSize = UnitSize();
  const std::size_t units = std::min<std::size_t>((readEnd - readPos) / unitSize, length - text.size());
  const std::uint8_t* const from = readAhead + readPos;
  const std::size_t start = text.size();
  if (wide != 0) {
    text.resize(start + units);
    char* const to = text.data() + start;
    for (std::size_t unit = 0; unit < units; ++unit) to[unit] = static_cast<char>(from[2 * unit]);
  } else {
    text.append(reinterpret_cast<const char*>(from), units);
  }
  const auto size = static_cast<std::uint32_t>(units * unitSize);
  readPos += size;
  count += size;
}

bool CTypeSerializer::ReadFixedString(char* field, std::int32_t width) {
  std::string text;
  if (!ReadString(text)) return false;
  _mbsnbcpy(reinterpret_cast<unsigned char*>(field), reinterpret_cast<const unsigned char*>(text.c_str()),
            static_cast<std::size_t>(width));
  field[width - 1] = '\0';
  return true;
}

}  // namespace nvsupport
