// What operators do for a user who asks, and for the accounts as a whole.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_CARE_H
#define NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_CARE_H

#include <cstdint>
#include <string>

#include "service/database/database.h"

namespace nvsupport::service {

class AccountCare {
 public:
  // Of the account with that user ID, under the rule of sign-ins. Throws std::runtime_error if there is none.
  AccountCare(Database& accounts, const std::string& userId);

  // All that is kept about the user but the password's hash, a line for each thing.
  std::string Show();
  // field: name, company, email, language or keep-informed (yes or no). Throws std::runtime_error for another one and
  // for a value that no new account could have.
  void Correct(const std::string& field, const std::string& value);
  // Returns a new password, and ends the sessions.
  std::string ResetPassword();
  void Delete();

 private:
  Database& database;
  std::string userId;
  std::int64_t account = 0;
};

// Forgets what is over: sessions, failed sign-ins, addresses that were not used for long.
void Expire(Database& accounts, std::int64_t now, std::int64_t brakeSeconds);

}  // namespace nvsupport::service

#endif
