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

// An R*Tree keeps single precision, rounded outwards; what it finds is compared once more with the areas in full.
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

// Areas lie between -180 and 540 degrees of longitude, so one that is sought is looked for there in each of its turns.
constexpr const char* search = R"(
  SELECT number, title, short_text, file_reference, kibibytes, south, west, north, east FROM product WHERE id IN (
    SELECT id FROM area WHERE north >= ?1 AND south <= ?2 AND east >= ?3 AND west <= ?4
    UNION SELECT id FROM area WHERE north >= ?1 AND south <= ?2 AND east >= ?3 - 360 AND west <= ?4 - 360
    UNION SELECT id FROM area WHERE north >= ?1 AND south <= ?2 AND east >= ?3 + 360 AND west <= ?4 + 360)
  ORDER BY id
)";

// Differs for any two states of a file.
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

std::uint32_t Count(const SqliteFile& index) {
  SqliteStatement source(index, "SELECT products FROM source");
  return source.Step() ? static_cast<std::uint32_t>(source.Number(0)) : 0;
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

// In the place of the file at `path`, which keeps its content for those who have it open. If the product file has an
// error, a former index is taken over under the new stamp: the file is not read again until it changes.
void Make(const std::string& path, const std::string& productPath, const std::string& stamp, bool former) {
  const std::string unfinished = path + "-new";
  std::filesystem::remove(unfinished);  // of a process that was killed
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

ProductIndex::ProductIndex(const std::string& productPath, const std::string& indexPath) {
  const std::string stamp = Stamp(productPath);
  if (indexPath.empty()) {
    file.emplace(":memory:", SqliteFile::Mode::shared);
    Fill(*file, productPath, stamp);
    count = Count(*file);
    return;
  }
  if (Open(indexPath, stamp)) return;
  FileQueue makers(indexPath + "-queue");
  if (!file) {
    makers.Enter();
  } else if (!makers.TryEnter()) {
    return;
  }
  if (Open(indexPath, stamp)) return;  // another process was quicker
  try {
    Make(indexPath, productPath, stamp, file.has_value());
    Open(indexPath, stamp);
  } catch (const std::exception& error) {
    if (!file) throw;
    std::fprintf(stderr, "the products stay as they were: %s\n", error.what());
  }
}

bool ProductIndex::Open(const std::string& path, const std::string& wantedStamp) {
  if (!std::filesystem::exists(path)) return false;
  try {
    SqliteFile opened(path, SqliteFile::Mode::unchanging);
    SqliteStatement source(opened, "SELECT stamp FROM source");
    const std::string stamp = source.Step() ? source.Text(0) : "";
    if (!stamp.starts_with(format)) return false;
    count = Count(opened);
    file = std::move(opened);
    return stamp == wantedStamp;
  } catch (const std::runtime_error&) {
    return false;  // no index, whatever it is: a new one takes its place
  }
}

void ProductIndex::Find(const Area& area, const std::function<bool(const Product&)>& take) const {
  const Area sought = Normal(area);
  SqliteStatement found(*file, search);
  constexpr double margin = 1e-6;  // more than a turn can lose in rounding
  found.Bind(sought.south, sought.north, sought.west - margin, sought.east + margin);
  while (found.Step()) {
    Product product;
    product.number = static_cast<std::uint32_t>(found.Number(0));
    product.title = found.Text(1);
    product.shortText = found.Text(2);
    product.fileReference = found.Text(3);
    product.kibibytes = static_cast<std::uint32_t>(found.Number(4));
    product.area = {found.Real(5), found.Real(6), found.Real(7), found.Real(8)};
    if (Intersects(product.area, area) && !take(product)) return;
  }
}

}  // namespace nvsupport::service
