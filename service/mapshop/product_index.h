// An index of a product file (product_file.h) by area, so that a search takes time for what it finds only. It is an
// SQLite file, made again when the product file has changed. It is never written in place: the finished new file
// replaces the old one.
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
  // With an empty indexPath the index is made in memory, for this object alone. A search that finds up to `sorted`
  // products sorts their numbers; with more it is quicker to go through all products in order.
  ProductIndex(std::string productFile, std::string indexFile, std::size_t sorted = 50'000)
      : productPath(std::move(productFile)), indexPath(std::move(indexFile)), mostNear(sorted) {}

  // Brings the index up to date; call it before the functions below. While one process makes a new index, the others
  // use the old one, or wait if there is none. If the product file has an error it goes to standard error, and the old
  // index stays in use. Throws std::runtime_error if there is no index and none can be made.
  void Update();

  std::uint32_t ProductCount() const { return open->count; }

  // Finds the products whose areas have a point in common with `area`, edges included. Passes each to `take`, in the
  // order of the product file, until that returns false: its number for Get, and the size of its texts in bytes.
  // Longitudes that differ by full turns are the same.
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

  // Opens the file if it is an index; true if it was made of the present product file.
  bool Reopen(const std::string& wantedStamp);
  // The numbers of products that may meet an area, in order; nothing if it is quicker to go through all products.
  std::optional<std::vector<std::int64_t>> Near(const Area& area) const;

  const std::string productPath;
  const std::string indexPath;
  const std::size_t mostNear;
  // Mutable, because a search steps through the statements; afterwards they are as before.
  mutable std::optional<Open> open;
};

}  // namespace nvsupport::service

#endif
