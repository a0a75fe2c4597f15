// The tables of the accounts, the same in every database, and the versions that they went through.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SCHEMA_H
#define NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SCHEMA_H

#include "service/database/database.h"

namespace nvsupport::service {

// Brings the database to the present version, an empty one as well. Throws std::runtime_error for one that a newer
// program has made.
void BringUpToDate(Database& database);

// Throws std::runtime_error if the database takes no changes.
void TryToWrite(Database& database);

}  // namespace nvsupport::service

#endif
