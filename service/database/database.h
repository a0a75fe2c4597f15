// A database that several processes use at a time: SQLite in a file, or PostgreSQL, which several machines can share.
// Statements are SQL that both understand; their values are $1, $2 and so on, which first appear in that order. Values
// and columns are passed as text in UTF-8. Every failure is a std::runtime_error whose text holds no value.
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
  std::vector<Row> Run(const char* sql, const Values& values) { return Execute(sql, values); }
  // Runs statements that take no values and give no rows.
  virtual void RunScript(const char* sql) = 0;
  virtual bool HasTable(const std::string& name) = 0;
  // False when the database has to be opened again: the server closed the connection, or the file was replaced.
  virtual bool IsUsable() = 0;
  // What is broken in it, line by line, as far as it can be looked into; empty if nothing is.
  virtual std::string Damage() = 0;

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

// How long to wait for a database that others hold, and for a statement: with a request at most 2 seconds.
enum class Patience { ofRequest, endless };

// PostgreSQL for an address that begins with "postgresql://", else the SQLite file of that path, made if it is missing.
bool IsPostgres(const std::string& address);
std::unique_ptr<Database> OpenDatabase(const std::string& address, Patience patience = Patience::ofRequest);
// What was in it at one moment, to be read alone; others do not wait for who reads.
std::unique_ptr<Database> OpenSnapshot(const std::string& address);

// A backup: an SQLite file that no service uses, to be read alone.
std::unique_ptr<Database> OpenBackup(const std::string& path);
// A new one, readable by its owner alone, to be filled.
std::unique_ptr<Database> MakeBackup(const std::string& path);

std::int64_t ToNumber(const std::string& text);

}  // namespace nvsupport::service

#endif
