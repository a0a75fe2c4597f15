#include "service/wire_items.h"

#include <bit>

namespace nvsupport::service {

void RequestReader::Fail() {
  good = false;
  rest = {};
}

std::uint64_t RequestReader::Number(std::size_t width) {
  if (rest.size() < width) {
    Fail();
    return 0;
  }
  std::uint64_t value = 0;
  for (std::size_t i = width; i-- > 0;) value = value << 8 | static_cast<unsigned char>(rest[i]);
  rest.remove_prefix(width);
  return value;
}

double RequestReader::Real() {
  return std::bit_cast<double>(Number(8));
}

std::string RequestReader::Text(std::size_t limit) {
  const std::size_t length = Word();
  if (length > limit || length > rest.size() / 2) {
    Fail();
    return {};
  }
  std::string text;
  text.reserve(length);
  for (std::size_t i = 0; i < length; ++i) text.push_back(rest[2 * i]);
  rest.remove_prefix(2 * length);
  return text;
}

void ReplyWriter::Word(std::uint32_t value) {
  for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<char>(value >> shift & 0xFF));
}

void ReplyWriter::Text(std::string_view text) {
  Word(static_cast<std::uint32_t>(text.size()));
  std::size_t at = bytes.size();
  bytes.resize(at + 2 * text.size());
  for (const char c : text) {
    bytes[at++] = c;
    bytes[at++] = static_cast<unsigned char>(c) < 0x80 ? '\0' : '\xFF';
  }
}

}  // namespace nvsupport::service
