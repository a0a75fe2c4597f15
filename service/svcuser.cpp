// svcuser.cgi, the account page, over TLS: shows what the service knows of a user, whose session token is in the query
// ("session=TOKEN"). It is the page that clients ask session tokens for. A POST ends all sessions of the account.
//
// NV_SERVICE_DATABASE  the accounts, as for svcapp.cgi
#include <ctime>

#include "service/accounts/account_store.h"
#include "service/cgi.h"
#include "service/database/kept_database.h"
#include "service/settings.h"

namespace {

using namespace nvsupport::service;

constexpr std::string_view key = "session=";

std::string Escape(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string Page(std::string_view title, const std::string& content) {
  return "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><meta name=\"referrer\" "
         "content=\"no-referrer\"><title>" +
         std::string(title) + "</title></head>\n<body><h1>" + std::string(title) + "</h1>\n" + content +
         "</body></html>\n";
}

std::string AccountContent(AccountStore& store, std::int64_t account) {
  std::string content = "<p>Signed in as <b>" + Escape(store.UserId(account)) + "</b></p>\n<h2>Computers</h2>\n<ul>\n";
  for (const Computer& computer : store.Computers(account)) {
    content += "<li>" + (computer.name.empty() ? "(no name)" : Escape(computer.name)) + "</li>\n";
  }
  // The form goes to this page's own address, which holds the token; so no other page can send it.
  return content +
         "</ul>\n<form method=\"post\"><button>End all sessions</button> Afterwards no page that was opened for this "
         "account shows anything any more, on no computer.</form>\n";
}

Reply HtmlReply(int httpStatus, std::string_view title, const std::string& content, std::string reason) {
  Reply reply;
  reply.httpStatus = httpStatus;
  reply.headers = {"Content-Type: text/html; charset=utf-8",
                   "Content-Security-Policy: default-src 'none'; form-action 'self'; frame-ancestors 'none';"
                   " base-uri 'none'",
                   "X-Content-Type-Options: nosniff", "Referrer-Policy: no-referrer"};
  reply.body = Page(title, content);
  reply.reason = std::move(reason);
  return reply;
}

// A web server that rewrites the address to keep the query out of its log leaves the query in the address asked for.
std::string Query(const Request& request) {
  std::string query = request.Variable("QUERY_STRING");
  if (!query.empty()) return query;
  const std::string address = request.Variable("REQUEST_URI");
  const std::size_t mark = address.find('?');
  return mark == std::string::npos ? "" : address.substr(mark + 1);
}

Reply Answer(const Request& request, AccountStore& store) {
  const std::string query = Query(request);
  const std::string token = query.starts_with(key) ? query.substr(key.size()) : "";
  const auto account = request.IsSecure() ? store.FindSession(token, std::time(nullptr)) : std::nullopt;
  if (!account) {
    return HtmlReply(403, "Please sign in",
                     "<p>This session has ended. Open the page again from the application.</p>\n", "no session");
  }
  if (request.Variable("REQUEST_METHOD") == "POST") {
    store.EndSessions(*account);
    return HtmlReply(200, "All sessions have ended", "<p>Open the page again from the application.</p>\n",
                     "sessions ended");
  }
  return HtmlReply(200, "Your account", AccountContent(store, *account), "page shown");
}

}  // namespace

int main() {
  std::optional<KeptDatabase<AccountStore>> accounts;
  return Serve("svcuser", [&](Request& request) {
    const std::string method = request.Variable("REQUEST_METHOD");
    if (method != "GET" && method != "HEAD" && method != "POST") return MethodReply("GET, HEAD, POST");
    try {
      if (!accounts) accounts.emplace(RequiredSetting("NV_SERVICE_DATABASE"));
      return accounts->Use([&](AccountStore& store) { return Answer(request, store); });
    } catch (const std::exception& error) {
      Reply reply = HtmlReply(503, "Please try again later", "", error.what());
      reply.headers.emplace_back("Retry-After: 2");
      return reply;
    }
  });
}
