// Slows down who guesses passwords. After some failed sign-ins an account and a network address are answered slowly,
// one attempt after the other, until the failures are forgotten. Whether there is such an account makes no difference.
// Few answers are slow at a time, because each holds a process of the web server; what is beyond them is refused.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_GUESS_LIMIT_H
#define NVSUPPORT_SERVICE_ACCOUNTS_GUESS_LIMIT_H

#include <cstdint>
#include <optional>
#include <string>

#include "service/accounts/account_settings.h"
#include "service/database/database.h"

namespace nvsupport::service {

// One attempt to sign in: ask Wait, wait, look at the password, tell Succeeded or Failed. Times are seconds since 1970.
class GuessLimit {
 public:
  // Keys as account_rules.h makes them.
  GuessLimit(Database& accounts, const AccountSettings& limits, std::string userKey, std::string networkKey)
      : database(accounts), settings(limits), user(std::move(userKey)), network(std::move(networkKey)) {}

  // For how many seconds the answer is to be held back; none if the attempt is to be refused without a look at it.
  std::optional<std::int64_t> Wait(std::int64_t now);

  void Succeeded();
  void Failed(std::int64_t now);

 private:
  // A table of its own order: attempts that failed, and those that are held back, which are to be answered later than
  // now. The latter are taken for failures until they prove to be none.
  Database& database;
  const AccountSettings& settings;
  const std::string user;
  const std::string network;
  bool clean = true;  // no failure of this account counts
  bool noted = false;
};

}  // namespace nvsupport::service

#endif
