// The typed byte channel: how typed values become bytes, on top of the two virtual operations of a channel.
// Positional, least significant byte first; docs/wire_format.md describes the bytes of each item. A text that
// is too long for a fixed field is cut at a whole character.
#ifndef NVSUPPORT_WIRE_TYPE_SERIALIZER_H
#define NVSUPPORT_WIRE_TYPE_SERIALIZER_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nvsupport {

class CTypeSerializer {
 public:
  // What the channel is open for. Bookkeeping: no operation branches on it.
  enum Mode : std::int32_t { closed = 0, writing = 1, reading = 2 };

  // The longest string that ReadString takes, in characters.
  static constexpr std::uint32_t maxStringLength = 100000;
  static constexpr std::size_t maxFieldWidth = 1000;

  virtual void Write(const void* data, std::int32_t size) = 0;
  // True if bytes were delivered.
  virtual bool Read(void* data, std::int32_t size) = 0;

  void WriteValue(std::int32_t value);
  void WriteValue(std::uint32_t value);
  void WriteValue(std::uint8_t value);
  void WriteBlock(const void* data, std::int32_t size);
  void WriteString(std::string_view text);

  // Reads of what is missing clear `good`; the destination changes only as far as bytes arrive.
  void ReadValue(std::int32_t& value);
  void ReadValue(std::uint32_t& value);
  void ReadValue(std::uint8_t& value);
  void ReadBlock(void* data, std::int32_t size);
  // False when the string did not arrive whole or is over the limit; over the limit `good` stays as it was.
  bool ReadString(std::string& text);
  // Fills a character field of `width` bytes, at most maxFieldWidth, with at most width - 1 characters, always
  // terminated and cut at whole ones. On false the field is as it was.
  bool ReadFixedString(char* field, std::int32_t width);

  bool IsGood() const { return good; }
  std::uint32_t Count() const { return count; }

 protected:
  CTypeSerializer() = default;
  ~CTypeSerializer() = default;  // an object is always destroyed through its own class

  Mode mode = closed;
  bool good = true;         // sticky: cleared by a read or file operation that fails
  bool wide = true;         // strings travel in 2-byte units
  std::uint32_t count = 0;  // bytes that the typed operations have passed in the current direction

  // What a channel has read ahead: the typed reads take it from here, and go to Read for what reaches beyond it.
  const std::uint8_t* readAhead = nullptr;
  std::uint32_t readPos = 0;  // of the next byte in it
  std::uint32_t readEnd = 0;  // bytes in it

 private:
  std::uint32_t UnitSize() const { return wide ? 2 : 1; }
  // Whole ones that are read ahead.
  std::uint32_t UnitsAhead() const { return wide ? (readEnd - readPos) / 2 : readEnd - readPos; }
  // Puts down the units of a text; returns the bytes that they take up.
  std::size_t Encode(std::string_view text, char* to) const;
  // The length of a text; nothing if it did not come or is over the limit.
  std::optional<std::uint32_t> ReadLength();
  // Reads `length` units and puts the first of them down as characters, as far as there is room; returns how many came.
  std::uint32_t ReadUnits(std::uint32_t length, char* text, std::uint32_t room);
  // Takes `length` units that were read ahead and puts the first `kept` of them down as characters.
  void TakeUnits(std::uint32_t length, char* text, std::uint32_t kept);
};

}  // namespace nvsupport

#endif
