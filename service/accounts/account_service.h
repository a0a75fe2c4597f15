// Operations 8 to 11 of the account service: one request in, one reply out.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SERVICE_H
#define NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SERVICE_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "service/accounts/account_settings.h"
#include "service/accounts/account_store.h"
#include "service/database/database.h"
#include "service/wire_items.h"

namespace nvsupport::service {

class AccountService {
 public:
  static constexpr std::size_t largestRequest = 16UL * 1024;
  static constexpr std::size_t longestText = 1000;  // characters of each text of a request
  static constexpr std::int64_t repeatSeconds =
      600;  // for so long a request for the same new account counts as sent again

  // Where a request comes from, when it came (seconds since 1970), and how to wait for a number of seconds.
  struct Caller {
    std::string networkAddress;
    std::int64_t now = 0;
    std::function<void(std::int64_t)> wait;
  };

  AccountService(Database& accounts, const AccountSettings& limits, Caller requester);

  std::string Answer(std::string_view request);

 private:
  std::string SignIn(RequestReader& request);
  std::string NameComputer(RequestReader& request);
  std::string CreateAccount(RequestReader& request);
  std::string OpenSession(RequestReader& request);
  // As AccountStore::Verify, at the pace that who guesses is given; serviceFailed for what is beyond it.
  Status Verify(const std::string& userId, const std::string& password, std::int64_t& account);

  Database& database;
  const AccountSettings settings;
  Caller caller;
  AccountStore store;
};

}  // namespace nvsupport::service

#endif
