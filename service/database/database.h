// A database that several processes use at a time: SQLite in a file, or PostgreSQL, which several machines can share.
// Statements are SQL that both understand; their values are $1, $2 and so on, which first appear in that order. Values
// and columns are passed as text in UTF-8. Every failure is a std::runtime_error whose text holds no value; so it is if
// the database cannot be opened, or is locked by others for 2 seconds.
#ifndef NVSUPPORT_SERVICE_DATABASE_DATABASE_H
#define NVSUPPORT_SERVICE_DATABASE_DATABASE_H

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace nvsupport::service {

class Database {
 public:
  using Row = std::vector<std::string>;
  using Values = std::vector<std::string>;

  virtual ~Database() = default;

  // Runs one statement and returns its rows.
  template <typename... Arguments>
  std::vector<Row> Run(const char* sql, const Arguments&... arguments) {
    return Execute(sql, {AsText(arguments)...});
  }
  // Runs statements that take no values and give no rows.
  virtual void RunScript(const char* sql) = 0;
  virtual bool HasTable(const std::string& name) = 0;
  // False when the database has to be opened again: the server closed the connection, or the file was replaced.
  virtual bool IsUsable() = 0;

 private:
  friend class Transaction;

  static std::string AsText(const std::string& value) { return value; }
  static std::string AsText(std::integral auto value) { return std::to_string(value); }

  virtual std::vector<Row> Execute(const char* sql, const Values& values) = 0;
  virtual void Begin(const std::string& subject) = 0;
  virtual void Commit() = 0;
  virtual void RollBack() noexcept = 0;
};

// What is done between construction and Commit takes effect as a whole, or not at all. Transactions on the same subject
// run one after the other, in the order in which they ask, so that what one has read stays true until it ends.
class Transaction {
 public:
  Transaction(Database& database, const std::string& subject) : target(database) { target.Begin(subject); }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction() {
    if (open) target.RollBack();
  }

  void Commit() {
    target.Commit();
    open = false;
  }

 private:
  Database& target;
  bool open = true;
};

// PostgreSQL for an address that begins with "postgresql://", else the SQLite file of that path, made if it is missing.
std::unique_ptr<Database> OpenDatabase(const std::string& address);

std::int64_t ToNumber(const std::string& text);

}  // namespace nvsupport::service

#endif
