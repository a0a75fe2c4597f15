// The tables of the accounts, which are the same in every kind of database, and their versions.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SCHEMA_H
#define NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SCHEMA_H

#include "service/database/database.h"

namespace nvsupport::service {

// Brings a database, which may be empty, to the present version. Throws std::runtime_error if a newer program made it.
void BringUpToDate(Database& database);
void RefuseNewer(Database& database);

// Throws std::runtime_error if the database takes no changes.
void TryToWrite(Database& database);

}  // namespace nvsupport::service

#endif
