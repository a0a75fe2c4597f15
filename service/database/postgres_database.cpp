#include "service/database/postgres_database.h"

#include <libpq-fe.h>

#include <stdexcept>

namespace nvsupport::service {
namespace {

struct ResultCloser {
  void operator()(PGresult* result) const { PQclear(result); }
};
using Result = std::unique_ptr<PGresult, ResultCloser>;

// The server's own detail of an error quotes values, so only its first line and its code are told.
void ThrowUnlessDone(PGconn* connection, const Result& result) {
  const ExecStatusType status = PQresultStatus(result.get());
  if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK) return;
  const char* const code = PQresultErrorField(result.get(), PG_DIAG_SQLSTATE);
  const char* const line = PQresultErrorField(result.get(), PG_DIAG_MESSAGE_PRIMARY);
  if (code == nullptr || line == nullptr) {
    throw std::runtime_error(std::string("PostgreSQL: ") + PQerrorMessage(connection));
  }
  throw std::runtime_error(std::string("PostgreSQL: ") + code + ' ' + line);
}

}  // namespace

void PostgresDatabase::Closer::operator()(pg_conn* opened) const {
  PQfinish(opened);
}

PostgresDatabase::PostgresDatabase(const std::string& address) {
  // What stands before the address can be set otherwise by it.
  const char* const names[] = {"connect_timeout", "dbname", "client_encoding", nullptr};
  const char* const values[] = {"10", address.c_str(), "UTF8", nullptr};
  constexpr int dbnameIsAnAddress = 1;
  connection.reset(PQconnectdbParams(names, values, dbnameIsAnAddress));
  if (PQstatus(connection.get()) != CONNECTION_OK) {
    throw std::runtime_error(std::string("PostgreSQL: ") + PQerrorMessage(connection.get()));
  }
  PQsetNoticeProcessor(
      connection.get(), [](void*, const char*) {}, nullptr);
}

void PostgresDatabase::RunScript(const char* sql) {
  ThrowUnlessDone(connection.get(), Result(PQexec(connection.get(), sql)));
}

bool PostgresDatabase::HasTable(const std::string& name) {
  return !Run("SELECT 1 FROM pg_tables WHERE schemaname = current_schema() AND tablename = $1", name).empty();
}

std::vector<Database::Row> PostgresDatabase::Execute(const char* sql, const Values& values) {
  std::vector<const char*> texts;
  for (const std::string& value : values) texts.push_back(value.c_str());
  constexpr int asText = 0;
  const Result result(PQexecParams(connection.get(), sql, static_cast<int>(texts.size()), nullptr, texts.data(),
                                   nullptr, nullptr, asText));
  ThrowUnlessDone(connection.get(), result);
  std::vector<Row> rows(static_cast<std::size_t>(PQntuples(result.get())));
  for (int row = 0; row < PQntuples(result.get()); ++row) {
    for (int column = 0; column < PQnfields(result.get()); ++column) {
      rows[static_cast<std::size_t>(row)].emplace_back(PQgetvalue(result.get(), row, column));
    }
  }
  return rows;
}

void PostgresDatabase::Begin(const std::string& subject) {
  RunScript("BEGIN");
  // A lock on the subject, which goes with the transaction; the server keeps a queue for each.
  Run("SELECT pg_advisory_xact_lock(hashtextextended($1, 0))", subject);
}

void PostgresDatabase::Commit() {
  RunScript("COMMIT");
}

void PostgresDatabase::RollBack() noexcept {
  const Result ignored(PQexec(connection.get(), "ROLLBACK"));
}

}  // namespace nvsupport::service
