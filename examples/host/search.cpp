// nvhost search: which products the map shop has for an area.
#include <charconv>
#include <cmath>
#include <cstdio>
#include <vector>

#include "commands.h"
#include "terminal/product_list.h"

namespace nvhost {
namespace {

constexpr double largestLatitude = 90;
constexpr double largestLongitude = 400;

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
  const bool inRange = std::abs(point.latitude) <= largestLatitude && std::abs(point.longitude) <= largestLongitude;
  if (!inRange) {
    throw Failure(areaOutOfRange, text + " is out of range: latitude -90 to 90, longitude -400 to 400");
  }
  return point;
}

ProductList Search(const NVSupportModule& support, const std::vector<MapShopPoint>& points) {
  ProductList results;
  const NVMapShopHandle handle = support.search(points.data(), static_cast<std::int32_t>(points.size()));
  MapShopItem item = {};
  while (support.getNext(handle, &item)) results.items.push_back(item);
  results.closingValue = support.closeSearch(handle);
  return results;
}

void Run(const NVSupportModule& support, const std::vector<MapShopPoint>& points, bool json) {
  const ProductList results = Search(support, points);
  if (json) {
    PrintJson(results);
  } else if (!results.items.empty()) {
    PrintTable(results);
  }
  if (!results.items.empty()) return;
  if (results.closingValue != 0) throw Failure(noProducts, "the map shop has no products for this area");
  throw Failure(noAnswer,
                "no products; either the service could not be reached, or it refused the search, or it has nothing on "
                "offer: a search does not tell these apart, but --trace does");
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
    chosen = [points, json = arguments->json](const NVSupportModule& support) { Run(support, points, json); };
  });
}

}  // namespace nvhost
