// The tables of the accounts, which are the same in every kind of database, and their versions.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SCHEMA_H
#define NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SCHEMA_H

#include "service/database/database.h"

namespace nvsupport::service {

// Brings the database to the present version, an empty one as well. Throws std::runtime_error for one of a newer
// version; what a newer program has only added to the present one does no harm.
void BringUpToDate(Database& database);
void RefuseNewer(Database& database);

// Throws std::runtime_error if the database takes no changes.
void TryToWrite(Database& database);

}  // namespace nvsupport::service

#endif
