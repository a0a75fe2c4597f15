#include "service/database/sqlite_database.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace nvsupport::service {
namespace {

constexpr int ownerOnly = 0600;

}  // namespace

FileQueue::FileQueue(const std::string& path)
    : descriptor(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ownerOnly)) {
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), path);
}

FileQueue::~FileQueue() {
  close(descriptor);
}

void FileQueue::Enter() {
  while (flock(descriptor, LOCK_EX) != 0) {
    if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "waiting in the queue of the database");
  }
}

void FileQueue::Leave() noexcept {
  flock(descriptor, LOCK_UN);
}

SqliteDatabase::SqliteDatabase(const std::string& path) : queue(path + "-queue"), file(path, SqliteFile::Mode::shared) {
  file.Execute("PRAGMA foreign_keys = ON");
}

void SqliteDatabase::RunScript(const char* sql) {
  file.Execute(sql);
}

bool SqliteDatabase::HasTable(const std::string& name) {
  return !Run("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = $1", name).empty();
}

std::vector<Database::Row> SqliteDatabase::Execute(const char* sql, const Values& values) {
  if (!file.InTransaction()) {
    Transaction alone(*this, {});
    auto rows = Execute(sql, values);
    alone.Commit();
    return rows;
  }
  SqliteStatement statement(file, sql);
  for (std::size_t i = 0; i < values.size(); ++i) statement.BindOne(static_cast<int>(i + 1), values[i]);
  std::vector<Row> rows;
  while (statement.Step()) {
    Row& row = rows.emplace_back();
    for (int column = 0; column < statement.Columns(); ++column) row.push_back(statement.Text(column));
  }
  return rows;
}

// The file is locked as a whole, whatever the subject.
void SqliteDatabase::Begin(const std::string& /*subject*/) {
  queue.Enter();
  try {
    file.Execute("BEGIN IMMEDIATE");
  } catch (...) {
    queue.Leave();
    throw;
  }
}

void SqliteDatabase::Commit() {
  file.Execute("COMMIT");
  queue.Leave();
}

void SqliteDatabase::RollBack() noexcept {
  sqlite3_exec(file.Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
  queue.Leave();
}

}  // namespace nvsupport::service
