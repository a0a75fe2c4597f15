#include "service/database/sqlite_database.h"

#include <sqlite3.h>

namespace nvsupport::service {
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
