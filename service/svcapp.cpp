// svcapp.cgi, the account service: operations 8 to 11 over TLS.
//
// NV_SERVICE_DATABASE         the accounts; made at the first request
// NV_SERVICE_SESSION_SECONDS  for how long a session token is good; an hour if not set
#include <cstdlib>
#include <ctime>

#include "service/accounts/account_service.h"
#include "service/cgi.h"

namespace {

constexpr std::int64_t sessionSeconds = 3600;

}  // namespace

int main() {
  namespace service = nvsupport::service;
  service::KeepSecrets();
  return service::AnswerPost(service::AccountService::largestRequest, service::Transport::secureOnly,
                             [](std::string_view request) {
                               service::AccountStore store(service::RequiredVariable("NV_SERVICE_DATABASE"));
                               const std::string seconds = service::Variable("NV_SERVICE_SESSION_SECONDS");
                               const std::int64_t lifetime = seconds.empty() ? sessionSeconds : std::stoll(seconds);
                               return service::AccountService(store, std::time(nullptr), lifetime).Answer(request);
                             });
}
