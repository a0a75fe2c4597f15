// The products on offer, read from a text file: one product a line, columns separated by tabs, texts in UTF-8, lines
// that begin with '#' left out. The columns are number, title, short text, file reference, size in KiB, south, west,
// north and east, in degrees within +-90 and +-400; a product across the 180th meridian has its west above its east.
#ifndef NVSUPPORT_SERVICE_MAPSHOP_PRODUCT_FILE_H
#define NVSUPPORT_SERVICE_MAPSHOP_PRODUCT_FILE_H

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

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

// A line of the file is malformed; the text names it.
struct ProductError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Passes the products to `take`, in the order of the file. Throws ProductError, or another std::runtime_error if the
// file cannot be read.
void ReadProducts(const std::string& path, const std::function<void(const Product&)>& take);

}  // namespace nvsupport::service

#endif
