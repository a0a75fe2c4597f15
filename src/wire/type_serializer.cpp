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
  // The length and the text leave in one Write, the rest of a long text in more.
  std::array<char, 512> piece;
  const auto length = static_cast<std::uint32_t>(text.size());
  std::memcpy(piece.data(), &length, sizeof length);
  std::size_t used = sizeof length;
  std::size_t wipe = 0;
  do {
    const std::string_view part = text.substr(0, (piece.size() - used) / UnitSize());
    text.remove_prefix(part.size());
    used += Encode(part, piece.data() + used);
    WriteBlock(piece.data(), static_cast<std::int32_t>(used));
    wipe = std::max(wipe, used);
    used = 0;
  } while (!text.empty());
  // The text may be a secret, which must not stay behind on the stack.
  SecureZeroMemory(piece.data(), wipe);
}

std::size_t CTypeSerializer::Encode(std::string_view text, char* to) const {
  if (!wide) return text.copy(to, text.size());
  for (const char character : text) {
    // Widened with its sign, whatever the sign of char is here.
    const auto unit = static_cast<std::uint16_t>(static_cast<signed char>(character));
    std::memcpy(to, &unit, sizeof unit);
    to += sizeof unit;
  }
  return text.size() * sizeof(std::uint16_t);
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
  good = good && delivered;
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
  if (wide) {
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
  // One that does not fit is cut where the terminator still has room, at the end of a character. One that fits is not
  // looked at: its last byte may well be none that a character ends with.
  const auto size = static_cast<std::size_t>(width);
  const std::size_t room = std::strlen(text.c_str()) < size ? size : size - 1;
  _mbsnbcpy(reinterpret_cast<unsigned char*>(field), reinterpret_cast<const unsigned char*>(text.c_str()), room);
  field[width - 1] = '\0';
  return true;
}

}  // namespace nvsupport
