#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "service/database/backends.h"
#include "service/database/file_queue.h"
#include "service/database/sqlite_file.h"

namespace nvsupport::service {
namespace {

// Together with the time that SQLite itself waits, this stays below the 2 seconds that database.h promises.
constexpr std::chrono::milliseconds requestPatience{1000};

// Its users stand in a queue, the file PATH-queue. With SQLite alone each tries again and again, and under load some
// never get their turn.
class SqliteDatabase final : public Database {
 public:
  SqliteDatabase(const std::string& path, Patience wanted)
      : patience(wanted == Patience::ofRequest ? requestPatience : std::chrono::milliseconds::max()),
        queue(std::in_place, path + "-queue"),
        file(path, SqliteFile::Mode::shared) {
    file.Execute("PRAGMA foreign_keys = ON");
  }
  // Of a file that nobody else uses.
  explicit SqliteDatabase(SqliteFile alone) : file(std::move(alone)) {}

  void RunScript(const char* sql) override { file.Execute(sql); }

  bool HasTable(const std::string& name) override {
    return !Run("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = $1", name).empty();
  }

  std::string Damage() override {
    std::string damage;
    for (const char* look : {"PRAGMA integrity_check", "PRAGMA foreign_key_check"}) {
      for (const Row& row : Run(look)) damage += row[0] != "ok" ? row[0] + '\n' : "";
    }
    return damage;
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
    if (queue && !queue->Enter(patience)) throw std::runtime_error("SQLite: others hold the database");
    try {
      file.Execute(queue ? "BEGIN IMMEDIATE" : "BEGIN");
    } catch (...) {
      Leave();
      throw;
    }
  }

  void Commit() override {
    file.Execute("COMMIT");
    Leave();
  }

  void RollBack() noexcept override {
    sqlite3_exec(file.Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    Leave();
  }

  void Leave() noexcept {
    if (queue) queue->Leave();
  }

  const std::chrono::milliseconds patience{};
  std::optional<FileQueue> queue;
  SqliteFile file;
};

// A new file among the temporary ones, readable by its owner alone, whose name goes with the object.
struct NamelessFile {
  NamelessFile() {
    const int made = mkstemp(path.data());
    if (made < 0) throw std::system_error(errno, std::generic_category(), path);
    close(made);
  }
  NamelessFile(const NamelessFile&) = delete;
  NamelessFile& operator=(const NamelessFile&) = delete;
  ~NamelessFile() { unlink(path.c_str()); }

  std::string path = std::filesystem::temp_directory_path() / "nvservice-XXXXXX";
};

}  // namespace

std::unique_ptr<Database> OpenSqliteDatabase(const std::string& path, Patience patience) {
  return std::make_unique<SqliteDatabase>(path, patience);
}

// A copy of the file, byte by byte, holds the others up for less time than SQLite's own copies take.
std::unique_ptr<Database> OpenSqliteSnapshot(const std::string& path) {
  const NamelessFile copy;
  FileQueue queue(path + "-queue");
  queue.Enter();
  // Keeps those out who do not stand in the queue, such as an operator's own tools, and undoes what a killed process
  // left.
  SqliteFile held(path, SqliteFile::Mode::shared);
  held.Execute("BEGIN; SELECT 1 FROM sqlite_master");
  std::filesystem::copy_file(path, copy.path, std::filesystem::copy_options::overwrite_existing);
  queue.Leave();
  return OpenBackup(copy.path);
}

std::unique_ptr<Database> OpenBackup(const std::string& path) {
  return std::make_unique<SqliteDatabase>(SqliteFile(path, SqliteFile::Mode::unchanging));
}

std::unique_ptr<Database> MakeBackup(const std::string& path) {
  return std::make_unique<SqliteDatabase>(SqliteFile(path, SqliteFile::Mode::created));
}

}  // namespace nvsupport::service
