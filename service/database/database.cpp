#include "service/database/database.h"

#include <charconv>
#include <stdexcept>

#include "service/database/postgres_database.h"
#include "service/database/sqlite_database.h"

namespace nvsupport::service {

std::unique_ptr<Database> OpenDatabase(const std::string& address) {
  if (address.starts_with("postgresql://")) return std::make_unique<PostgresDatabase>(address);
  return std::make_unique<SqliteDatabase>(address);
}

std::int64_t ToNumber(const std::string& text) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) throw std::runtime_error("a number was expected");
  return number;
}

}  // namespace nvsupport::service
