#include <gtest/gtest.h>
#include <nvsupport/nvsupport.h>

#include <malloc.h>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "map_shop_reply.h"
#include "support/documented_bytes.h"
#include "support/scripted_server.h"
#include "support/short_timeouts.h"

// Counts what this program holds of its memory.
static std::atomic<std::size_t> heldBytes;

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  void* const memory = std::malloc(size);
  heldBytes += malloc_usable_size(memory);
  return memory;
}

void* operator new(std::size_t size) {
  return operator new(size, std::nothrow);
}

void operator delete(void* memory) noexcept {
  heldBytes -= malloc_usable_size(memory);
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  operator delete(memory);
}

namespace nvsupport {
namespace {

using namespace std::string_literals;
using testing::CutAfter;
using testing::HttpReply;
using testing::Int;
using testing::Item;
using testing::OfferedItem;
using testing::Reply;
using testing::ReplyWith;
using testing::Text;

constexpr std::int32_t huge = std::numeric_limits<std::int32_t>::max();

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

// The map shop service for as long as it lives: answers each search with the next reply.
class Service : public testing::ScriptedServer {
 public:
  explicit Service(std::vector<Reply> replies) : ScriptedServer(std::move(replies), NV_SERVICE_HOST) {}
  explicit Service(const std::string& body) : Service(std::vector{HttpReply(200, body)}) {}

