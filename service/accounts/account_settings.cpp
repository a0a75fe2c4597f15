#include "service/accounts/account_settings.h"

#include <utility>

#include "service/settings.h"

namespace nvsupport::service {

AccountSettings ReadAccountSettings() {
  AccountSettings settings;
  const std::pair<const char*, std::int64_t&> variables[] = {
      {"NV_SERVICE_SESSION_SECONDS", settings.sessionSeconds},
      {"NV_SERVICE_SESSIONS_PER_ACCOUNT", settings.sessionsPerAccount},
      {"NV_SERVICE_BRAKE_SECONDS", settings.brakeSeconds},
      {"NV_SERVICE_FAILURES_PER_ACCOUNT", settings.failuresPerAccount},
      {"NV_SERVICE_FAILURES_PER_ADDRESS", settings.failuresPerAddress},
      {"NV_SERVICE_ACCOUNTS_PER_ADDRESS", settings.accountsPerAddress},
  };
  for (const auto& [name, value] : variables) value = NumberSetting(name, value);
  return settings;
}

}  // namespace nvsupport::service
