#include <dlfcn.h>
#include <libpq-fe.h>

#include <cstdlib>
#include <stdexcept>
#include <string_view>

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
  const Function<decltype(PQconninfoParse)> parse{"PQconninfoParse"};
  const Function<decltype(PQconninfoFree)> freeOptions{"PQconninfoFree"};
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
    // The address can override what stands in front of it; what has no value, by libpq's own variables.
    const bool remote = IsRemote(address);
    const auto usual = [&](const char* variable, const char* value) {
      return remote && std::getenv(variable) == nullptr ? value : "";
    };
    const char* const names[] = {"connect_timeout", "tcp_user_timeout", "sslmode", "sslrootcert",
                                 "dbname",          "client_encoding",  nullptr};
    const char* const values[] = {"2",
                                  "2000",
                                  usual("PGSSLMODE", "verify-full"),
                                  usual("PGSSLROOTCERT", "/etc/ssl/certs/ca-certificates.crt"),
                                  address.c_str(),
                                  "UTF8",
                                  nullptr};
    constexpr int dbnameIsAnAddress = 1;
    connection.reset(pq.connect(names, values, dbnameIsAnAddress));
    if (pq.status(connection.get()) != CONNECTION_OK) {
      throw std::runtime_error(std::string("PostgreSQL: ") + pq.errorMessage(connection.get()));
    }
    pq.setNoticeProcessor(connection.get(), [](void*, const char*) {}, nullptr);
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
    // A server that ends a connection says so first: the second call finds the end.
    for (int call = 0; call < 2; ++call) {
      if (pq.consumeInput(connection.get()) != 1) return false;
    }
    return pq.status(connection.get()) == CONNECTION_OK;
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

  // True if a connection would leave this machine.
  bool IsRemote(const std::string& address) const {
    const std::unique_ptr<PQconninfoOption, void (*)(PQconninfoOption*)> options(
        pq.parse(address.c_str(), nullptr), [](PQconninfoOption* parsed) { Libpq::Get().freeOptions(parsed); });
    const char* const usualHost = std::getenv("PGHOST");
    bool remote = usualHost != nullptr && HasRemote(usualHost);
    for (const auto* option = options.get(); option != nullptr && option->keyword != nullptr; ++option) {
      const std::string_view name = option->keyword;
      if (option->val != nullptr && (name == "host" || name == "hostaddr")) remote = remote || HasRemote(option->val);
    }
    return remote;
  }

  // list: with commas; a host that begins with a slash is the folder of a socket.
  static bool HasRemote(std::string_view list) {
    for (;;) {
      const std::size_t comma = list.find(',');
      const std::string_view host = list.substr(0, comma);
      const bool here = host.empty() || host[0] == '/' || host == "localhost" || host == "127.0.0.1" || host == "::1";
      if (!here) return true;
      if (comma == std::string_view::npos) return false;
      list.remove_prefix(comma + 1);
    }
  }

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
