// svcapp.cgi, the account service: operations 8 to 11 over TLS, and pages for monitoring:
//
// /health/live   200 as long as the program answers
// /health/write  200 if the accounts can be written to, else 503
// /metrics       the counters, for Prometheus
//
// NV_SERVICE_DATABASE says where the accounts are; account_settings.h lists the other variables.
#include <ctime>
#include <optional>

#include "service/accounts/account_schema.h"
#include "service/accounts/account_service.h"
#include "service/cgi.h"
#include "service/counters.h"
#include "service/database/kept_database.h"
#include "service/settings.h"

namespace {

using namespace nvsupport::service;

// As KeptDatabase makes it.
struct Accounts {
  explicit Accounts(Database& opened) : database(opened), service(opened, ReadAccountSettings()) {}

  Database& database;
  AccountService service;
};

class Program {
 public:
  Reply Answer(Request& request) {
    const std::string path = request.Variable("SCRIPT_NAME");
    if (path == "/health/live") return Text("lives\n");
    if (path == "/health/write") return Open().Use(TryWriting);
    if (path == "/metrics") return Text(CountersText());
    return AnswerPost(request, AccountService::largestRequest, Transport::secureOnly, [&](std::string_view body) {
      return Open().Use(
          [&](Accounts& opened) { return opened.service.Answer(body, {request.Address(), std::time(nullptr)}); });
    });
  }

 private:
  static Reply Text(std::string text) {
    Reply reply;
    reply.headers = {"Content-Type: text/plain; version=0.0.4"};
    reply.body = std::move(text);
    reply.reason = "done";
    return reply;
  }

  static Reply TryWriting(Accounts& opened) {
    TryToWrite(opened.database);
    return Text("can write\n");
  }

  // Opened with the first request, not before: a child process cannot use what its parent opened.
  KeptDatabase<Accounts>& Open() {
    if (!accounts) accounts.emplace(RequiredSetting("NV_SERVICE_DATABASE"));
    return *accounts;
  }

  std::optional<KeptDatabase<Accounts>> accounts;
};

}  // namespace

int main() {
  Program program;
  return Serve("svcapp", [&](Request& request) { return program.Answer(request); });
}
