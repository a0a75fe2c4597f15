// The empty database of a test: on the server of NV_SERVICE_DATABASE if that is set, else in a file.
#ifndef NVSUPPORT_TESTS_SERVICE_ACCOUNTS_TEST_DATABASE_H
#define NVSUPPORT_TESTS_SERVICE_ACCOUNTS_TEST_DATABASE_H

#include <gtest/gtest.h>

#include "service/cgi.h"
#include "service/database/database.h"
#include "support/temporary_home.h"

class AccountsTest : public testing::Test {
 protected:
  AccountsTest() {
    if (onServer) Open()->RunScript("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
  }

  // A connection of its own, as each process has one.
  std::unique_ptr<nvsupport::service::Database> Open() const {
    return nvsupport::service::OpenDatabase(onServer ? server : folder / "accounts.sqlite");
  }

  const nvsupport::testing::TemporaryFolder folder;
  const std::string server = nvsupport::service::Variable("NV_SERVICE_DATABASE");
  const bool onServer = !server.empty();
};

#endif
