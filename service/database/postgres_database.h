// The database on a PostgreSQL server, one connection for each object.
#ifndef NVSUPPORT_SERVICE_DATABASE_POSTGRES_DATABASE_H
#define NVSUPPORT_SERVICE_DATABASE_POSTGRES_DATABASE_H

#include "service/database/database.h"

struct pg_conn;

namespace nvsupport::service {

class PostgresDatabase final : public Database {
 public:
  // address: a connection address as libpq takes it, "postgresql://user@host/database?option=value".
  explicit PostgresDatabase(const std::string& address);

  void RunScript(const char* sql) override;
  bool HasTable(const std::string& name) override;

 private:
  std::vector<Row> Execute(const char* sql, const Values& values) override;
  void Begin(const std::string& subject) override;
  void Commit() override;
  void RollBack() noexcept override;

  struct Closer {
    void operator()(pg_conn* opened) const;
  };
  std::unique_ptr<pg_conn, Closer> connection;
};

}  // namespace nvsupport::service

#endif
