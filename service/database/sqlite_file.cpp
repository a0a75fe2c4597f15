#include "service/database/sqlite_file.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "src/base/ascii.h"

namespace nvsupport::service {
namespace {

// For programs that do not stand in the queue of sqlite_database.cpp, such as an operator's own tools.
constexpr int busyMilliseconds = 800;

[[noreturn]] void Throw(sqlite3* file) {
  throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(file));
}

// The path as a "file:" address, which can carry options.
std::string UnchangingAddress(const std::string& path) {
  std::string address = "file:";
  for (const char c : path) {
    if (c == '%' || c == '?' || c == '#') {
      address += '%';
      base::AppendHexByte(address, static_cast<std::uint8_t>(c));
    } else {
      address += c;
    }
  }
  return address + "?immutable=1";
}

void MakeFile(const std::string& path) {
  constexpr int ownerOnly = 0600;
  const int made = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, ownerOnly);
  if (made < 0) throw std::system_error(errno, std::generic_category(), path);
  close(made);
}

}  // namespace

void SqliteFile::Closer::operator()(sqlite3* file) const {
  sqlite3_close(file);
}

void SqliteStatement::Closer::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

SqliteFile::SqliteFile(const std::string& path, Mode mode) {
  if (mode == Mode::created) MakeFile(path);
  std::string address = path;
  int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  if (mode == Mode::unchanging) {
    address = UnchangingAddress(path);
    flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
  }
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(address.c_str(), &opened, flags, nullptr);
  handle.reset(opened);
  if (result != SQLITE_OK) Throw(opened);
  sqlite3_busy_timeout(opened, busyMilliseconds);
  if (mode == Mode::created) Execute("PRAGMA journal_mode = MEMORY");
}

void SqliteFile::Execute(const char* sql) {
  if (sqlite3_exec(handle.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) Throw(handle.get());
}

bool SqliteFile::InTransaction() const {
  return sqlite3_get_autocommit(handle.get()) == 0;
}

SqliteStatement::SqliteStatement(const SqliteFile& file, const char* sql) {
  sqlite3_stmt* prepared = nullptr;
  if (sqlite3_prepare_v2(file.Handle(), sql, -1, &prepared, nullptr) != SQLITE_OK) Throw(file.Handle());
  handle.reset(prepared);
}

void SqliteStatement::BindOne(int index, std::int64_t value) {
  if (sqlite3_bind_int64(handle.get(), index, value) != SQLITE_OK) Throw(sqlite3_db_handle(handle.get()));
}

void SqliteStatement::BindOne(int index, double value) {
  if (sqlite3_bind_double(handle.get(), index, value) != SQLITE_OK) Throw(sqlite3_db_handle(handle.get()));
}

void SqliteStatement::BindOne(int index, std::string_view value) {
  const int size = static_cast<int>(value.size());
  // NOLINTNEXTLINE(bugprone-suspicious-stringview-data-usage): its size goes along
  if (sqlite3_bind_text(handle.get(), index, value.data(), size, SQLITE_TRANSIENT) != SQLITE_OK) {
    Throw(sqlite3_db_handle(handle.get()));
  }
}

bool SqliteStatement::Step() {
  const int result = sqlite3_step(handle.get());
  if (result != SQLITE_ROW && result != SQLITE_DONE) Throw(sqlite3_db_handle(handle.get()));
  return result == SQLITE_ROW;
}

int SqliteStatement::Columns() const {
  return sqlite3_column_count(handle.get());
}

std::int64_t SqliteStatement::Number(int column) const {
  return sqlite3_column_int64(handle.get(), column);
}

double SqliteStatement::Real(int column) const {
  return sqlite3_column_double(handle.get(), column);
}

std::string SqliteStatement::Text(int column) const {
  const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(handle.get(), column));
  return text ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(handle.get(), column))) : "";
}

void SqliteStatement::Reset() {
  sqlite3_reset(handle.get());
}

}  // namespace nvsupport::service
