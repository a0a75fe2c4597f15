#include "wire/type_serializer.h"

#include <bit>

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

void CTypeSerializer::WriteString(const std::string& text) {
  WriteValue(static_cast<std::uint32_t>(text.size()));
  for (const char character : text) {
    // Widened with its sign, whatever the sign of char is here.
    const bool negative = static_cast<signed char>(character) < 0;
    const char unit[2] = {character, negative ? '\xFF' : '\0'};
    WriteBlock(unit, UnitSize());
  }
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
  const bool delivered = Read(data, size);
  good = IsGood() && delivered ? 1 : 0;
  count += static_cast<std::uint32_t>(size);
}

bool CTypeSerializer::ReadString(std::string& text) {
  text.clear();
  std::uint32_t length = 0;
  ReadValue(length);
  if (!IsGood() || length > maxStringLength) return false;
  text.reserve(length);
  for (std::uint32_t i = 0; i < length; ++i) {
    char unit[2] = {};
    ReadBlock(unit, UnitSize());
    if (!IsGood()) return false;
    text += unit[0];  // the low byte; the other one only repeats the sign
  }
  return true;
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
