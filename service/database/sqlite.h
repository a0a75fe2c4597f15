// A thin owner of SQLite handles: database, statement, transaction. Every failure is a std::runtime_error with
// SQLite's own text, which names tables and constraints and never a value.
#ifndef NVSUPPORT_SERVICE_DATABASE_SQLITE_H
#define NVSUPPORT_SERVICE_DATABASE_SQLITE_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace nvsupport::service {

class Database {
 public:
  // Opens the file, making it if it is missing. Other processes may use it at the same time: an operation waits for
  // them up to ten seconds.
  explicit Database(const std::string& path);

  void Execute(const char* sql);
  sqlite3* Handle() const { return handle.get(); }

 private:
  struct Closer {
    void operator()(sqlite3* database) const;
  };
  std::unique_ptr<sqlite3, Closer> handle;
};

// One statement with its parameters, bound in order at construction.
class Statement {
 public:
  template <typename... Values>
  Statement(const Database& database, const char* sql, const Values&... values) {
    Prepare(database, sql);
    int index = 0;
    (Bind(++index, values), ...);
  }

  // True while there is a row.
  bool Step();
  std::int64_t Number(int column) const;
  std::string Text(int column) const;

 private:
  void Prepare(const Database& database, const char* sql);
  void Bind(int index, std::int64_t value);
  void Bind(int index, std::string_view value);

  struct Closer {
    void operator()(sqlite3_stmt* statement) const;
  };
  std::unique_ptr<sqlite3_stmt, Closer> handle;
};

// Holds the write lock from construction on, so that what is read in between stays true; undone unless committed.
class Transaction {
 public:
  explicit Transaction(Database& database) : target(database) { target.Execute("BEGIN IMMEDIATE"); }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction();

  void Commit();

 private:
  Database& target;
  bool open = true;
};

}  // namespace nvsupport::service

#endif
