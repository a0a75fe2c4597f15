// What an operator can set; docs/operating.md describes each.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SETTINGS_H
#define NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SETTINGS_H

#include <cstdint>

namespace nvsupport::service {

struct AccountSettings {
  std::int64_t sessionSeconds = 3600;    // for how long a session token is good
  std::int64_t sessionsPerAccount = 20;  // a further one ends the oldest
  // What the brake lets through in a period.
  std::int64_t brakeSeconds = 900;
  std::int64_t failuresPerAccount = 10;
  std::int64_t failuresPerAddress = 20;
  std::int64_t accountsPerAddress = 20;
};

// The defaults, and what the environment sets otherwise (NV_SERVICE_SESSION_SECONDS and so on). Throws
// std::runtime_error for a value that is no positive number.
AccountSettings ReadAccountSettings();

}  // namespace nvsupport::service

#endif
