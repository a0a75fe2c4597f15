#include <sqlite3.h>

#include <chrono>
#include <stdexcept>

#include "service/database/backends.h"
#include "service/database/file_queue.h"
#include "service/database/sqlite_file.h"

namespace nvsupport::service {
namespace {

// Together with the time that SQLite itself waits, this stays below the 2 seconds that database.h promises.
constexpr std::chrono::milliseconds patience{1000};

// Its users stand in a queue, the file PATH-queue. With SQLite alone each tries again and again, and under load some
// never get their turn.
class SqliteDatabase final : public Database {
 public:
  explicit SqliteDatabase(const std::string& path) : queue(path + "-queue"), file(path, SqliteFile::Mode::shared) {
    file.Execute("PRAGMA foreign_keys = ON");
  }

  void RunScript(const char* sql) override { file.Execute(sql); }

  bool HasTable(const std::string& name) override {
    return !Run("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = $1", name).empty();
  }

  bool IsUsable() override {
    int moved = 0;
    return sqlite3_file_control(file.Handle(), "main", SQLITE_FCNTL_HAS_MOVED, &moved) == SQLITE_OK && moved == 0;
  }

 private:
  std::vector<Row> Execute(const char* sql, const Values& values) override {
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

  // The subject does not matter: the file is locked as a whole.
  void Begin(const std::string& /*subject*/) override {
    if (!queue.Enter(patience)) throw std::runtime_error("SQLite: others hold the database");
    try {
      file.Execute("BEGIN IMMEDIATE");
    } catch (...) {
      queue.Leave();
      throw;
    }
  }

  void Commit() override {
    file.Execute("COMMIT");
    queue.Leave();
  }

  void RollBack() noexcept override {
    sqlite3_exec(file.Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    queue.Leave();
  }

  FileQueue queue;
  SqliteFile file;
};

}  // namespace

std::unique_ptr<Database> OpenSqliteDatabase(const std::string& path) {
  return std::make_unique<SqliteDatabase>(path);
}

}  // namespace nvsupport::service
