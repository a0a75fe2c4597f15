// The products of a product file (product_file.h), arranged by their areas, so that a search costs what it finds. The
// index lies in an SQLite file, which is made anew when the product file has changed. It is never written in place: a
// new one takes the place of the old one as a whole.
#ifndef NVSUPPORT_SERVICE_MAPSHOP_PRODUCT_INDEX_H
#define NVSUPPORT_SERVICE_MAPSHOP_PRODUCT_INDEX_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "service/database/sqlite_file.h"
#include "service/mapshop/product_file.h"

namespace nvsupport::service {

class ProductIndex {
 public:
  // With an empty indexPath the index is made in memory, for this object alone. The numbers of up to `sorted` products
  // are sorted in less time than the products of a dense area take to be looked at in turn.
  ProductIndex(std::string productFile, std::string indexFile, std::size_t sorted = 50'000)
      : productPath(std::move(productFile)), indexPath(std::move(indexFile)), mostNear(sorted) {}

  // Follows the product file; call it before what stands below. While one process makes the index anew, others use the
  // old one, or wait if there is none. If the product file has an error the old one stays in use, and the error goes to
  // standard error. Throws std::runtime_error if there is no index and none can be made.
  void Update();

  std::uint32_t ProductCount() const { return open->count; }

  // Gives the products whose areas have a point in common with `area`, edges included, to `take`, in the order of the
  // product file, until it returns false: the number for Get and how many bytes the texts have together. Longitudes
  // that differ by full turns are the same.
  using Take = std::function<bool(std::int64_t id, std::size_t textBytes)>;
  void Find(const Area& area, const Take& take) const;
  Product Get(std::int64_t id) const;

 private:
  // An open index with its statements.
  struct Open {
    explicit Open(SqliteFile opened);

    SqliteFile file;
    SqliteStatement near;
    SqliteStatement all;
    SqliteStatement one;
    SqliteStatement product;
    std::string stamp;  // of the product file that it was made of
    std::uint32_t count = 0;
  };

  // Opens the file as it is now, if it is an index; true if it was made of the present product file.
  bool Reopen(const std::string& wantedStamp);
  // The products that may be near an area, in their order; none if there are so many that all are to be looked at.
  std::optional<std::vector<std::int64_t>> Near(const Area& area) const;

  const std::string productPath;
  const std::string indexPath;
  const std::size_t mostNear;
  // A search steps through the statements, which changes nothing that lasts.
  mutable std::optional<Open> open;
};

}  // namespace nvsupport::service

#endif
