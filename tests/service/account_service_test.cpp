// The account service: the examples of the protocol page against the real programs, the rules on accounts, sessions
// that end, and many accounts at a time.
#include <gtest/gtest.h>

#include <future>
#include <map>
#include <vector>

#include "cgi_program.h"
#include "request.h"
#include "service/accounts/account_service.h"
#include "service/accounts/account_store.h"
#include "support/temporary_home.h"

namespace {

using nvsupport::service::AccountService;
using nvsupport::service::AccountStore;
using nvsupport::service::Status;
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

TEST(AccountProgram, TellsTheStatusesThatTheDialogsKnow) {
  const TemporaryFolder folder;
  const std::string database = folder / "accounts.sqlite";
  const struct {
    const char* what;
    std::string request;
    std::uint32_t status;
  } cases[] = {
      {"first account", CreateAccount("Map Reader", "six 6!six", "reader@norvane.example"), 0},
      {"same user ID under the rule", CreateAccount("map-READER", "other66", "other@norvane.example"), 2},
      {"same 16 characters", CreateAccount("abcdefghijklmnop", "secret", "a@norvane.example"), 0},
      {"more than 16 characters", CreateAccount("ABCDEFGH IJKLMNOPQRST", "secret", "b@norvane.example"), 2},
      {"five letters and digits", CreateAccount("short", "a.b.c.d.5.....", "short@norvane.example"), 3},
      {"accented letters do not count", CreateAccount("accents", "\xC3\xA9t\xC3\xA9tes", "c@norvane.example"), 3},
      {"user ID without letters", CreateAccount("--- ", "secret", "d@norvane.example"), 6},
      {"same email address", CreateAccount("another", "secret", " Reader@Norvane.EXAMPLE "), 13},
      {"no domain", CreateAccount("another", "secret", "me@home"), 14},
      {"two at signs", CreateAccount("another", "secret", "me@you@norvane.example"), 14},
      {"line feed in the address", CreateAccount("another", "secret", "me@norvane.example\nBcc: you@a.b"), 14},
      {"sign in under the rule", SignIn("MAPREADER", "SIX6six"), 0},
      {"another password", SignIn("Map Reader", "six6si"), 5},
      {"empty password", SignIn("Map Reader", ""), 5},
      {"unknown user", SignIn("Map Readers", "six6six"), 4},
      {"name: another password", Int(9) + Text("mapreader") + Text("x") + Text("n") + Int(1) + Int(124) + Int(0), 5},
      {"token: another password", Int(11) + Text("mapreader") + Text("x"), 5},
      {"unknown operation", Int(12) + Text("mapreader") + Text("six6six"), 1},
      {"a text beyond its limit", SignIn(std::string(1001, 'x'), "six6six"), 1},
  };
  for (const auto& row : cases) {
    const CgiReply reply = Post("svcapp.cgi", database, row.request);
    EXPECT_EQ(WordAt(reply.body, 0), row.status) << row.what;
    EXPECT_EQ(reply.log, "") << row.what;
  }
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

  const auto page = [&](const std::string& session, const std::string& https) {
    return RunCgi("svcuser.cgi", {https, "QUERY_STRING=session=" + session, "NV_SERVICE_DATABASE=" + database}, "");
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
  EXPECT_EQ(std::filesystem::status(database).permissions(), std::filesystem::perms(0600));
}

TEST(AccountProgram, MakesAnAccountOnceWhenManyAskAtATime) {
  const TemporaryFolder folder;
  std::vector<std::future<std::uint32_t>> replies;
  // Nothing of the file exists yet.
  for (int i = 0; i < 16; ++i) {
    replies.push_back(std::async(std::launch::async, [&folder, i] {
      const std::string email = "user" + std::to_string(i) + "@norvane.example";
      return WordAt(Post("svcapp.cgi", folder / "accounts", CreateAccount("user", "secret", email)).body, 0);
    }));
  }
  std::map<std::uint32_t, int> times;
  for (auto& reply : replies) ++times[reply.get()];
  EXPECT_EQ(times, (std::map<std::uint32_t, int>{{0, 1}, {2, 15}}));
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
  EXPECT_NE(broken.log.find("unable to open"), std::string::npos) << broken.log;
}

TEST(AccountServiceAnswer, IsNotUnderstoodForEveryCutRequest) {
  const TemporaryFolder folder;
  AccountStore store(folder / "accounts.sqlite");
  AccountService service(store, 0, 60);
  for (const char* name : {"create-account", "sign-in", "name-computer", "session-token"}) {
    const std::string request = Example(std::string(name) + " request");
    for (std::size_t length = 0; length < request.size(); ++length) {
      ASSERT_EQ(WordAt(service.Answer(request.substr(0, length)), 0), 1U) << name << " cut to " << length;
    }
    EXPECT_EQ(WordAt(service.Answer(request + '\0'), 0), 1U) << name << " with a byte too many";
  }
  for (const std::uint32_t length : {0x80000000U, 0xFFFFFFFFU, 0x7FFFFFFFU, 1001U}) {
    EXPECT_EQ(WordAt(service.Answer(Int(11) + Int(length) + Text("secret")), 0), 1U) << length;
  }
}

TEST(AccountStore, ForgetsSessionsAtTheirEnd) {
  const TemporaryFolder folder;
  AccountStore store(folder / "accounts.sqlite");
  const std::string token = store.OpenSession(7, 1000, 60);
  const std::string other = store.OpenSession(7, 1030, 60);
  EXPECT_EQ(store.FindSession(token, 1059), 7);
  EXPECT_EQ(store.FindSession(token, 1060), std::nullopt);
  EXPECT_EQ(store.FindSession(other, 1060), 7);
}

TEST(AccountStore, LimitsTheComputersOfAnAccount) {
  const TemporaryFolder folder;
  AccountStore store(folder / "accounts.sqlite");
  for (std::uint32_t device = 0; device < AccountStore::mostComputers; ++device) {
    ASSERT_EQ(store.NameComputer(1, {device, "old", 0}), Status::done);
  }
  EXPECT_EQ(store.NameComputer(1, {0xFFFFFFFF, "new", 0}), Status::tooManyComputers);
  EXPECT_EQ(store.NameComputer(1, {0, "renamed", 0}), Status::done);
  EXPECT_EQ(store.NameComputer(2, {0xFFFFFFFF, "of another", 0}), Status::done);
  EXPECT_FALSE(store.HasComputer(1, 0xFFFFFFFF));
  EXPECT_EQ(store.Computers(1).back().name, "renamed");
}

}  // namespace
