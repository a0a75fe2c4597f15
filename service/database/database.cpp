#include "service/database/database.h"

#include <charconv>
#include <stdexcept>

#include "service/database/backends.h"

namespace nvsupport::service {

bool IsPostgres(const std::string& address) {
  return address.starts_with("postgresql://");
}

std::unique_ptr<Database> OpenDatabase(const std::string& address, Patience patience) {
  return IsPostgres(address) ? OpenPostgresDatabase(address, patience) : OpenSqliteDatabase(address, patience);
}

std::unique_ptr<Database> OpenSnapshot(const std::string& address) {
  return IsPostgres(address) ? OpenPostgresSnapshot(address) : OpenSqliteSnapshot(address);
}

std::int64_t ToNumber(const std::string& text) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) throw std::runtime_error("a number was expected");
  return number;
}

}  // namespace nvsupport::service
