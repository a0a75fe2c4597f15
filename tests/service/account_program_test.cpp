// The programs of the accounts as a web server runs them: the account page, and what is no proper request.
// deploy_test.sh plays the examples of the protocol page.
#include <gtest/gtest.h>

#include <cstdlib>

#include "request.h"
#include "support/run_program.h"
#include "support/temporary_home.h"

namespace {

using namespace nvsupport::testing;

struct CgiReply {
  int httpStatus = 0;
  std::string body;
  std::string log;  // standard error
};

// Runs a CGI program in this environment alone, "NAME=value" each.
CgiReply RunCgi(const std::string& program, const std::vector<std::string>& environment, const std::string& body = "") {
  const TemporaryFolder folder;
  WriteWholeFile(folder / "body", body);
  std::vector<std::string> command = {"sh", "-c", R"(cd "$0"; exec env -i "$@" <body 2>log)", folder / ""};
  command.insert(command.end(), environment.begin(), environment.end());
  command.push_back(NV_CGI_BIN "/" + program);
  const ProgramResult result = RunProgram(command);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_TRUE(result.output.starts_with("Status: ")) << result.output;
  const std::size_t head = std::min(result.output.find("\r\n\r\n"), result.output.size());
  return {std::atoi(result.output.c_str() + 8), result.output.substr(head + 4), ReadWholeFile(folder / "log")};
}

CgiReply Post(const std::string& database, const std::string& body) {
  return RunCgi("svcapp.cgi",
                {"REQUEST_METHOD=POST", "HTTPS=on", "CONTENT_LENGTH=" + std::to_string(body.size()),
                 "NV_SERVICE_DATABASE=" + database},
                body);
}

TEST(AccountProgram, OpensTheAccountPageUntilAllSessionsAreEnded) {
  const TemporaryFolder folder;
  const std::string database = folder / "accounts.sqlite";
  Post(database, CreateAccount("Zo\xEB <i>", "r@norvane.example"));
  const std::string user = Text("zoi") + Text("Secret");
  Post(database, Int(9) + user + Text("Desk & chair") + Int(1) + Int(124) + Int(0));
  Post(database, Int(9) + user + Text("") + Int(2) + Int(124) + Int(0));
  const std::string reply = Post(database, Int(11) + user).body;
  std::string token;
  for (std::size_t i = 8; i < reply.size(); i += 2) token.push_back(reply[i]);
  const struct {
    const char* what;
    std::string query;
    const char* https;
    const char* method;
    int httpStatus;
    const char* shown;
  } cases[] = {
      {"no TLS", "session=" + token, "off", "GET", 403, "sign in"},
      {"another name", "other=" + token, "on", "GET", 403, "sign in"},
      {"the user ID", "session=" + token, "on", "GET", 200, "<b>Zo\u00eb &lt;i&gt;</b>"},
      {"a computer", "session=" + token, "on", "GET", 200, "<li>Desk &amp; chair</li>"},
      {"a computer without a name", "session=" + token, "on", "GET", 200, "<li>(no name)</li>"},
      {"no end without TLS", "session=" + token, "off", "POST", 403, "sign in"},
      {"the end", "session=" + token, "on", "POST", 200, "ended"},
      {"behind the end", "session=" + token, "on", "GET", 403, "ended"},
  };
  for (const auto& row : cases) {
    const CgiReply page =
        RunCgi("svcuser.cgi", {std::string("HTTPS=") + row.https, "QUERY_STRING=" + row.query,
                               std::string("REQUEST_METHOD=") + row.method, "NV_SERVICE_DATABASE=" + database});
    EXPECT_EQ(page.httpStatus, row.httpStatus) << row.what;
    EXPECT_NE(page.body.find(row.shown), std::string::npos) << row.what << ": " << page.body;
  }
}

TEST(AccountProgram, RefusesWhatIsNoProperRequest) {
  const std::string request = Int(8) + Text("reader") + Text("secret") + Int(1);
  const std::string fits = std::to_string(request.size());
  const struct {
    int httpStatus;
    const char* method;
    const char* https;
    std::string length;
  } cases[] = {
      {405, "GET", "on", fits},   {403, "POST", "off", fits},   {411, "POST", "on", ""},
      {411, "POST", "on", "-1"},  {411, "POST", "on", "12x"},   {411, "POST", "on", std::string(30, '9') + "x"},
      {400, "POST", "on", "999"}, {413, "POST", "on", "16385"}, {413, "POST", "on", std::string(30, '9')},
  };
  for (const auto& [httpStatus, method, https, length] : cases) {
    const CgiReply reply = RunCgi(
        "svcapp.cgi",
        {std::string("REQUEST_METHOD=") + method, std::string("HTTPS=") + https, "CONTENT_LENGTH=" + length}, request);
    EXPECT_EQ(reply.httpStatus, httpStatus) << method << ' ' << https << ' ' << length;
    EXPECT_EQ(reply.body, Int(1)) << "the status comes first in an error page too";
  }
  const CgiReply broken = Post("/nowhere/accounts.sqlite", request);
  EXPECT_EQ(broken.body, Int(20));
  EXPECT_NE(broken.log.find("accounts.sqlite"), std::string::npos) << broken.log;
}

}  // namespace
