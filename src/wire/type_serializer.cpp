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
    const auto unit = static_cast<std::uint16_t>((static_cast<unsigned char>(character) ^ 0x80u) - 0x80u);
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
  const std::optional<std::uint32_t> length = ReadLength();
  if (!length) return false;
  text.resize(*length);
  text.resize(ReadUnits(*length, text.data(), *length));
  return text.size() == *length;
}

bool CTypeSerializer::ReadFixedString(char* field, std::int32_t width) {
  const std::optional<std::uint32_t> length = ReadLength();
  if (!length) return false;
  if (*length < static_cast<std::uint32_t>(width) && *length <= UnitsAhead()) {
    // It fits and is there, so nothing can go wrong any more.
    TakeUnits(*length, field, *length);
    field[*length] = '\0';
    return true;
  }
  std::array<char, maxFieldWidth + 1> text;
  const std::uint32_t taken = std::min(*length, static_cast<std::uint32_t>(width));
  if (ReadUnits(*length, text.data(), taken) < *length) return false;
  text[taken] = '\0';
  const std::size_t size = std::strlen(text.data());
  if (size < static_cast<std::size_t>(width)) {
    std::memcpy(field, text.data(), size + 1);  // its last byte may well be none that a character ends with
  } else {
    // Cut where the terminator still has room, at the end of a character.
    _mbsnbcpy(reinterpret_cast<unsigned char*>(field), reinterpret_cast<const unsigned char*>(text.data()),
              static_cast<std::size_t>(width) - 1);
    field[width - 1] = '\0';
  }
  return true;
}

std::optional<std::uint32_t> CTypeSerializer::ReadLength() {
  std::uint32_t length = 0;
  ReadValue(length);
  return IsGood() && length <= maxStringLength ? std::optional(length) : std::nullopt;
}

std::uint32_t CTypeSerializer::ReadUnits(std::uint32_t length, char* text, std::uint32_t room) {
  std::uint32_t done = 0;
  while (done < length) {
    const std::uint32_t ahead = std::min(UnitsAhead(), length - done);
    const std::uint32_t written = std::min(done, room);
    TakeUnits(ahead, text + written, std::min(ahead, room - written));
    done += ahead;
    if (done == length) break;
    char unit[2] = {};
    ReadBlock(unit, static_cast<std::int32_t>(UnitSize()));
    if (!IsGood()) break;
    if (done < room) text[done] = unit[0];
    ++done;
  }
  return done;
}

void CTypeSerializer::TakeUnits(std::uint32_t length, char* text, std::uint32_t kept) {
  const std::uint8_t* const units = readAhead + readPos;
  readPos += length * UnitSize();
  count += length * UnitSize();
  if (!wide) {
    std::copy_n(units, kept, text);
    return;
  }
  // The low byte of each; the other one only repeats the sign.
  for (std::size_t unit = 0; unit < kept; ++unit) text[unit] = static_cast<char>(units[2 * unit]);
}

}  // namespace nvsupport
