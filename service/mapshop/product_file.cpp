#include "service/mapshop/product_file.h"

#include <charconv>
#include <cmath>
#include <fstream>
#include <string_view>
#include <vector>

namespace nvsupport::service {
namespace {

constexpr std::size_t columnCount = 9;

std::vector<std::string_view> Split(std::string_view line) {
  std::vector<std::string_view> columns;
  for (;;) {
    const std::size_t tab = line.find('\t');
    columns.push_back(line.substr(0, tab));
    if (tab == std::string_view::npos) return columns;
    line.remove_prefix(tab + 1);
  }
}

template <typename Value>
bool Parse(std::string_view text, Value& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

bool ParseArea(std::string_view south, std::string_view west, std::string_view north, std::string_view east,
               Area& area) {
  if (!Parse(south, area.south) || !Parse(west, area.west) || !Parse(north, area.north) || !Parse(east, area.east)) {
    return false;
  }
  // Written so that a NaN fails, too.
  const bool possible = std::abs(area.south) <= largestLatitude && std::abs(area.north) <= largestLatitude &&
                        std::abs(area.west) <= largestLongitude && std::abs(area.east) <= largestLongitude;
  if (area.west > area.east) area.east += 360;
  return possible && area.south <= area.north;
}

bool ParseProduct(std::string_view line, Product& product) {
  const auto column = Split(line);
  if (column.size() != columnCount) return false;
  product.title = column[1];
  product.shortText = column[2];
  product.fileReference = column[3];
  return Parse(column[0], product.number) && Parse(column[4], product.kibibytes) &&
         ParseArea(column[5], column[6], column[7], column[8], product.area);
}

}  // namespace

void ReadProducts(const std::string& path, const std::function<void(const Product&)>& take) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    if (line.empty() || line.front() == '#') continue;
    Product product;
    if (!ParseProduct(line, product)) throw ProductError(path + ": line " + std::to_string(number));
    take(product);
  }
}

}  // namespace nvsupport::service
