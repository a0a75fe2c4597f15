// Replies of the map shop service, made by hand: the bytes, and where in them each item ends.
#ifndef NVSUPPORT_TESTS_MAPSHOP_MAP_SHOP_REPLY_H
#define NVSUPPORT_TESTS_MAPSHOP_MAP_SHOP_REPLY_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace nvsupport::testing {

// An item as the service has it, before fields cut it.
struct OfferedItem {
  std::string title;
  std::int32_t firstValue = 0;
  std::string shortText;
  std::string file;
  std::int32_t secondValue = 0;
};

inline std::string Int32(std::uint32_t value) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift);
  return bytes;
}

inline std::string Int32(std::int32_t value) {
  return Int32(static_cast<std::uint32_t>(value));
}

inline std::string Text(const std::string& text) {
  std::string bytes = Int32(static_cast<std::uint32_t>(text.size()));
  for (const char character : text) {
    bytes += character;
    bytes += static_cast<unsigned char>(character) >= 0x80 ? '\xFF' : '\0';
  }
  return bytes;
}

struct MapShopReply {
  MapShopReply& Add(const OfferedItem& item) {
    bytes += Text(item.title) + Int32(item.firstValue) + Text(item.shortText) + Text(item.file);
    lastValues.push_back(bytes.size());
    bytes += Int32(item.secondValue);
    return *this;
  }
  MapShopReply& Close(std::int32_t closingValue) {
    bytes += Int32(closingValue);
    return *this;
  }

  std::string bytes;
  std::vector<std::size_t> lastValues;  // where the last value of each item begins
};

// The head of a reply: success, the words to drop, the count of items.
inline MapShopReply ReplyOf(std::int32_t itemCount, const std::vector<std::int32_t>& dropped = {}) {
  MapShopReply reply;
  reply.bytes = Int32(0) + Int32(static_cast<std::int32_t>(dropped.size()));
  for (const std::int32_t word : dropped) reply.bytes += Int32(word);
  reply.bytes += Int32(itemCount);
  return reply;
}

// A reply with these items and a closing value.
inline MapShopReply ReplyWith(const std::vector<OfferedItem>& items, std::int32_t closingValue,
                              const std::vector<std::int32_t>& dropped = {}) {
  MapShopReply reply = ReplyOf(static_cast<std::int32_t>(items.size()), dropped);
  for (const OfferedItem& item : items) reply.Add(item);
  return std::move(reply.Close(closingValue));
}

}  // namespace nvsupport::testing

#endif
