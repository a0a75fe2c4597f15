// The products on offer, read from a text file: one product a line, columns separated by tabs, texts in UTF-8, lines
// that begin with '#' left out. The columns are number, title, short text, file reference, size in KiB, south, west,
// north and east; a product across the 180th meridian has its west above its east.
#ifndef NVSUPPORT_SERVICE_MAPSHOP_PRODUCT_CATALOGUE_H
#define NVSUPPORT_SERVICE_MAPSHOP_PRODUCT_CATALOGUE_H

#include <cstdint>
#include <string>
#include <vector>

#include "service/mapshop/area.h"

namespace nvsupport::service {

struct Product {
  std::uint32_t number = 0;
  std::string title;
  std::string shortText;
  std::string fileReference;
  std::uint32_t kibibytes = 0;
  Area area;
};

// Throws std::runtime_error if the file cannot be read or a line is not as told, naming the line.
std::vector<Product> ReadProducts(const std::string& path);

}  // namespace nvsupport::service

#endif
