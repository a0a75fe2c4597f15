// The map shop search: one exchange collects the whole answer, the host then pulls it record by record.
// docs/wire_format.md describes the items.
#include <nvsupport/nvsupport.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <limits>
#include <list>
#include <new>
#include <string_view>

#include "base/process_wide.h"
#include "wire/web_binary_cgi.h"

// Records one behind the other, packed: with short texts, one takes a fiftieth of what the host gets.
struct RecordBlock {
  RecordBlock() {}  // leaves the bytes as they are

  std::size_t end = 0;  // of its records
  char bytes[65'000];   // with what the list and the allocator add, 16 pages
};

// What a search handle points to.
struct MapShopResults {
  std::list<RecordBlock> blocks;  // in reply order; each goes when the host has its last record
  std::size_t next = 0;           // where in the first of them the next record begins
  std::int32_t left = 0;          // records from there on
  std::int32_t closingValue = 0;  // the reply's last word
};

namespace nvsupport {
namespace {

constexpr const char* servicePath = "cgi-bin/mapstore2.cgi";
constexpr std::int32_t searchOperation = 101;
constexpr std::int32_t searchKind = 4;
constexpr std::int32_t closingWord = 0;

constexpr double latitudeLimit = 90;    // degrees either way
constexpr double longitudeLimit = 400;  // degrees either way

// The points travel as one block, whose size is 32-bit.
constexpr std::int32_t maxPoints = std::numeric_limits<std::int32_t>::max() / sizeof(MapShopPoint);
// Anyone on the network path can send an endless reply, which must not take the host's memory.
constexpr std::int32_t maxItems = 1000000;

constexpr std::string_view packageSuffix = ".nvpkg";
constexpr std::string_view packagePrefix = "Package: ";
constexpr std::size_t maxPackageTitle = sizeof MapShopItem::title - 1 - packagePrefix.size();  // without the prefix

// False for a NaN, which the service may judge.
bool IsOutOfRange(const MapShopPoint& point) {
  return point.latitude > latitudeLimit || point.latitude < -latitudeLimit || point.longitude > longitudeLimit ||
         point.longitude < -longitudeLimit;
}

bool IsValidArea(const MapShopPoint* points, std::int32_t count) {
  if (count < 0 || count > maxPoints || (points == nullptr && count != 0)) return false;
  return std::none_of(points, points + count, IsOutOfRange);
}

void WriteRequest(CTypeSerializer& channel, const MapShopPoint* points, std::int32_t count) {
  channel.WriteValue(searchOperation);
  channel.WriteValue(searchKind);
  channel.WriteValue(count);
  if (count > 0) channel.WriteBlock(points, count * static_cast<std::int32_t>(sizeof(MapShopPoint)));
  channel.WriteValue(closingWord);
}

bool IsPackage(const char* fileReference, std::size_t length) {
  if (length < packageSuffix.size()) return false;
  const char* const suffix = fileReference + length - packageSuffix.size();
  return _mbsicmp(reinterpret_cast<const unsigned char*>(suffix),
                  reinterpret_cast<const unsigned char*>(packageSuffix.data())) == 0;
}

void MarkPackage(char* title, std::size_t length) {
  const std::size_t kept = std::min(length, maxPackageTitle);
  std::memmove(title + packagePrefix.size(), title, kept);
  packagePrefix.copy(title, packagePrefix.size());
  title[packagePrefix.size() + kept] = '\0';
}

// Puts an item down as it comes, the texts with their terminators, in no more bytes than the host's record has. Returns
// the place behind it; null when the reply ended before the item did or holds a string over the limit: what follows is
// out of step.
char* ReadItem(CTypeSerializer& channel, char* place) {
  const auto takeText = [&](std::size_t width) {
    if (!channel.ReadFixedString(place, static_cast<std::int32_t>(width))) return false;
    place += std::strlen(place) + 1;
    return true;
  };
  const auto takeValue = [&] {
    std::int32_t value = 0;
    channel.ReadValue(value);
    std::memcpy(place, &value, sizeof value);
    place += sizeof value;
    return channel.IsGood();
  };
  const bool whole = takeText(sizeof MapShopItem::title) && takeValue() && takeText(sizeof MapShopItem::shortText) &&
                     takeText(sizeof MapShopItem::fileReference) && takeValue();
  return whole ? place : nullptr;
}

// Makes the host's record, all bytes of it, of what ReadItem put down; returns the place behind that.
const char* MakeRecord(const char* place, MapShopItem& item) {
  const auto takeText = [&place](char* field) {
    const std::size_t length = std::strlen(place);
    std::memcpy(field, place, length + 1);
    place += length + 1;
    return length;
  };
  const auto takeValue = [&place](std::int32_t& value) {
    std::memcpy(&value, place, sizeof value);
    place += sizeof value;
  };
  item = {};
  const std::size_t titleLength = takeText(item.title);
  takeValue(item.firstValue);
  takeText(item.shortText);
  const std::size_t fileLength = takeText(item.fileReference);
  takeValue(item.secondValue);
  if (IsPackage(item.fileReference, fileLength)) MarkPackage(item.title, titleLength);
  return place;
}

// The last block, a new one if it has no room for one more record.
RecordBlock& BlockWithRoom(std::list<RecordBlock>& blocks) {
  if (blocks.empty() || sizeof blocks.back().bytes - blocks.back().end < sizeof(MapShopItem)) blocks.emplace_back();
  return blocks.back();
}

// Takes the records up to the first failure. A count is only a promise, so no memory is taken for it in advance.
void ReadReply(CTypeSerializer& channel, MapShopResults& results) {
  std::int32_t status = -1;
  channel.ReadValue(status);
  if (!channel.IsGood() || status != 0) return;

  std::int32_t skipCount = 0;
  channel.ReadValue(skipCount);
  for (std::int32_t i = 0; i < skipCount && channel.IsGood(); ++i) {
    std::int32_t skipped = 0;
    channel.ReadValue(skipped);
  }

  std::int32_t itemCount = 0;
  channel.ReadValue(itemCount);
  if (!channel.IsGood()) return;
  for (; itemCount > 0; --itemCount) {
    if (results.left == maxItems) return;
    RecordBlock& block = BlockWithRoom(results.blocks);
    const char* const end = ReadItem(channel, block.bytes + block.end);
    if (end == nullptr) return;
    block.end = static_cast<std::size_t>(end - block.bytes);
    ++results.left;  // now that it is there whole
  }
  channel.ReadValue(results.closingValue);
}

void Search(const MapShopPoint* points, std::int32_t count, MapShopResults& results) {
  if (!IsValidArea(points, count)) return;
  CWebBinaryCGI channel(servicePath, false);
  WriteRequest(channel, points, count);
  if (channel.Send()) ReadReply(channel, results);
}

}  // namespace
}  // namespace nvsupport

NVMapShopHandle NSMapShopSearch(const MapShopPoint* points, int32_t count) {
  const base::Call call;
  auto* results = call ? new (std::nothrow) MapShopResults : nullptr;
  if (results == nullptr) return nullptr;
  try {
    nvsupport::Search(points, count, *results);
  } catch (const std::exception&) {
    // Out of memory: the host gets the items that came before, as after any other failure.
  }
  return results;
}

// These two touch nothing but the results, so they need not be counted as calls that use more.
bool NSMapShopGetNext(NVMapShopHandle handle, MapShopItem* item) {
  if (handle == nullptr || item == nullptr || handle->left == 0) return false;
  const RecordBlock& block = handle->blocks.front();
  handle->next = static_cast<std::size_t>(nvsupport::MakeRecord(block.bytes + handle->next, *item) - block.bytes);
  --handle->left;
  if (handle->next == block.end) {
    handle->blocks.pop_front();
    handle->next = 0;
  }
  return true;
}

int32_t NSMapShopClose(NVMapShopHandle handle) {
  if (handle == nullptr) return 0;
  const std::int32_t closingValue = handle->closingValue;
  delete handle;
  return closingValue;
}
