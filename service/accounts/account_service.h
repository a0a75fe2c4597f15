// Operations 8 to 11 of the account service: one request in, one reply out.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SERVICE_H
#define NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SERVICE_H

#include <cstdint>
#include <string>
#include <string_view>

#include "service/accounts/account_settings.h"
#include "service/accounts/account_store.h"
#include "service/database/database.h"
#include "service/reply.h"
#include "service/wire_items.h"

namespace nvsupport::service {

class AccountService {
 public:
  static constexpr std::size_t largestRequest = 16UL * 1024;
  static constexpr std::size_t longestText = 1000;  // characters of each text of a request
  static constexpr std::int64_t repeatSeconds =
      600;  // within this time a request for the same new account counts as sent again

  // Where a request comes from and when it came (seconds since 1970).
  struct Caller {
    std::string networkAddress;
    std::int64_t now = 0;
  };

  AccountService(Database& accounts, const AccountSettings& limits)
      : database(accounts), settings(limits), store(accounts) {}

  Reply Answer(std::string_view request, const Caller& caller);

  // What the brake knows of an account.
  static void ForgetFailures(Database& accounts, std::int64_t account, const std::string& userId);

 private:
  // A user who gave the right password, or the reply that says why not.
  struct Proof {
    std::optional<Candidate> user;
    Reply refusal;
    bool braked = false;
  };

  Reply SignIn(RequestReader& request, const Caller& caller);
  Reply NameComputer(RequestReader& request, const Caller& caller);
  Reply CreateAccount(RequestReader& request, const Caller& caller);
  Reply OpenSession(RequestReader& request, const Caller& caller);
  // At the pace that the brake allows.
  Proof Prove(const std::string& userId, const std::string& password, std::optional<std::uint32_t> device,
              const Caller& caller);

  Database& database;
  const AccountSettings settings;
  AccountStore store;
};

}  // namespace nvsupport::service

#endif
