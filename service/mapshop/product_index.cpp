#include "service/mapshop/product_index.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "service/database/file_queue.h"

namespace nvsupport::service {
namespace {

// Begins with the version of the tables below.
constexpr std::string_view format = "1 ";

// An R*Tree keeps numbers in single precision, rounded outwards, so what it finds is compared with the exact areas.
constexpr const char* tables = R"(
  PRAGMA journal_mode = OFF;
  PRAGMA cache_size = -262144;
  BEGIN;
  CREATE TABLE source (stamp TEXT, products INTEGER);
  CREATE TABLE product (
    id INTEGER PRIMARY KEY, number INTEGER, title TEXT, short_text TEXT, file_reference TEXT, kibibytes INTEGER,
    south REAL, west REAL, north REAL, east REAL);
  CREATE VIRTUAL TABLE area USING rtree(id, west, east, south, north);
)";

// The areas lie between -180 and 540 degrees of longitude, so a search looks there for its area and for each full turn
// of it.
constexpr const char* nearArea = R"(
  SELECT id FROM area WHERE north >= ?1 AND south <= ?2 AND east >= ?3 AND west <= ?4
  UNION ALL SELECT id FROM area WHERE north >= ?1 AND south <= ?2 AND east >= ?3 - 360 AND west <= ?4 - 360
  UNION ALL SELECT id FROM area WHERE north >= ?1 AND south <= ?2 AND east >= ?3 + 360 AND west <= ?4 + 360
)";

constexpr const char* boxesOfAll = R"(
  SELECT id, south, west, north, east, length(CAST(title || short_text || file_reference AS BLOB))
  FROM product ORDER BY id
)";
constexpr const char* boxOfOne = R"(
  SELECT id, south, west, north, east, length(CAST(title || short_text || file_reference AS BLOB))
  FROM product WHERE id = ?
)";
constexpr const char* wholeProduct =
    "SELECT number, title, short_text, file_reference, kibibytes FROM product WHERE id = ?";

// Different for any two states of a file.
std::string Stamp(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) throw std::system_error(errno, std::generic_category(), path);
  return std::string(format) + std::to_string(status.st_size) + ' ' + std::to_string(status.st_ino) + ' ' +
         std::to_string(status.st_mtim.tv_sec) + '.' + std::to_string(status.st_mtim.tv_nsec);
}

// The same area with its west from -180 on and below 180, and no wider than a turn.
Area Normal(Area area) {
  constexpr double turn = 360;
  const double width = std::min(area.east - area.west, turn);
  area.west -= std::floor((area.west + turn / 2) / turn) * turn;
  area.east = area.west + width;
  return area;
}

void Fill(SqliteFile& index, const std::string& productPath, const std::string& stamp) {
  index.Execute(tables);
  SqliteStatement product(index, "INSERT INTO product VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
  SqliteStatement area(index, "INSERT INTO area VALUES (?, ?, ?, ?, ?)");
  std::int64_t id = 0;
  ReadProducts(productPath, [&](const Product& read) {
    ++id;
    product.Bind(id, std::int64_t{read.number}, read.title, read.shortText, read.fileReference,
                 std::int64_t{read.kibibytes}, read.area.south, read.area.west, read.area.north, read.area.east);
    product.Step();
    const Area normal = Normal(read.area);
    area.Bind(id, normal.west, normal.east, normal.south, normal.north);
    area.Step();
  });
  SqliteStatement source(index, "INSERT INTO source VALUES (?, ?)");
  source.Bind(std::string_view(stamp), id);
  source.Step();
  index.Execute("COMMIT");
}

// Replaces the file at `path`; those who have the old one open can read on. If the product file has an error, the old
// index is kept under the new stamp, so that the product file is not read again until it changes.
void Make(const std::string& path, const std::string& productPath, const std::string& stamp, bool former) {
  const std::string unfinished = path + "-new";
  std::filesystem::remove(unfinished);  // left by a process that was killed
  try {
    SqliteFile index(unfinished, SqliteFile::Mode::shared);
    Fill(index, productPath, stamp);
  } catch (const ProductError& error) {
    if (!former) throw;
    std::fprintf(stderr, "the products stay as they were: %s\n", error.what());
    std::filesystem::copy_file(path, unfinished, std::filesystem::copy_options::overwrite_existing);
    const SqliteFile index(unfinished, SqliteFile::Mode::shared);
    SqliteStatement source(index, "UPDATE source SET stamp = ?");
    source.Bind(std::string_view(stamp));
    source.Step();
  }
  std::filesystem::rename(unfinished, path);
}

}  // namespace

