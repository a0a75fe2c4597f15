// The map shop search: one exchange collects the whole answer, the host then pulls it record by record. The items
// are told in docs/wire_format.md.
#include <nvsupport/nvsupport.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <limits>
#include <new>
#include <string>

#include "wire/web_binary_cgi.h"

// What a search handle points to. The records stay packed, so that they take no more memory than the reply did on its
// way: a record with short texts is a fiftieth of what the host gets.
struct MapShopResults {
  std::string records;            // in reply order, as Pack leaves them
  std::size_t next = 0;           // where in `records` the next one begins
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
// An endless reply, which anyone on the road to the service can send, must not take the host's memory.
constexpr std::int32_t maxItems = 1000000;

constexpr char packageSuffix[] = "nvpkg";
constexpr char packagePrefix[] = "Package: ";
constexpr std::size_t maxPackageTitle = sizeof MapShopItem::title - sizeof packagePrefix;  // without the prefix

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

bool IsPackage(const char* fileReference) {
  constexpr std::size_t suffixLength = sizeof packageSuffix - 1;
  const std::size_t length = std::strlen(fileReference);
  if (length < suffixLength + 1) return false;
  const char* suffix = fileReference + length - suffixLength;
  return suffix[-1] == '.' && _mbsicmp(reinterpret_cast<const unsigned char*>(suffix),
                                       reinterpret_cast<const unsigned char*>(packageSuffix)) == 0;
}

void MarkPackage(MapShopItem& item) {
  if (!IsPackage(item.fileReference)) return;
  const std::string title = packagePrefix + std::string(item.title).substr(0, maxPackageTitle);
  std::memcpy(item.title, title.c_str(), title.size() + 1);
}

template <std::size_t width>
bool ReadField(CTypeSerializer& channel, char (&field)[width]) {
  return channel.ReadFixedString(field, width);
}

// False when the reply ended before the item did or holds a string over the limit: what follows is out of step.
bool ReadItem(CTypeSerializer& channel, MapShopItem& item) {
  item = {};
  if (!ReadField(channel, item.title)) return false;
  channel.ReadValue(item.firstValue);
  if (!ReadField(channel, item.shortText) || !ReadField(channel, item.fileReference)) return false;
  channel.ReadValue(item.secondValue);
  if (!channel.IsGood()) return false;
  MarkPackage(item);
  return true;
}

// The texts with their terminators, then the values.
void Pack(const MapShopItem& item, std::string& records) {
  for (const char* text : {item.title, item.shortText, item.fileReference}) records.append(text, std::strlen(text) + 1);
  for (const std::int32_t* value : {&item.firstValue, &item.secondValue}) {
    records.append(reinterpret_cast<const char*>(value), sizeof *value);
  }
}

// Returns the place behind the record.
const char* Unpack(const char* record, MapShopItem& item) {
  const auto take = [&record](void* field, std::size_t size) {
    std::memcpy(field, record, size);
    record += size;
  };
  for (char* text : {item.title, item.shortText, item.fileReference}) take(text, std::strlen(record) + 1);
  for (std::int32_t* value : {&item.firstValue, &item.secondValue}) take(value, sizeof *value);
  return record;
}

// Takes what is there up to the first failure. A count is only a promise: nothing is done for it in advance.
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
  MapShopItem item;
  for (; itemCount > 0; --itemCount) {
    if (results.left == maxItems || !ReadItem(channel, item)) return;
    Pack(item, results.records);
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
  auto* results = new (std::nothrow) MapShopResults;
  if (results == nullptr) return nullptr;
  try {
    nvsupport::Search(points, count, *results);
  } catch (const std::exception&) {
    // Out of memory: the host gets the items that came before, as after any other failure.
  }
  return results;
}

bool NSMapShopGetNext(NVMapShopHandle handle, MapShopItem* item) {
  if (handle == nullptr || item == nullptr || handle->left == 0) return false;
  *item = {};  // behind the terminators, too
  const char* const records = handle->records.data();
  handle->next = static_cast<std::size_t>(nvsupport::Unpack(records + handle->next, *item) - records);
  --handle->left;
  return true;
}

int32_t NSMapShopClose(NVMapShopHandle handle) {
  if (handle == nullptr) return 0;
  const std::int32_t closingValue = handle->closingValue;
  delete handle;
  return closingValue;
}
