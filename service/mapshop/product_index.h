// The products of a product file (product_file.h), arranged by their areas, so that a search costs what it finds. The
// index lies in an SQLite file, which is made anew when the product file has changed. It is never written in place: a
// new one takes the place of the old one as a whole.
#ifndef NVSUPPORT_SERVICE_MAPSHOP_PRODUCT_INDEX_H
#define NVSUPPORT_SERVICE_MAPSHOP_PRODUCT_INDEX_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "service/database/sqlite_file.h"
#include "service/mapshop/product_file.h"

namespace nvsupport::service {

class ProductIndex {
 public:
  // While one process makes the index anew, others use the old one, or wait if there is none. If the product file has
  // an error the old one stays in use, and the error goes to standard error. With an empty indexPath the index is made
  // in memory, for this object alone. Throws std::runtime_error if there is no index and none can be made.
  ProductIndex(const std::string& productPath, const std::string& indexPath);

  std::uint32_t ProductCount() const { return count; }

  // Gives the products whose areas have a point in common with `area`, edges included, to `take`, in the order of the
  // product file, until it returns false. Longitudes that differ by full turns are the same.
  void Find(const Area& area, const std::function<bool(const Product&)>& take) const;

 private:
  bool Open(const std::string& path, const std::string& wantedStamp);

  std::optional<SqliteFile> file;
  std::uint32_t count = 0;
};

}  // namespace nvsupport::service

#endif
