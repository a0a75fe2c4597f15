// Thin owners of SQLite's handles: an open file, and a statement with its values. Every failure is a
// std::runtime_error with SQLite's own text, which names tables and constraints and never a value.
#ifndef NVSUPPORT_SERVICE_DATABASE_SQLITE_FILE_H
#define NVSUPPORT_SERVICE_DATABASE_SQLITE_FILE_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace nvsupport::service {

class SqliteFile {
 public:
  enum class Mode {
    shared,      // made if it is missing; others may read and write it at the same time
    unchanging,  // only read, and nobody writes to it
    created      // a new file, readable by its owner alone; no other file is made beside it
  };
  SqliteFile(const std::string& path, Mode mode);

  void Execute(const char* sql);
  bool InTransaction() const;
  sqlite3* Handle() const { return handle.get(); }

 private:
  struct Closer {
    void operator()(sqlite3* file) const;
  };
  std::unique_ptr<sqlite3, Closer> handle;
};

class SqliteStatement {
 public:
  SqliteStatement(const SqliteFile& file, const char* sql);

  // Gives values to the parameters, in their order, and makes the statement ready to run once more.
  template <typename... Values>
  void Bind(const Values&... values) {
    Reset();
    int index = 0;
    (BindOne(++index, values), ...);
  }
  void BindOne(int index, std::int64_t value);
  void BindOne(int index, double value);
  void BindOne(int index, std::string_view value);

  // True while there is a row.
  bool Step();
  int Columns() const;
  std::int64_t Number(int column) const;
  double Real(int column) const;
  std::string Text(int column) const;

 private:
  void Reset();

  struct Closer {
    void operator()(sqlite3_stmt* statement) const;
  };
  std::unique_ptr<sqlite3_stmt, Closer> handle;
};

}  // namespace nvsupport::service

#endif
