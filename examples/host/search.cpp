// nvhost search: which products the map shop has for an area.
#include <charconv>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string_view>
#include <vector>

#include "commands.h"
#include "text_table.h"

namespace nvhost {
namespace {

constexpr double kLargestLatitude = 90;
constexpr double kLargestLongitude = 400;
// The library puts this in front of the title of a package.
constexpr std::string_view kPackagePrefix = "Package: ";

struct Results {
  std::vector<MapShopItem> items;
  std::int32_t closingValue = 0;
};

MapShopPoint ParsePoint(const std::string& text) {
  MapShopPoint point = {};
  const char* const end = text.data() + text.size();
  const auto latitude = std::from_chars(text.data(), end, point.latitude);
  const bool comma = latitude.ec == std::errc() && latitude.ptr != end && *latitude.ptr == ',';
  const auto longitude = comma ? std::from_chars(latitude.ptr + 1, end, point.longitude) : latitude;
  if (!comma || longitude.ec != std::errc() || longitude.ptr != end) {
    throw CLI::ValidationError(text, "not a point; write LATITUDE,LONGITUDE in degrees, such as 45.92,6.87");
  }
  // Asked this way round, what is no number fails too.
  const bool inRange = std::abs(point.latitude) <= kLargestLatitude && std::abs(point.longitude) <= kLargestLongitude;
  if (!inRange) {
    throw Failure(kAreaOutOfRange, text + " is out of range: latitude -90 to 90, longitude -400 to 400");
  }
  return point;
}

Results Search(const NvSupport& support, const std::vector<MapShopPoint>& points) {
  Results results;
  const NVMapShopHandle handle = support.search(points.data(), static_cast<std::int32_t>(points.size()));
  MapShopItem item = {};
  while (support.nextItem(handle, &item)) results.items.push_back(item);
  results.closingValue = support.closeSearch(handle);
  return results;
}

bool IsPackage(const MapShopItem& item) {
  return std::string_view(item.title).starts_with(kPackagePrefix);
}

void PrintTable(const Results& results) {
  using Align = TextTable::Align;
  TextTable table({{""}, {"TITLE"}, {"SHORT TEXT"}, {"FILE"}, {"FIRST", Align::kRight}, {"SECOND", Align::kRight}});
  for (const MapShopItem& item : results.items) {
    const std::string title = item.title + (IsPackage(item) ? kPackagePrefix.size() : 0);
    table.AddRow({IsPackage(item) ? "pkg" : "", title, item.shortText, item.fileReference,
                  std::to_string(item.firstValue), std::to_string(item.secondValue)});
  }
  std::fputs(table.Format().c_str(), stdout);
  const std::size_t count = results.items.size();
  std::printf("%zu %s, closing value %d\n", count, count == 1 ? "product" : "products", results.closingValue);
}

void PrintJson(const Results& results) {
  nlohmann::ordered_json items = nlohmann::ordered_json::array();
  for (const MapShopItem& item : results.items) {
    items.push_back({{"package", IsPackage(item)},
                     {"title", item.title},
                     {"shortText", item.shortText},
                     {"fileReference", item.fileReference},
                     {"firstValue", item.firstValue},
                     {"secondValue", item.secondValue}});
  }
  const nlohmann::ordered_json all = {{"items", items}, {"closingValue", results.closingValue}};
  // Texts of the service need not be UTF-8.
  std::puts(all.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
}

void Run(const NvSupport& support, const std::vector<MapShopPoint>& points, bool json) {
  const Results results = Search(support, points);
  if (json) {
    PrintJson(results);
  } else if (!results.items.empty()) {
    PrintTable(results);
  }
  if (!results.items.empty()) return;
  if (results.closingValue != 0) throw Failure(kNoProducts, "the map shop has no products for this area");
  throw Failure(kNoAnswer,
                "no products; either the service could not be reached, or it refused the search, or it has nothing on "
                "offer: a search does not tell these apart");
}

}  // namespace

void AddSearch(CLI::App& app, Work& chosen) {
  struct Arguments {
    std::vector<std::string> points;
    bool json = false;
  };
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* const command = app.add_subcommand("search", "List the products of the map shop for an area");
  command->add_option("points", arguments->points, "Corners or outline of the area, in degrees; none: everywhere")
      ->type_name("LAT,LON");
  command->add_flag("--json", arguments->json, "Write JSON");
  command->callback([arguments, &chosen] {
    std::vector<MapShopPoint> points;
    for (const std::string& text : arguments->points) points.push_back(ParsePoint(text));
    chosen = [points, json = arguments->json](const NvSupport& support) { Run(support, points, json); };
  });
}

}  // namespace nvhost
