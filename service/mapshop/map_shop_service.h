// Operation 101 of the map shop service: the products on offer for an area.
#ifndef NVSUPPORT_SERVICE_MAPSHOP_MAP_SHOP_SERVICE_H
#define NVSUPPORT_SERVICE_MAPSHOP_MAP_SHOP_SERVICE_H

#include <cstdint>
#include <string_view>

#include "service/mapshop/product_index.h"
#include "service/reply.h"

namespace nvsupport::service {

inline constexpr std::size_t largestSearch = 1024UL * 1024;  // bytes of a request, some 65,000 points

inline constexpr std::size_t largestFinding = 32UL * 1024 * 1024;  // bytes of a reply, half of what clients take

// Answers a request with the products whose area meets the box around its points, in the order of the product file. If
// there are more than `most`, or more than fit into `largest` bytes, the reply holds the first ones. They are read
// while the reply is sent; until then `products` must not change.
Reply AnswerSearch(std::string_view request, const ProductIndex& products, std::int64_t most,
                   std::size_t largest = largestFinding);

}  // namespace nvsupport::service

#endif
