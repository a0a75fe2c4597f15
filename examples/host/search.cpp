// nvhost search: which products the map shop has for an area.
#include "commands.h"
#include "terminal/product_list.h"

namespace nvhost {
namespace {

ProductList AskMapShop(const NVSupportModule& support, const std::vector<MapShopPoint>& points) {
  ProductList results;
  const NVMapShopHandle handle = support.search(points.data(), static_cast<std::int32_t>(points.size()));
  MapShopItem item = {};
  while (support.getNext(handle, &item)) results.items.push_back(item);
  results.closingValue = support.closeSearch(handle);
  return results;
}

}  // namespace

void Search(const NVSupportModule& support, const SearchArguments& arguments) {
  const ProductList results = AskMapShop(support, arguments.points);
  if (arguments.json) {
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

}  // namespace nvhost
