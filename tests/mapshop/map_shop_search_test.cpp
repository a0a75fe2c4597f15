#include <gtest/gtest.h>
#include <nvsupport/nvsupport.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "map_shop_reply.h"
#include "support/documented_bytes.h"
#include "support/scripted_server.h"
#include "support/short_timeouts.h"

namespace nvsupport {
namespace {

using namespace std::string_literals;
using testing::HttpReply;
using testing::Int;
using testing::Item;
using testing::OfferedItem;
using testing::ReplyWith;
using testing::ScriptedServer;
using testing::Text;

struct Found {
  std::vector<MapShopItem> items;
  std::int32_t closingValue;
};

Found Search(const std::vector<MapShopPoint>& area = {}) {
  const NVMapShopHandle handle = NSMapShopSearch(area.data(), static_cast<std::int32_t>(area.size()));
  Found found{};
  MapShopItem item;
  while (NSMapShopGetNext(handle, &item)) found.items.push_back(item);
  found.closingValue = NSMapShopClose(handle);
  return found;
}

TEST(MapShopSearch, SpeaksAsTheFormatDocumentShowsAndLaysTheRecordOut) {
  // The status of HTTP is not looked at.
  const ScriptedServer service(HttpReply(404, testing::DocumentedBytes(NV_WIRE_FORMAT_PAGE, "reply")), NV_SERVICE_HOST);
  const auto lastBody = [&] {
    const std::string request = service.Requests().back();
    return request.substr(request.find("\r\n\r\n") + 4);
  };
  const Found found = Search({{50.5, 14.25}});
  EXPECT_EQ(lastBody(), testing::DocumentedBytes(NV_WIRE_FORMAT_PAGE, "request"));
  ASSERT_EQ(found.items.size(), 1u);
  const auto* record = reinterpret_cast<const char*>(&found.items[0]);
  EXPECT_EQ(std::string(record, 4), "\7\0\0\0"s);
  EXPECT_STREQ(record + 4, "Package: Caf\xE9");
  EXPECT_STREQ(record + 204, "");
  EXPECT_STREQ(record + 304, "a.nvPKG");
  EXPECT_EQ(std::string(record + 1304, 4), "\xFE\xFF\xFF\xFF"s);
  EXPECT_EQ(found.closingValue, 9);

  const std::vector<MapShopPoint> bounds = {{90, 400}, {-90, -400}, {std::nan(""), 399.5}};
  Search(bounds);
  const std::string points(reinterpret_cast<const char*>(bounds.data()), bounds.size() * sizeof(MapShopPoint));
  EXPECT_EQ(lastBody(), Int(101) + Int(4) + Int(3) + points + Int(0));
}

TEST(MapShopSearch, AsksNobodyAboutAnAreaOutOfRange) {
  const ScriptedServer service(HttpReply(200, ReplyWith({}, 5)), NV_SERVICE_HOST);
  for (const MapShopPoint& point : {MapShopPoint{90.001, 0}, {-90.001, 0}, {0, 400.5}, {0, -400.5}}) {
    EXPECT_EQ(Search({{50, 14}, point}).closingValue, 0) << point.latitude << ' ' << point.longitude;
  }
  const MapShopPoint point{50, 14};
  for (const std::int32_t count : {1, -1, std::numeric_limits<std::int32_t>::max()}) {
    EXPECT_EQ(NSMapShopClose(NSMapShopSearch(count == 1 ? nullptr : &point, count)), 0) << count;
  }
  EXPECT_TRUE(service.Requests().empty());
}

TEST(MapShopSearch, MarksPackagesByTheSuffixOfTheirFileAndCutsTexts) {
  const auto text = [](std::size_t length, std::string_view end = {}) { return std::string(length, 'T').append(end); };
  const struct {
    std::string file, title, shown;
  } cases[] = {
      {".nvpkg", "Sea", "Package: Sea"},
      {"nvpkg", "Sea", "Sea"},
      {"folder/a.NvPkG", "Sea", "Package: Sea"},
      {"a-nvpkg", "Sea", "Sea"},
      {"a.nvpkg.map", "Sea", "Sea"},
      {"a.nvpkg\0.map"s, "Sea\0land"s, "Package: Sea"},
      {"a.nvpkg", text(190), "Package: " + text(190)},
      {"a.nvpkg", text(191), "Package: " + text(190)},
      {"a.nvpkg", text(189, "\u00e9"), "Package: " + text(189, "\xc3")},
      {"a.map", text(2000), text(199)},
      {"a.map", text(196, "\u20ac"), text(196, "\u20ac")},
      {"a.map", text(198, "\u20ac"), text(198)},
      {"a.map", text(198, "\u00e9"), text(198)},
      {"a.map", text(198, "\xc3"), text(198, "\xc3")},
      {"a.map", text(198, "\xff\u00e9"), text(198, "\xff")},
      {text(993, ".nvpkg"), "Sea", "Package: Sea"},
      {text(994, ".nvpkg"), "Sea", "Sea"},
  };
  for (const auto& row : cases) {
    const ScriptedServer service(HttpReply(200, ReplyWith({{row.title, 0, row.file, row.file, 0}}, 0)),
                                 NV_SERVICE_HOST);
    const NVMapShopHandle results = NSMapShopSearch(nullptr, 0);
    std::string record(sizeof(MapShopItem), '\xaa');
    auto& item = *reinterpret_cast<MapShopItem*>(record.data());
    EXPECT_TRUE(NSMapShopGetNext(results, &item)) << row.file;
    EXPECT_EQ(record.find('\xaa'), std::string::npos) << "all of the record is written";
    EXPECT_EQ(item.title, row.shown) << row.file;
    EXPECT_STREQ(item.shortText, row.file.substr(0, 99).c_str());
    EXPECT_STREQ(item.fileReference, row.file.substr(0, 999).c_str());
    NSMapShopClose(results);
  }
}

TEST(MapShopSearch, TakesWhatIsSoundInABrokenReply) {
  constexpr std::int32_t huge = std::numeric_limits<std::int32_t>::max();
  const OfferedItem offered{"a", 1, "b", "c", 2};
  const std::string item = Item(offered);
  const std::string tooLong = Int(100001) + std::string(200, '\0');  // which would read as whole items
  const std::string whole = ReplyWith({offered, offered}, 9, {1, 2});
  const auto without = [&](std::size_t bytes) { return whole.substr(0, whole.size() - bytes); };
  const struct {
    const char* what;
    std::string reply;
    std::size_t items;
    std::int32_t closing;
  } cases[] = {
      {"whole", whole, 2, 9},
      {"ends before the closing value", without(4), 2, 0},
      {"ends in the second item's last value", without(7), 2, 0},
      {"ends before the second item's last value", without(8), 1, 0},
      {"ends in the second item's title", without(item.size()), 1, 0},
      {"ends in the first item", without(4 + item.size() + 8), 0, 0},
      {"ends in the skips", Int(0) + Int(2) + Int(1), 0, 0},
      {"endless skips", Int(0) + Int(huge) + Int(1) + Int(2), 0, 0},
      {"more skips than a reply may have",
       Int(0) + Int(300'000) + std::string(1'200'000, '\0') + Int(1) + item + Int(7), 0, 0},
      {"skips below zero", Int(0) + Int(-1) + Int(1) + item + Int(7), 1, 7},
      {"endless items", Int(0) + Int(0) + Int(huge) + item + item, 2, 0},
      {"refused", Int(1) + Int(0) + Int(1) + item + Int(7), 0, 0},
      {"title too long", Int(0) + Int(0) + Int(3) + item + tooLong, 1, 0},
      {"file too long", Int(0) + Int(0) + Int(3) + item + Text("t") + Int(0) + Text("s") + tooLong, 1, 0},
      {"longest title", ReplyWith({{std::string(100000, 't'), 1, "s", "f", 2}}, 9), 1, 9},
  };
  const testing::ShortTimeouts andSizes;
  for (const auto& row : cases) {
    const ScriptedServer service(HttpReply(200, row.reply), NV_SERVICE_HOST);
    const Found found = Search();
    EXPECT_EQ(found.items.size(), row.items) << row.what;
    EXPECT_EQ(found.closingValue, row.closing) << row.what;
  }
}

TEST(MapShopSearch, GivesManyRecordsInOrder) {
  std::vector<OfferedItem> offered;
  offered.reserve(400);
  for (std::int32_t i = 0; i < 400; ++i)
    offered.push_back({std::to_string(i), i, "", std::string(static_cast<std::size_t>(3 * i), 'f'), -i});
  const ScriptedServer service(HttpReply(200, ReplyWith(offered, 9)), NV_SERVICE_HOST);
  const Found found = Search();
  ASSERT_EQ(found.items.size(), offered.size());
  for (std::size_t i = 0; i < offered.size(); ++i) {
    EXPECT_EQ(found.items[i].title, offered[i].title);
    EXPECT_EQ(std::strlen(found.items[i].fileReference), std::min<std::size_t>(3 * i, 999));
    EXPECT_EQ(found.items[i].secondValue, offered[i].secondValue);
  }
}

TEST(MapShopSearch, GivesEachHandleItsOwnResults) {
  const ScriptedServer service(HttpReply(200, ReplyWith({{"a", 1, "", "", 0}}, 5)), NV_SERVICE_HOST);
  const NVMapShopHandle first = NSMapShopSearch(nullptr, 0);
  const NVMapShopHandle second = NSMapShopSearch(nullptr, 0);
  MapShopItem item;
  EXPECT_TRUE(NSMapShopGetNext(first, &item));
  EXPECT_EQ(NSMapShopClose(first), 5);
  EXPECT_FALSE(NSMapShopGetNext(second, nullptr));
  EXPECT_TRUE(NSMapShopGetNext(second, &item));
  item.firstValue = 77;
  EXPECT_FALSE(NSMapShopGetNext(second, &item));
  EXPECT_EQ(item.firstValue, 77) << "the end leaves the host's record alone";
  EXPECT_FALSE(NSMapShopGetNext(nullptr, &item));
  EXPECT_EQ(NSMapShopClose(second), 5);
  EXPECT_EQ(NSMapShopClose(nullptr), 0);
}

}  // namespace
}  // namespace nvsupport
