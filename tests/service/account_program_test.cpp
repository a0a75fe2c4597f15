// The programs of the accounts as a web server runs them: the examples of the protocol page, the account page, what is
// no proper request, and that secrets stay secret.
#include <gtest/gtest.h>

#include "cgi_program.h"
#include "request.h"
#include "support/temporary_home.h"

namespace {

using nvsupport::testing::ReadWholeFile;
using nvsupport::testing::TemporaryFolder;

TEST(AccountProgram, AnswersTheExamplesOfTheProtocolPage) {
  const TemporaryFolder folder;
  const std::string database = folder / "accounts.sqlite";
  for (const char* name : {"create-account", "sign-in", "name-computer"}) {
    const std::string request = Example(std::string(name) + " request");
    ASSERT_FALSE(request.empty()) << name;
    EXPECT_EQ(Post("svcapp.cgi", database, request).body, Example(std::string(name) + " reply")) << name;
  }
  const std::string named = Post("svcapp.cgi", database, Example("sign-in request")).body;
  EXPECT_EQ(named, std::string(8, '\0')) << "state 0 after the computer got its name";

  const std::string token = Post("svcapp.cgi", database, Example("session-token request")).body;
  const std::string expected = Example("session-token reply");
  ASSERT_EQ(token.size(), expected.size());
  EXPECT_EQ(token.substr(0, 8), expected.substr(0, 8)) << "all but the random characters";
}

TEST(AccountProgram, OpensTheAccountPageAndKeepsSecretsOutOfItsFile) {
  const TemporaryFolder folder;
  const std::string database = folder / "accounts.sqlite";
  Post("svcapp.cgi", database, CreateAccount("Zo\u00eb <i>", "verysecretword", "r@norvane.example"));
  const std::string user = Text("zoi") + Text("VerySecretWord");
  Post("svcapp.cgi", database, Int(9) + user + Text("Desk & chair") + Int(1) + Int(124) + Int(0));
  const std::string reply = Post("svcapp.cgi", database, Int(11) + user).body;
  std::string token;
  for (std::size_t i = 8; i < reply.size(); i += 2) token.push_back(reply[i]);
  ASSERT_EQ(token.size(), 19U);

  const auto page = [&](const std::string& session, const std::string& https, const std::string& method = "GET") {
    return RunCgi(
        "svcuser.cgi",
        {https, "REQUEST_METHOD=" + method, "QUERY_STRING=session=" + session, "NV_SERVICE_DATABASE=" + database}, "");
  };
  const std::string shown = page(token, "HTTPS=on").body;
  EXPECT_NE(shown.find("<b>Zo\u00eb &lt;i&gt;</b>"), std::string::npos) << shown;
  EXPECT_NE(shown.find("<li>Desk &amp; chair</li>"), std::string::npos) << shown;
  EXPECT_EQ(page(token, "HTTPS=off").httpStatus, 403);
  EXPECT_EQ(page(token.substr(1), "HTTPS=on").httpStatus, 403);

  const std::string content = ReadWholeFile(database);
  EXPECT_NE(content.find("r@norvane.example"), std::string::npos);
  EXPECT_EQ(content.find("verysecret"), std::string::npos);
  EXPECT_EQ(content.find(token), std::string::npos);
  for (const char* file : {"", "-queue"}) {
    EXPECT_EQ(std::filesystem::status(database + file).permissions(), std::filesystem::perms(0600)) << file;
  }

  EXPECT_EQ(page(token, "HTTPS=off", "POST").httpStatus, 403);
  EXPECT_EQ(page(token, "HTTPS=on").httpStatus, 200) << "the session is still there";
  EXPECT_EQ(page(token, "HTTPS=on", "POST").httpStatus, 200);
  EXPECT_EQ(page(token, "HTTPS=on").httpStatus, 403) << "it has ended";
}

TEST(AccountProgram, RefusesWhatIsNoProperRequest) {
  const TemporaryFolder folder;
  const std::string request = SignIn("reader", "secret");
  const std::string fits = std::to_string(request.size());
  const struct {
    int httpStatus;
    const char* method;
    const char* https;
    std::string length;
  } cases[] = {
      {405, "GET", "on", fits},   {403, "POST", "off", fits},   {403, "POST", "", fits},
      {411, "POST", "on", ""},    {411, "POST", "on", "-1"},    {411, "POST", "on", "12x"},
      {400, "POST", "on", "999"}, {413, "POST", "on", "16385"}, {413, "POST", "on", std::string(30, '9')},
  };
  for (const auto& [httpStatus, method, https, length] : cases) {
    const CgiReply reply = RunCgi(
        "svcapp.cgi",
        {std::string("REQUEST_METHOD=") + method, std::string("HTTPS=") + https, "CONTENT_LENGTH=" + length}, request);
    EXPECT_EQ(reply.httpStatus, httpStatus) << method << https << length;
    EXPECT_EQ(reply.body, Int(1)) << "the status comes first in an error page too";
  }
  const CgiReply broken = Post("svcapp.cgi", folder / "missing" + "/accounts.sqlite", request);
  EXPECT_EQ(broken.body, Int(20));
  EXPECT_NE(broken.log.find("accounts.sqlite"), std::string::npos) << broken.log;
}

}  // namespace
