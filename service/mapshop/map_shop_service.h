// Operation 101 of the map shop service: the products on offer for an area.
#ifndef NVSUPPORT_SERVICE_MAPSHOP_MAP_SHOP_SERVICE_H
#define NVSUPPORT_SERVICE_MAPSHOP_MAP_SHOP_SERVICE_H

#include <string>
#include <string_view>
#include <vector>

#include "service/mapshop/product_catalogue.h"

namespace nvsupport::service {

inline constexpr std::size_t largestSearch = 1024UL * 1024;  // bytes of a request, some 65,000 points

// Answers a request with the products whose area meets the box around its points, in the order of `products`.
std::string AnswerSearch(std::string_view request, const std::vector<Product>& products);

}  // namespace nvsupport::service

#endif