  std::string LastRequestBody() const {
    const std::string request = Requests().back();
    return request.substr(request.find("\r\n\r\n") + 4);
  }
};

Found SearchAnswered(const std::string& body) {
  const Service service(body);
  return Search();
}

TEST(MapShopSearch, SpeaksAsTheFormatDocumentShowsAndLaysTheRecordOut) {
  // The status of HTTP is not looked at.
  const Service service(std::vector{HttpReply(404, testing::DocumentedBytes(NV_WIRE_FORMAT_PAGE, "reply"))});
  const Found found = Search({{50.5, 14.25}});
  EXPECT_EQ(service.LastRequestBody(), testing::DocumentedBytes(NV_WIRE_FORMAT_PAGE, "request"));
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
  EXPECT_EQ(service.LastRequestBody(), Int(101) + Int(4) + Int(3) + points + Int(0));
}

TEST(MapShopSearch, AsksNobodyAboutAnAreaOutOfRange) {
  const MapShopPoint good{50, 14};
  const MapShopPoint wrong[] = {{90.001, 0}, {-90.001, 0}, {0, 400.5}, {0, -400.5}};
  const Service service(ReplyWith({}, 5));
  for (const MapShopPoint& point : wrong) {
    EXPECT_EQ(Search({good, good, point}).closingValue, 0);
  }
  for (const std::int32_t count : {1, -1}) EXPECT_EQ(NSMapShopClose(NSMapShopSearch(nullptr, count)), 0) << count;
  EXPECT_TRUE(service.Requests().empty());
}

TEST(MapShopSearch, MarksPackagesByTheSuffixOfTheirFileAndCutsTexts) {
  const auto title = [](std::size_t length) { return std::string(length, 'T'); };
  const struct {
    std::string file, title, shown;
  } cases[] = {
      {".nvpkg", "Sea", "Package: Sea"},
      {"nvpkg", "Sea", "Sea"},
      {"folder/a.NvPkG", "Sea", "Package: Sea"},
      {"a-nvpkg", "Sea", "Sea"},
      {"a.nvpkg2", "Sea", "Sea"},
      {"a.nvpkg", title(190), "Package: " + title(190)},
      {"a.nvpkg", title(191), "Package: " + title(190)},
      {"a.map", title(2000), title(199)},
      {std::string(993, 'f') + ".nvpkg", "Sea", "Package: Sea"},
      {std::string(994, 'f') + ".nvpkg", "Sea", "Sea"},
  };
  std::vector<OfferedItem> offered;
  for (const auto& each : cases) offered.push_back({each.title, 0, each.file, each.file, 0});
  const Found found = SearchAnswered(ReplyWith(offered, 0));
  ASSERT_EQ(found.items.size(), offered.size());
  for (std::size_t i = 0; i < offered.size(); ++i) {
    EXPECT_EQ(found.items[i].title, cases[i].shown) << cases[i].file;
    EXPECT_EQ(found.items[i].shortText, cases[i].file.substr(0, 99));
    EXPECT_EQ(found.items[i].fileReference, cases[i].file.substr(0, 999));
  }
}

TEST(MapShopSearch, KeepsWhatCameBeforeAReplyBrokeOffAtAnyByte) {
  const std::vector<OfferedItem> offered = {{"Norrland", 1, "N", "n.map", 2}, {"H\xF6hen", -2, "", "h.nvpkg", -3}};
  const std::string reply = ReplyWith(offered, 9, {1, 2});
  const std::size_t secondEnd = reply.size() - 4;
  const std::size_t firstEnd = secondEnd - Item(offered[1]).size();
  const Reply answer = HttpReply(200, reply);
  const std::size_t head = answer.bytes.size() - reply.size();
  std::vector<Reply> answers;
  for (std::size_t size = head; size <= answer.bytes.size(); ++size) answers.push_back(CutAfter(answer, size));
  const Service service(answers);
  for (std::size_t cut = 0; cut <= reply.size(); ++cut) {
    const Found found = Search();
    // An item counts once the first byte of its last value is there: the road gives partial values as they came.
    const std::size_t whole = cut > secondEnd - 4 ? 2 : cut > firstEnd - 4 ? 1 : 0;
    EXPECT_EQ(found.items.size(), whole) << cut;
    const std::string last = found.items.empty() ? "" : found.items.back().title;
    EXPECT_EQ(last, whole == 2 ? "Package: H\xF6hen" : whole == 1 ? "Norrland" : "") << cut;
    EXPECT_EQ(found.closingValue, cut > secondEnd ? 9 : 0) << cut;
  }
}

TEST(MapShopSearch, TakesWhatIsSoundInABrokenReply) {
  const std::string item = Item({"a", 1, "b", "c", 2});
  const std::string tooLong = Int(100001) + std::string(200, '\0');  // which would read as whole items
  const OfferedItem longest{std::string(100000, 't'), 1, "s", "f", 2};
  const struct {
    const char* what;
    std::string reply;
    std::size_t items;
    std::int32_t closing;
  } cases[] = {
      {"endless skips", Int(0) + Int(huge) + Int(1) + Int(2), 0, 0},
      {"more skips than a reply may have",
       Int(0) + Int(300'000) + std::string(1'200'000, '\0') + Int(1) + item + Int(7), 0, 0},
      {"skips below zero", Int(0) + Int(-1) + Int(1) + item + Int(7), 1, 7},
      {"endless items", Int(0) + Int(0) + Int(huge) + item + item, 2, 0},
      {"refused", Int(1) + Int(0) + Int(1) + item + Int(7), 0, 0},
      {"title too long", Int(0) + Int(0) + Int(3) + item + tooLong, 1, 0},
      {"file too long", Int(0) + Int(0) + Int(3) + item + Text("t") + Int(0) + Text("s") + tooLong, 1, 0},
      {"longest title", ReplyWith({longest}, 9), 1, 9},
  };
  const testing::ShortTimeouts andSizes;
  for (const auto& each : cases) {
    const Found found = SearchAnswered(each.reply);
    EXPECT_EQ(found.items.size(), each.items) << each.what;
    EXPECT_EQ(found.closingValue, each.closing) << each.what;
  }
}

TEST(MapShopSearch, HoldsNoMoreThanTwiceTheReply) {
  for (const char* file : {"", ".nvpkg"}) {
    const std::string reply = ReplyWith(std::vector<OfferedItem>(10'000, {"", 1, "", file, -1}), 9);
    const Service service(reply);
    const NVMapShopHandle handle = NSMapShopSearch(nullptr, 0);
    const std::size_t before = heldBytes;
    EXPECT_EQ(NSMapShopClose(handle), 9);
    EXPECT_LE(before - heldBytes, 2 * reply.size()) << file;
  }
}

TEST(MapShopSearch, GivesEachHandleItsOwnResults) {
  const Service service(ReplyWith({{"a", 1, "", "", 0}}, 5));
  const NVMapShopHandle first = NSMapShopSearch(nullptr, 0);
  const NVMapShopHandle second = NSMapShopSearch(nullptr, 0);
  MapShopItem item;
  EXPECT_TRUE(NSMapShopGetNext(first, &item));
  EXPECT_EQ(NSMapShopClose(first), 5);
  EXPECT_TRUE(NSMapShopGetNext(second, &item));
  item.firstValue = 77;
  for (const NVMapShopHandle exhausted : {second, second, NVMapShopHandle{}}) {
    EXPECT_FALSE(NSMapShopGetNext(exhausted, &item));
    EXPECT_EQ(item.firstValue, 77) << "the end leaves the host's record alone";
  }
  EXPECT_EQ(NSMapShopClose(second), 5);
  EXPECT_EQ(NSMapShopClose(nullptr), 0);
}

}  // namespace
}  // namespace nvsupport
