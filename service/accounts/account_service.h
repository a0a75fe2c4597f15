// Operations 8 to 11 of the account service: one request in, one reply out.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SERVICE_H
#define NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SERVICE_H

#include <cstdint>
#include <string>
#include <string_view>

#include "service/accounts/account_store.h"

namespace nvsupport::service {

class AccountService {
 public:
  static constexpr std::size_t largestRequest = 16UL * 1024;
  static constexpr std::size_t longestText = 1000;  // characters of each text of a request

  // now: seconds since 1970. sessionLifetime: seconds for which a session token is good.
  AccountService(AccountStore& accounts, std::int64_t now, std::int64_t sessionLifetime)
      : store(accounts), time(now), lifetime(sessionLifetime) {}

  std::string Answer(std::string_view request);

 private:
  AccountStore& store;
  std::int64_t time;
  std::int64_t lifetime;
};

}  // namespace nvsupport::service

#endif
