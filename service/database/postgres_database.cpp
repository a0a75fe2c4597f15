#include <dlfcn.h>
#include <libpq-fe.h>

#include <stdexcept>

#include "service/database/backends.h"

namespace nvsupport::service {
namespace {

// Loading libpq with its libraries takes longer than most requests take in all, so it is loaded only when an address
// asks for it, by the name of the version that the header belongs to.
void* FindInLibpq(const char* name) {
  static void* const library = dlopen("libpq.so.5", RTLD_NOW);
  void* const found = library != nullptr ? dlsym(library, name) : nullptr;
  if (found == nullptr) throw std::runtime_error("PostgreSQL: libpq.so.5 cannot be loaded");
  return found;
}

template <typename Type>
class Function {
 public:
  explicit Function(const char* name) : address(reinterpret_cast<Type*>(FindInLibpq(name))) {}
  template <typename... Arguments>
  auto operator()(Arguments... arguments) const {
    return address(arguments...);
  }

 private:
  Type* address;
};

struct Libpq {
  static const Libpq& Get() {
    static const Libpq library;
    return library;
  }

  const Function<decltype(PQconnectdbParams)> connect{"PQconnectdbParams"};
  const Function<decltype(PQfinish)> finish{"PQfinish"};
  const Function<decltype(PQstatus)> status{"PQstatus"};
  const Function<decltype(PQerrorMessage)> errorMessage{"PQerrorMessage"};
  const Function<decltype(PQsetNoticeProcessor)> setNoticeProcessor{"PQsetNoticeProcessor"};
  const Function<decltype(PQconsumeInput)> consumeInput{"PQconsumeInput"};
  const Function<decltype(PQexec)> exec{"PQexec"};
  const Function<decltype(PQexecParams)> execParams{"PQexecParams"};
  const Function<decltype(PQclear)> clear{"PQclear"};
  const Function<decltype(PQresultStatus)> resultStatus{"PQresultStatus"};
  const Function<decltype(PQresultErrorField)> resultErrorField{"PQresultErrorField"};
  const Function<decltype(PQntuples)> rowCount{"PQntuples"};
  const Function<decltype(PQnfields)> columnCount{"PQnfields"};
  const Function<decltype(PQgetvalue)> value{"PQgetvalue"};
};

struct ResultCloser {
  void operator()(PGresult* result) const { Libpq::Get().clear(result); }
};
using Result = std::unique_ptr<PGresult, ResultCloser>;

class PostgresDatabase final : public Database {
 public:
  PostgresDatabase(const std::string& address, Patience patience) {
    // The address can override what stands in front of it.
    const char* const names[] = {"connect_timeout", "tcp_user_timeout", "dbname", "client_encoding", nullptr};
    const char* const values[] = {"2", "2000", address.c_str(), "UTF8", nullptr};
    constexpr int dbnameIsAnAddress = 1;
    connection.reset(pq.connect(names, values, dbnameIsAnAddress));
    if (pq.status(connection.get()) != CONNECTION_OK) {
      throw std::runtime_error(std::string("PostgreSQL: ") + pq.errorMessage(connection.get()));
    }
    pq.setNoticeProcessor(
        connection.get(), [](void*, const char*) {}, nullptr);
    if (patience == Patience::ofRequest) {
      RunScript("SET statement_timeout = 1800");  // milliseconds, waiting for locks included
    }
  }

  void RunScript(const char* sql) override { ThrowUnlessDone(Result(pq.exec(connection.get(), sql))); }

  bool HasTable(const std::string& name) override {
    return !Run("SELECT 1 FROM pg_tables WHERE schemaname = current_schema() AND tablename = $1", name).empty();
  }

  std::string Damage() override { return {}; }  // the server's own care

  // Reads what the server has sent meanwhile; it may have closed the connection.
  bool IsUsable() override {
    return pq.consumeInput(connection.get()) == 1 && pq.status(connection.get()) == CONNECTION_OK;
  }

 private:
  std::vector<Row> Execute(const char* sql, const Values& values) override {
    std::vector<const char*> texts;
    for (const std::string& value : values) texts.push_back(value.c_str());
    constexpr int asText = 0;
    const Result result(pq.execParams(connection.get(), sql, static_cast<int>(texts.size()), nullptr, texts.data(),
                                      nullptr, nullptr, asText));
    ThrowUnlessDone(result);
    std::vector<Row> rows(static_cast<std::size_t>(pq.rowCount(result.get())));
    for (int row = 0; row < pq.rowCount(result.get()); ++row) {
      for (int column = 0; column < pq.columnCount(result.get()); ++column) {
        rows[static_cast<std::size_t>(row)].emplace_back(pq.value(result.get(), row, column));
      }
    }
    return rows;
  }

  void Begin(const std::string& subject) override {
    RunScript("BEGIN");
    // A lock on the subject, released with the transaction. The server keeps a queue for each lock.
    Run("SELECT pg_advisory_xact_lock(hashtextextended($1, 0))", subject);
  }

  void Commit() override { RunScript("COMMIT"); }

  void RollBack() noexcept override { const Result ignored(pq.exec(connection.get(), "ROLLBACK")); }

  // The details of the server's errors quote values, so only the first line and the code are passed on.
  void ThrowUnlessDone(const Result& result) const {
    const ExecStatusType status = pq.resultStatus(result.get());
    if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK) return;
    const char* const code = pq.resultErrorField(result.get(), PG_DIAG_SQLSTATE);
    const char* const line = pq.resultErrorField(result.get(), PG_DIAG_MESSAGE_PRIMARY);
    if (code == nullptr || line == nullptr) {
      throw std::runtime_error(std::string("PostgreSQL: ") + pq.errorMessage(connection.get()));
    }
    throw std::runtime_error(std::string("PostgreSQL: ") + code + ' ' + line);
  }

  struct Closer {
    void operator()(PGconn* opened) const { Libpq::Get().finish(opened); }
  };
  const Libpq& pq = Libpq::Get();
  std::unique_ptr<PGconn, Closer> connection;
};

}  // namespace

std::unique_ptr<Database> OpenPostgresDatabase(const std::string& address, Patience patience) {
  return std::make_unique<PostgresDatabase>(address, patience);
}

std::unique_ptr<Database> OpenPostgresSnapshot(const std::string& address) {
  auto database = std::make_unique<PostgresDatabase>(address, Patience::endless);
  database->RunScript("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
  return database;
}

}  // namespace nvsupport::service
