#include <gtest/gtest.h>
#include <nvsupport/nvsupport.h>

#include <malloc.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "map_shop_reply.h"
#include "support/documented_bytes.h"
#include "support/routed_server.h"
#include "support/short_timeouts.h"

// Counts what this program holds of its memory.
static std::atomic<std::size_t> heldBytes;

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  void* const memory = std::malloc(size);
  heldBytes += malloc_usable_size(memory);
  return memory;
}

void* operator new(std::size_t size) {
  if (void* const memory = operator new(size, std::nothrow)) return memory;
  throw std::bad_alloc();
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
using testing::MapShopReply;
using testing::OfferedItem;
using testing::Reply;
using testing::ReplyOf;
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
class Service : public testing::RoutedServer {
 public:
  explicit Service(std::vector<Reply> replies) : RoutedServer(std::move(replies), nullptr, NV_SERVICE_HOST) {}
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

TEST(MapShopSearch, SendsThePointsAsTheyStandInMemory) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<MapShopPoint> areas[] = {{}, {{90, 400}, {-90, -400}, {nan, 399.5}}};
  for (const auto& area : areas) {
    const Service service(ReplyWith({}, 5).bytes);
    EXPECT_EQ(Search(area).closingValue, 5);
    const std::string points(reinterpret_cast<const char*>(area.data()), area.size() * sizeof(MapShopPoint));
    EXPECT_EQ(service.LastRequestBody(), Int(101) + Int(4) + Int(area.size()) + points + Int(0));
  }
}

TEST(MapShopSearch, SpeaksAsTheFormatDocumentShowsAndLaysTheRecordOut) {
  const Service service(testing::DocumentedBytes(NV_WIRE_FORMAT_PAGE, "reply"));
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
}

TEST(MapShopSearch, AsksNobodyAboutAnAreaOutOfRange) {
  const MapShopPoint good{50, 14};
  const MapShopPoint wrong[] = {{90.001, 0}, {-90.001, 0}, {0, 400.5}, {0, -400.5}};
  const Service service(ReplyWith({}, 5).bytes);
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
      {"a.nvpkg", "", "Package: "},
      {"a.nvpkg", title(190), "Package: " + title(190)},
      {"a.nvpkg", title(191), "Package: " + title(190)},
      {"a.nvpkg", title(199), "Package: " + title(190)},
      {"a.map", title(2000), title(199)},
      {std::string(993, 'f') + ".nvpkg", "Sea", "Package: Sea"},
      {std::string(994, 'f') + ".nvpkg", "Sea", "Sea"},
  };
  std::vector<OfferedItem> offered;
  for (const auto& each : cases) offered.push_back({each.title, 0, each.file, each.file, 0});
  const Found found = SearchAnswered(ReplyWith(offered, 0).bytes);
  ASSERT_EQ(found.items.size(), offered.size());
  for (std::size_t i = 0; i < offered.size(); ++i) {
    EXPECT_EQ(found.items[i].title, cases[i].shown) << cases[i].file;
    EXPECT_EQ(found.items[i].shortText, cases[i].file.substr(0, 99));
    EXPECT_EQ(found.items[i].fileReference, cases[i].file.substr(0, 999));
  }
}

// The low bytes of a value as far as they lie in front of `cut`; the missing ones are 0.
std::int32_t ValueCutAt(std::int32_t value, std::size_t begin, std::size_t cut) {
  const std::size_t arrived = cut > begin ? std::min<std::size_t>(cut - begin, 4) : 0;
  const std::uint64_t mask = (std::uint64_t{1} << (8 * arrived)) - 1;
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value) & static_cast<std::uint32_t>(mask));
}

TEST(MapShopSearch, KeepsWhatCameBeforeAReplyBrokeOffAtAnyByte) {
  const std::vector<OfferedItem> offered = {{"Norrland", 0x11223344, "N", "n.map", 0x55667788},
                                            {"H\xF6hen", -2, "", "h.nvpkg", -3},
                                            {"", 0x7F000001, "short", "", 0x01020304}};
  const std::int32_t closing = 0x0A0B0C0D;
  const MapShopReply reply = ReplyWith(offered, closing, {1, 2});
  const Reply answer = HttpReply(200, reply.bytes);
  const std::size_t head = answer.bytes.size() - reply.bytes.size();
  std::vector<Reply> answers;
  for (std::size_t size = head; size <= answer.bytes.size(); ++size) answers.push_back(CutAfter(answer, size));
  const Service service(answers);
  for (std::size_t cut = 0; cut <= reply.bytes.size(); ++cut) {
    const Found found = Search();
    // An item counts once the first byte of its last value is there: the road gives partial values as they came.
    std::size_t whole = 0;
    while (whole < offered.size() && cut > reply.lastValues[whole]) ++whole;
    ASSERT_EQ(found.items.size(), whole) << cut;
    for (std::size_t i = 0; i < whole; ++i) {
      MapShopReply item;
      const MapShopItem& got = found.items[i];
      item.Add({got.title, got.firstValue, got.shortText, got.fileReference, got.secondValue});
      OfferedItem expected = offered[i];
      if (i == 1) expected.title.insert(0, "Package: ");
      expected.secondValue = ValueCutAt(expected.secondValue, reply.lastValues[i], cut);
      EXPECT_EQ(item.bytes, MapShopReply().Add(expected).bytes) << cut;
    }
    EXPECT_EQ(found.closingValue, ValueCutAt(closing, reply.bytes.size() - 4, cut)) << cut;
  }
}

