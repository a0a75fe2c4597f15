#include "product_list.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <string_view>

#include "text_table.h"

namespace nvhost {
namespace {

// The library puts this in front of the title of a package.
constexpr std::string_view packagePrefix = "Package: ";

bool IsPackage(const MapShopItem& item) {
  return std::string_view(item.title).starts_with(packagePrefix);
}

}  // namespace

void PrintTable(const ProductList& results) {
  using Align = TextTable::Align;
  TextTable table({{""}, {"TITLE"}, {"SHORT TEXT"}, {"FILE"}, {"FIRST", Align::right}, {"SECOND", Align::right}});
  for (const MapShopItem& item : results.items) {
    const std::string title = item.title + (IsPackage(item) ? packagePrefix.size() : 0);
    table.AddRow({IsPackage(item) ? "pkg" : "", title, item.shortText, item.fileReference,
                  std::to_string(item.firstValue), std::to_string(item.secondValue)});
  }
  std::fputs(table.Format().c_str(), stdout);
  const std::size_t count = results.items.size();
  std::printf("%zu %s, closing value %d\n", count, count == 1 ? "product" : "products", results.closingValue);
}

void PrintJson(const ProductList& results) {
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

}  // namespace nvhost
