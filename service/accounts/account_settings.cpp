#include "service/accounts/account_settings.h"

#include <stdexcept>

#include "service/cgi.h"
#include "service/database/database.h"

namespace nvsupport::service {
namespace {

void Read(const char* name, std::int64_t& value) {
  const std::string text = Variable(name);
  if (text.empty()) return;
  value = ToNumber(text);
  if (value <= 0) throw std::runtime_error(std::string(name) + " is to be above 0");
}

}  // namespace

AccountSettings ReadAccountSettings() {
  AccountSettings settings;
  Read("NV_SERVICE_SESSION_SECONDS", settings.sessionSeconds);
  Read("NV_SERVICE_SESSIONS_PER_ACCOUNT", settings.sessionsPerAccount);
  Read("NV_SERVICE_FAILURES_PER_ACCOUNT", settings.failuresPerAccount);
  Read("NV_SERVICE_FAILURES_PER_ADDRESS", settings.failuresPerAddress);
  Read("NV_SERVICE_FAILURE_SECONDS", settings.failureSeconds);
  Read("NV_SERVICE_SLOW_SECONDS", settings.slowSeconds);
  Read("NV_SERVICE_SLOW_AT_A_TIME", settings.slowAtATime);
  return settings;
}

}  // namespace nvsupport::service