TEST(MapShopSearch, PaysForHostileCountsOnlyWithTheBytesThatCame) {
  const std::string item = ReplyOf(0).Add({"a", 1, "b", "c", 2}).bytes.substr(12);
  const struct {
    std::string reply;
    std::size_t items;
    std::int32_t closing;
  } cases[] = {
      {Int(0) + Int(huge) + Int(1) + Int(2), 0, 0},      {Int(0) + Int(-1) + Int(1) + item + Int(7), 1, 7},
      {Int(0) + Int(0) + Int(huge) + item + item, 2, 0}, {Int(0) + Int(0) + Int(-1) + Int(7), 0, 7},
      {Int(1) + Int(0) + Int(1) + item + Int(7), 0, 0},
  };
  for (const auto& each : cases) {
    const auto start = std::chrono::steady_clock::now();
    const Found found = SearchAnswered(each.reply);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_EQ(found.items.size(), each.items);
    EXPECT_EQ(found.closingValue, each.closing);
  }
}

TEST(MapShopSearch, HoldsNoMoreThanTwiceTheReply) {
  constexpr std::int32_t items = 10'000;
  for (const char* file : {"", ".nvpkg"}) {
    MapShopReply reply = ReplyOf(items);
    for (std::int32_t i = 0; i < items; ++i) reply.Add({"", i, "", file, -i});
    NVMapShopHandle handle = nullptr;
    {
      const Service service(reply.Close(9).bytes);
      handle = NSMapShopSearch(nullptr, 0);
    }
    const std::size_t before = heldBytes;
    EXPECT_EQ(NSMapShopClose(handle), 9);
    EXPECT_LE(before - heldBytes, 2 * reply.bytes.size());
  }
}

TEST(MapShopSearch, TakesAnyHttpReplyForWhatItsBodyHolds) {
  const std::string body = ReplyWith({{"a", 1, "b", "c", 2}}, 5).bytes;
  const Reply whole = HttpReply(200, body);
  Reply silent = CutAfter(whole, whole.bytes.size() - 4);
  silent.end = Reply::End::hold;
  const struct {
    const char* what;
    Reply reply;
    std::size_t items;
    std::int32_t closing;
  } cases[] = {
      {"an error page", HttpReply(500, "<html>Internal Server Error</html>"), 0, 0},
      {"a reply under an error status", HttpReply(404, body), 1, 5},
      {"no body", HttpReply(200, ""), 0, 0},
      {"no length", {.bytes = "HTTP/1.1 200 OK\r\n\r\n" + body}, 1, 5},
      {"a close in the head", CutAfter(whole, 20), 0, 0},
      {"no HTTP", {.bytes = body}, 0, 0},
      {"silence", testing::NoReply(), 0, 0},
      {"silence before the closing value", silent, 1, 0},
  };
  const testing::ShortTimeouts timeouts;
  for (const auto& each : cases) {
    const Service service(std::vector{each.reply});
    const Found found = Search();
    EXPECT_EQ(found.items.size(), each.items) << each.what;
    EXPECT_EQ(found.closingValue, each.closing) << each.what;
  }
}

TEST(MapShopSearch, EndsAReplyAtAStringOverTheLimit) {
  const std::string begun[] = {"", Text("t") + Int(0), Text("t") + Int(0) + Text("s")};
  for (const std::string& before : begun) {
    std::string reply = ReplyOf(3).Add({"first", 1, "s", "f", 2}).bytes;
    // What follows would be read as whole items, were it read.
    reply.append(before).append(Int(100001)).append(200, '\0');
    const Found found = SearchAnswered(reply);
    EXPECT_EQ(found.items.size(), 1u);
    EXPECT_EQ(found.closingValue, 0);
  }
  const OfferedItem longest{std::string(100000, 't'), 1, "s", "f", 2};
  EXPECT_EQ(SearchAnswered(ReplyWith({longest}, 9).bytes).closingValue, 9) << "the limit itself is allowed";
}

TEST(MapShopSearch, GivesEachHandleItsOwnResults) {
  const Service service(ReplyWith({{"a", 1, "", "", 0}}, 5).bytes);
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
