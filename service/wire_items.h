// The items of requests and replies: numbers with the least significant byte first, texts as a length and two bytes for
// each character. It shares no code with the client's serializer on purpose, so that each checks the other.
#ifndef NVSUPPORT_SERVICE_WIRE_ITEMS_H
#define NVSUPPORT_SERVICE_WIRE_ITEMS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "service/status.h"

namespace nvsupport::service {

// Reads the items of a request. One that is missing or not acceptable makes the whole request fail: it and all items
// behind it read as zero or empty, so a caller reads everything and asks `Complete` once.
class RequestReader {
 public:
  // `bytes` must outlive the reader.
  explicit RequestReader(std::string_view bytes) : rest(bytes) {}

  std::uint32_t Word() { return static_cast<std::uint32_t>(Number(4)); }
  std::uint8_t Byte() { return static_cast<std::uint8_t>(Number(1)); }
  double Real();
  // A text of at most `limit` characters; of each two-byte unit the low byte counts.
  std::string Text(std::size_t limit);

  std::size_t Remaining() const { return rest.size(); }
  // True if every item was there and nothing is left.
  bool Complete() const { return good && rest.empty(); }

 private:
  std::uint64_t Number(std::size_t width);
  void Fail();

  std::string_view rest;
  bool good = true;
};

// Puts a reply together, or a piece of one.
class ReplyWriter {
 public:
  ReplyWriter() = default;
  explicit ReplyWriter(Status status) { Word(static_cast<std::uint32_t>(status)); }

  void Word(std::uint32_t value);
  // Each byte is sent as two bytes, sign-extended.
  void Text(std::string_view text);
  const std::string& Bytes() const { return bytes; }
  void Clear() { bytes.clear(); }

 private:
  std::string bytes;
};

}  // namespace nvsupport::service

#endif
