// The products that a search gave, as a table for people or as JSON for programs.
#ifndef NVHOST_TERMINAL_PRODUCT_LIST_H
#define NVHOST_TERMINAL_PRODUCT_LIST_H

#include <nvsupport/nvsupport.h>

#include <vector>

namespace nvhost {

struct ProductList {
  std::vector<MapShopItem> items;
  int32_t closingValue = 0;
};

// To standard output.
void PrintTable(const ProductList& results);
void PrintJson(const ProductList& results);

}  // namespace nvhost

#endif
