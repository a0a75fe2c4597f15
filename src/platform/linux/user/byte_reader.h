// Reads little-endian numbers from bytes that nothing vouches for: past their end everything is 0, and the reader has
// failed.
#ifndef NVSUPPORT_PLATFORM_LINUX_USER_BYTE_READER_H
#define NVSUPPORT_PLATFORM_LINUX_USER_BYTE_READER_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "resources.h"

namespace user {

class ByteReader {
 public:
  explicit ByteReader(Bytes source) : bytes(source) {}

  bool Good() const { return good; }
  bool AtEnd() const { return at == bytes.size(); }

  std::uint8_t Byte() { return static_cast<std::uint8_t>(Number(1)); }
  std::uint16_t Word() { return static_cast<std::uint16_t>(Number(2)); }
  std::int16_t Short() { return static_cast<std::int16_t>(Number(2)); }
  std::uint32_t DoubleWord() { return Number(4); }

  Bytes Take(std::size_t size) {
    if (size > bytes.size() - at) good = false;
    if (!good) return {};
    const Bytes taken = bytes.subspan(at, size);
    at += size;
    return taken;
  }
  // Goes on to a multiple of 4 from the beginning; the end is as good as one.
  void Align() { at = std::min((at + 3) / 4 * 4, bytes.size()); }

 private:
  std::uint32_t Number(std::size_t size) {
    std::uint32_t value = 0;
    unsigned shift = 0;
    for (const unsigned char byte : Take(size)) {
      value |= static_cast<std::uint32_t>(byte) << shift;
      shift += 8;
    }
    return value;
  }

  Bytes bytes;
  std::size_t at = 0;
  bool good = true;
};

}  // namespace user

#endif
