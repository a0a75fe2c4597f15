// The account service: the examples of the protocol page against the real programs, the rules on accounts, sessions
// that end, and many accounts at a time.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <future>
#include <vector>

#include "cgi_program.h"
#include "request.h"
#include "service/account_service.h"
#include "service/account_store.h"
#include "support/temporary_home.h"

namespace {

using nvsupport::service::AccountService;
using nvsupport::service::AccountStore;
using nvsupport::service::Computer;
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
      {"no email address", CreateAccount("another", "secret", ""), 14},
      {"no domain", CreateAccount("another", "secret", "me@home"), 14},
      {"two at signs", CreateAccount("another", "secret", "me@you@norvane.example"), 14},
      {"line feed in the address", CreateAccount("another", "secret", "me@norvane.example\nBcc: you@a.b"), 14},
      {"sign in under the rule", SignIn("MAPREADER", "SIX6six"), 0},
      {"another password", SignIn("Map Reader", "six6si"), 5},
      {"empty password", SignIn("Map Reader", ""), 5},
      {"unknown user", SignIn("Map Readers", "six6six"), 4},
      {"empty user ID", SignIn("", "six6six"), 4},
      {"name: another password", Int(9) + Text("mapreader") + Text("x") + Text("n") + Int(1) + Int(124) + Int(0), 5},
      {"name: unknown user", Int(9) + Text("nobody") + Text("x") + Text("n") + Int(1) + Int(124) + Int(0), 4},
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

TEST(AccountProgram, KeepsPasswordsAndTokensOutOfItsFile) {
  const TemporaryFolder folder;
  const std::string database = folder / "accounts.sqlite";
  Post("svcapp.cgi", database, CreateAccount("reader", "verysecretword", "r@norvane.example"));
  const std::string reply = Post("svcapp.cgi", database, Int(11) + Text("reader") + Text("VerySecretWord")).body;
  std::string token;
  for (std::size_t i = 8; i < reply.size(); i += 2) token.push_back(reply[i]);
  ASSERT_EQ(token.size(), 19U);

  const std::string content = ReadWholeFile(database);
  EXPECT_NE(content.find("reader"), std::string::npos);
  EXPECT_EQ(content.find("verysecret"), std::string::npos);
  EXPECT_EQ(content.find(token), std::string::npos);
  struct stat file = {};
  ASSERT_EQ(stat(database.c_str(), &file), 0);
  EXPECT_EQ(file.st_mode & 0777, 0600U);
}

TEST(AccountProgram, MakesEachAccountOnceWhenManyAskAtATime) {
  const TemporaryFolder folder;
  const std::string database = folder / "accounts.sqlite";
  constexpr std::size_t kRequests = 16;
  std::array<std::future<std::uint32_t>, kRequests> replies;
  // Two ask for each user ID, each with an address of its own; nothing of the file exists yet.
  for (std::size_t i = 0; i < kRequests; ++i) {
    replies[i] = std::async(std::launch::async, [&database, i] {
      const std::string request =
          CreateAccount("user" + std::to_string(i / 2), "secret", "user" + std::to_string(i) + "@norvane.example");
      return WordAt(Post("svcapp.cgi", database, request).body, 0);
    });
  }
  for (std::size_t i = 0; i < replies.size(); i += 2) {
    const std::uint32_t first = replies[i].get();
    const std::uint32_t second = replies[i + 1].get();
    EXPECT_EQ(std::min(first, second), 0U);
    EXPECT_EQ(std::max(first, second), 2U);
  }
}

TEST(AccountProgram, RefusesWhatIsNoProperRequest) {
  const TemporaryFolder folder;
  const std::string request = SignIn("reader", "secret");
  const std::string length = "CONTENT_LENGTH=" + std::to_string(request.size());
  const struct {
    int httpStatus;
    std::vector<std::string> environment;
  } cases[] = {
      {405, {"REQUEST_METHOD=GET", "HTTPS=on", length}},
      {405, {"HTTPS=on", length}},
      {403, {"REQUEST_METHOD=POST", length}},
      {403, {"REQUEST_METHOD=POST", "HTTPS=off", length}},
      {411, {"REQUEST_METHOD=POST", "HTTPS=on"}},
      {411, {"REQUEST_METHOD=POST", "HTTPS=on", "CONTENT_LENGTH=-1"}},
      {411, {"REQUEST_METHOD=POST", "HTTPS=on", "CONTENT_LENGTH=12x"}},
      {413, {"REQUEST_METHOD=POST", "HTTPS=on", "CONTENT_LENGTH=16385"}},
      {413, {"REQUEST_METHOD=POST", "HTTPS=on", "CONTENT_LENGTH=99999999999999999999999999"}},
      {400, {"REQUEST_METHOD=POST", "HTTPS=on", "CONTENT_LENGTH=16384"}},
  };
  for (const auto& row : cases) {
    const CgiReply reply = RunCgi("svcapp.cgi", row.environment, request);
    EXPECT_EQ(reply.httpStatus, row.httpStatus);
    EXPECT_EQ(reply.body, std::string({1, 0, 0, 0})) << "the status comes first in an error page too";
  }
  const CgiReply broken = Post("svcapp.cgi", folder / "missing" + "/accounts.sqlite", request);
  EXPECT_EQ(WordAt(broken.body, 0), 20U);
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
  ASSERT_EQ(store.Create({"reader", "secret", "", "", "r@norvane.example", false, "English"}, 0), Status::kDone);
  std::int64_t account = 0;
  ASSERT_EQ(store.Verify("reader", "secret", account), Status::kDone);
  const std::string token = store.OpenSession(account, 1000, 60);
  const std::string other = store.OpenSession(account, 1030, 60);
  EXPECT_NE(token, other);
  EXPECT_EQ(store.FindSession(token, 1059), account);
  EXPECT_EQ(store.FindSession(token, 1060), std::nullopt);
  EXPECT_EQ(store.FindSession(other, 1060), account);
  EXPECT_EQ(store.FindSession(token.substr(0, 18), 1001), std::nullopt);
}

TEST(AccountStore, LimitsTheComputersOfAnAccount) {
  const TemporaryFolder folder;
  AccountStore store(folder / "accounts.sqlite");
  for (std::uint32_t device = 0; device < AccountStore::kMostComputers; ++device) {
    ASSERT_EQ(store.NameComputer(1, Computer{device, "old", 0}), Status::kDone);
  }
  EXPECT_EQ(store.NameComputer(1, Computer{0xFFFFFFFF, "new", 0}), Status::kTooManyComputers);
  EXPECT_EQ(store.NameComputer(1, Computer{0, "renamed", 0}), Status::kDone);
  EXPECT_EQ(store.NameComputer(2, Computer{0xFFFFFFFF, "of another", 0}), Status::kDone);
  EXPECT_FALSE(store.HasComputer(1, 0xFFFFFFFF));
  EXPECT_TRUE(store.HasComputer(2, 0xFFFFFFFF));
  EXPECT_EQ(store.Computers(1).back().name, "renamed");
}

}  // namespace
