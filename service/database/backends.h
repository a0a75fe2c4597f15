// The two kinds of database, for OpenDatabase alone.
#ifndef NVSUPPORT_SERVICE_DATABASE_BACKENDS_H
#define NVSUPPORT_SERVICE_DATABASE_BACKENDS_H

#include "service/database/database.h"

namespace nvsupport::service {

// The database in one SQLite file.
std::unique_ptr<Database> OpenSqliteDatabase(const std::string& path, Patience patience);
std::unique_ptr<Database> OpenSqliteSnapshot(const std::string& path);

// The database on a PostgreSQL server, one connection for each object. address: a connection address as libpq takes
// it, "postgresql://user@host/database?option=value".
std::unique_ptr<Database> OpenPostgresDatabase(const std::string& address, Patience patience);
std::unique_ptr<Database> OpenPostgresSnapshot(const std::string& address);

}  // namespace nvsupport::service

#endif
