// The empty database of a test: on the server of NV_SERVICE_DATABASE if that is set, else in a file.
#ifndef NVSUPPORT_TESTS_SERVICE_ACCOUNTS_TEST_DATABASE_H
#define NVSUPPORT_TESTS_SERVICE_ACCOUNTS_TEST_DATABASE_H

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "service/cgi.h"
#include "service/database/database.h"
#include "support/temporary_home.h"

class AccountsTest : public testing::Test {
 protected:
  AccountsTest() {
    if (address.empty()) {
      address = folder / "accounts.sqlite";
    } else {
      Open()->RunScript("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
    }
  }

  // A connection of its own, as each process has one.
  std::unique_ptr<nvsupport::service::Database> Open() { return nvsupport::service::OpenDatabase(address); }

  const nvsupport::testing::TemporaryFolder folder;
  std::string address = nvsupport::service::Variable("NV_SERVICE_DATABASE");
};

// Does `work` with the numbers from 0 on, each in a thread of its own.
inline void AtATime(int count, const std::function<void(int)>& work) {
  std::vector<std::jthread> threads;
  for (int i = 0; i < count; ++i) threads.emplace_back(work, i);
}

#endif
