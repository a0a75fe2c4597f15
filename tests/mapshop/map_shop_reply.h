// Replies of the map shop service, made by hand: the bytes, and where in them each item ends.
#ifndef NVSUPPORT_TESTS_MAPSHOP_MAP_SHOP_REPLY_H
#define NVSUPPORT_TESTS_MAPSHOP_MAP_SHOP_REPLY_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "support/wire_items.h"

namespace nvsupport::testing {

// An item as the service has it, before fields cut it.
struct OfferedItem {
  std::string title;
  std::int32_t firstValue = 0;
  std::string shortText;
  std::string file;
  std::int32_t secondValue = 0;
};

struct MapShopReply {
  MapShopReply& Add(const OfferedItem& item) {
    bytes += Text(item.title) + Int(item.firstValue) + Text(item.shortText) + Text(item.file);
    lastValues.push_back(bytes.size());
    bytes += Int(item.secondValue);
    return *this;
  }
  MapShopReply& Close(std::int32_t closingValue) {
    bytes += Int(closingValue);
    return *this;
  }

  std::string bytes;
  std::vector<std::size_t> lastValues;  // where the last value of each item begins
};

// The head of a reply: success, the words to drop, the count of items.
inline MapShopReply ReplyOf(std::int32_t itemCount, const std::vector<std::int32_t>& dropped = {}) {
  MapShopReply reply;
  reply.bytes = Int(0) + Int(static_cast<std::int32_t>(dropped.size()));
  for (const std::int32_t word : dropped) reply.bytes += Int(word);
  reply.bytes += Int(itemCount);
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
