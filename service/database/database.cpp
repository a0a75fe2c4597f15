#include "service/database/database.h"

#include <charconv>
#include <stdexcept>

#include "service/database/backends.h"

namespace nvsupport::service {

std::unique_ptr<Database> OpenDatabase(const std::string& address) {
  return address.starts_with("postgresql://") ? OpenPostgresDatabase(address) : OpenSqliteDatabase(address);
}

std::int64_t ToNumber(const std::string& text) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) throw std::runtime_error("a number was expected");
  return number;
}

}  // namespace nvsupport::service
