// Accounts on their way from one database to another, whatever kind either is: into a backup, out of it, to PostgreSQL.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_COPY_H
#define NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_COPY_H

#include "service/database/database.h"

namespace nvsupport::service {

// Puts the accounts of one database, with their computers and known addresses, in the place of those of another, as a
// whole or not at all. Sessions end by it, and no failed sign-in is taken along. `from` is to be one that nobody
// changes meanwhile.
void CopyAccounts(Database& from, Database& to);

}  // namespace nvsupport::service

#endif