ProductIndex::Open::Open(SqliteFile opened)
    : file(std::move(opened)),
      near(file, nearArea),
      all(file, boxesOfAll),
      one(file, boxOfOne),
      product(file, wholeProduct) {
  SqliteStatement source(file, "SELECT stamp, products FROM source");
  if (!source.Step()) return;
  stamp = source.Text(0);
  count = static_cast<std::uint32_t>(source.Number(1));
}

void ProductIndex::Update() {
  const std::string stamp = Stamp(productPath);
  if (open && open->stamp == stamp) return;
  if (indexPath.empty()) {
    SqliteFile index(":memory:", SqliteFile::Mode::shared);
    Fill(index, productPath, stamp);
    open.emplace(std::move(index));
    return;
  }
  if (Reopen(stamp)) return;
  FileQueue makers(indexPath + "-queue");
  if (!open) {
    makers.Enter();
  } else if (!makers.TryEnter()) {
    return;
  }
  if (Reopen(stamp)) return;  // another process was quicker
  try {
    Make(indexPath, productPath, stamp, open.has_value());
    Reopen(stamp);
  } catch (const std::exception& error) {
    if (!open) throw;
    std::fprintf(stderr, "the products stay as they were: %s\n", error.what());
  }
}

bool ProductIndex::Reopen(const std::string& wantedStamp) {
  if (!std::filesystem::exists(indexPath)) return false;
  try {
    Open opened(SqliteFile(indexPath, SqliteFile::Mode::unchanging));
    if (!opened.stamp.starts_with(format)) return false;
    open.emplace(std::move(opened));
    return open->stamp == wantedStamp;
  } catch (const std::runtime_error&) {
    return false;  // not an index: a new one replaces it
  }
}

std::optional<std::vector<std::int64_t>> ProductIndex::Near(const Area& area) const {
  const Area sought = Normal(area);
  constexpr double margin = 1e-6;  // more than the rounding errors of a turn
  std::vector<std::int64_t> near;
  open->near.Bind(sought.south, sought.north, sought.west - margin, sought.east + margin);
  while (open->near.Step()) {
    if (near.size() == mostNear) return std::nullopt;
    near.push_back(open->near.Number(0));
  }
  std::ranges::sort(near);
  near.erase(std::unique(near.begin(), near.end()), near.end());
  return near;
}

void ProductIndex::Find(const Area& area, const Take& take) const {
  const auto takeIfMet = [&](const SqliteStatement& box) {
    const Area found = {box.Real(1), box.Real(2), box.Real(3), box.Real(4)};
    return !Intersects(found, area) || take(box.Number(0), static_cast<std::size_t>(box.Number(5)));
  };
  if (const auto near = Near(area)) {
    for (const std::int64_t id : *near) {
      open->one.Bind(id);
      if (open->one.Step() && !takeIfMet(open->one)) return;
    }
  } else {
    open->all.Bind();
    while (open->all.Step() && takeIfMet(open->all)) continue;
  }
}

Product ProductIndex::Get(std::int64_t id) const {
  SqliteStatement& row = open->product;
  row.Bind(id);
  if (!row.Step()) throw std::runtime_error("a product is not in its index");
  return {static_cast<std::uint32_t>(row.Number(0)), row.Text(1), row.Text(2), row.Text(3),
          static_cast<std::uint32_t>(row.Number(4)), {}};
}

}  // namespace nvsupport::service
