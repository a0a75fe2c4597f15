#include "service/database/sqlite.h"

#include <sqlite3.h>

#include <stdexcept>

namespace nvsupport::service {
namespace {

constexpr int busyMilliseconds = 10'000;

[[noreturn]] void Throw(sqlite3* database) {
  throw std::runtime_error(std::string("database: ") + sqlite3_errmsg(database));
}

}  // namespace

void Database::Closer::operator()(sqlite3* database) const {
  sqlite3_close(database);
}

void Statement::Closer::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

Database::Database(const std::string& path) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
  handle.reset(opened);
  if (result != SQLITE_OK) Throw(opened);
  sqlite3_busy_timeout(opened, busyMilliseconds);
}

void Database::Execute(const char* sql) {
  if (sqlite3_exec(handle.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) Throw(handle.get());
}

void Statement::Prepare(const Database& database, const char* sql) {
  sqlite3_stmt* prepared = nullptr;
  if (sqlite3_prepare_v2(database.Handle(), sql, -1, &prepared, nullptr) != SQLITE_OK) Throw(database.Handle());
  handle.reset(prepared);
}

void Statement::Bind(int index, std::int64_t value) {
  if (sqlite3_bind_int64(handle.get(), index, value) != SQLITE_OK) Throw(sqlite3_db_handle(handle.get()));
}

void Statement::Bind(int index, std::string_view value) {
  const int size = static_cast<int>(value.size());
  if (sqlite3_bind_text(handle.get(), index, value.data(), size, SQLITE_TRANSIENT) != SQLITE_OK) {
    Throw(sqlite3_db_handle(handle.get()));
  }
}

bool Statement::Step() {
  const int result = sqlite3_step(handle.get());
  if (result != SQLITE_ROW && result != SQLITE_DONE) Throw(sqlite3_db_handle(handle.get()));
  return result == SQLITE_ROW;
}

std::int64_t Statement::Number(int column) const {
  return sqlite3_column_int64(handle.get(), column);
}

std::string Statement::Text(int column) const {
  const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(handle.get(), column));
  return text ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(handle.get(), column))) : "";
}

Transaction::~Transaction() {
  if (open) sqlite3_exec(target.Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::Commit() {
  target.Execute("COMMIT");
  open = false;
}

}  // namespace nvsupport::service
