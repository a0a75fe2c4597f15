// Replies of the map shop service, made by hand.
#ifndef NVSUPPORT_TESTS_MAPSHOP_MAP_SHOP_REPLY_H
#define NVSUPPORT_TESTS_MAPSHOP_MAP_SHOP_REPLY_H

#include <cstdint>
#include <string>
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

inline std::string Item(const OfferedItem& item) {
  return Text(item.title) + Int(item.firstValue) + Text(item.shortText) + Text(item.file) + Int(item.secondValue);
}

// A reply with these items and a closing value; `dropped` are the words that a client drops.
inline std::string ReplyWith(const std::vector<OfferedItem>& items, std::int32_t closingValue,
                             const std::vector<std::int32_t>& dropped = {}) {
  std::string reply = Int(0) + Int(dropped.size());
  for (const std::int32_t word : dropped) reply += Int(word);
  reply += Int(items.size());
  for (const OfferedItem& item : items) reply += Item(item);
  return reply + Int(closingValue);
}

}  // namespace nvsupport::testing

#endif
