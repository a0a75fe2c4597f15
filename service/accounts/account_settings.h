// What an operator can set; docs/operating.md tells about each.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SETTINGS_H
#define NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_SETTINGS_H

#include <cstdint>

namespace nvsupport::service {

struct AccountSettings {
  std::int64_t sessionSeconds = 3600;    // for how long a session token is good
  std::int64_t sessionsPerAccount = 20;  // a further one ends the oldest
  // From so many failed sign-ins on, an account or an address is answered slowly.
  std::int64_t failuresPerAccount = 5;
  std::int64_t failuresPerAddress = 20;
  std::int64_t failureSeconds = 900;  // for how long a failure counts
  std::int64_t slowSeconds = 2;       // between two slow answers of one account or address
  std::int64_t slowAtATime = 4;       // slow answers in the making, in all; what is beyond fails at once
};

// The defaults, and what the environment sets otherwise (NV_SERVICE_SESSION_SECONDS and so on). Throws
// std::runtime_error for a value that is no positive number.
AccountSettings ReadAccountSettings();

}  // namespace nvsupport::service

#endif
