// svcuser.cgi, the account page: what the service knows of the user whose session token the query brings
// ("session=TOKEN"), over TLS. This is what a session token is good for. A POST ends all sessions of the account.
//
// NV_SERVICE_DATABASE  the accounts, as for svcapp.cgi
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>

#include "service/accounts/account_store.h"
#include "service/cgi.h"

namespace {

using namespace nvsupport::service;

constexpr std::string_view key = "session=";
constexpr std::string_view pageType = "text/html; charset=utf-8";

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

std::string AccountPage(AccountStore& store, std::int64_t account) {
  std::string content = "<p>Signed in as <b>" + Escape(store.UserId(account)) + "</b></p>\n<h2>Computers</h2>\n<ul>\n";
  for (const Computer& computer : store.Computers(account)) {
    content += "<li>" + (computer.name.empty() ? "(no name)" : Escape(computer.name)) + "</li>\n";
  }
  // Sent to the page's own address, which holds the token, so that no other page can have it sent.
  return Page("Your account", content +
                                  "</ul>\n<form method=\"post\"><button>End all sessions</button> Afterwards no page "
                                  "that was opened for this account shows anything any more, on no computer.</form>\n");
}

void Answer() {
  const std::string query = Variable("QUERY_STRING");
  const std::string token = query.starts_with(key) ? query.substr(key.size()) : "";
  const auto database = OpenDatabase(RequiredVariable("NV_SERVICE_DATABASE"));
  AccountStore store(*database);
  const auto account = IsSecure() ? store.FindSession(token, std::time(nullptr)) : std::nullopt;
  if (!account) {
    SendReply(403, pageType,
              Page("Please sign in", "<p>This session has ended. Open the page again from the application.</p>\n"));
  } else if (Variable("REQUEST_METHOD") == "POST") {
    store.EndSessions(*account);
    SendReply(200, pageType, Page("All sessions have ended", "<p>Open the page again from the application.</p>\n"));
  } else {
    SendReply(200, pageType, AccountPage(store, *account));
  }
}

}  // namespace

int main() {
  KeepSecrets();
  try {
    Answer();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "request failed: %s\n", error.what());
    SendReply(500, pageType, Page("Please try again later", ""));
  }
  return EXIT_SUCCESS;
}
