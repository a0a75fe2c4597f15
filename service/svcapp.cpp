// svcapp.cgi, the account service: operations 8 to 11 over TLS. NV_SERVICE_DATABASE says where the accounts are;
// account_settings.h tells about the other variables.
#include <chrono>
#include <ctime>
#include <thread>

#include "service/accounts/account_service.h"
#include "service/cgi.h"

namespace {

using namespace nvsupport::service;

std::string Answer(std::string_view request) {
  const auto database = OpenDatabase(RequiredVariable("NV_SERVICE_DATABASE"));
  const auto wait = [](std::int64_t seconds) { std::this_thread::sleep_for(std::chrono::seconds(seconds)); };
  AccountService service(*database, ReadAccountSettings(), {Variable("REMOTE_ADDR"), std::time(nullptr), wait});
  return service.Answer(request);
}

}  // namespace

int main() {
  KeepSecrets();
  return AnswerPost(AccountService::largestRequest, Transport::secureOnly, Answer);
}
