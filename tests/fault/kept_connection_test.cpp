// Connections that are kept between exchanges: the caller and the server never suffer for them.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "support/exchange.h"
#include "support/run_program.h"
#include "support/short_timeouts.h"
#include "support/test_authority.h"

namespace nvsupport::testing {
namespace {

using namespace std::chrono_literals;

const std::string large(3'000'000, 'l');  // more than is read ahead

class KeptConnection : public ::testing::TestWithParam<DWORD> {
 protected:
  Exchange Open(const char* verb = "GET") const { return Exchange({.flags = GetParam(), .verb = verb}); }

  TestAuthority authority;
  const TlsIdentity shown = GetParam() != 0 ? authority.Issue(serverName) : TlsIdentity();
};

INSTANTIATE_TEST_SUITE_P(Over, KeptConnection, ::testing::Values(DWORD{0}, INTERNET_FLAG_SECURE),
                         [](const auto& over) { return over.param != 0 ? "Tls" : "Plain"; });

TEST_P(KeptConnection, ServesTheNextExchangeButNoProgramOfTheHost) {
  const auto inherited = [] { return RunProgram({"sh", "-c", "ls -l /proc/self/fd | grep -c socket"}).output; };
  const std::string before = inherited();
  const ScriptedServer server(std::vector{HttpReply(200, large), HttpReply(404, "two"), HttpReply(200, "three")},
                              serverName, shown);
  EXPECT_TRUE(Open().Fetch() == large);
  EXPECT_TRUE(Open().Send()) << "a short reply that nobody reads is at its end all the same";
  EXPECT_EQ(Open("POST").Fetch("body"), "three");
  EXPECT_EQ(server.Connections(), 1);
  EXPECT_EQ(inherited(), before);
}

TEST_P(KeptConnection, IsNotKeptInTheMiddleOfAReply) {
  const ScriptedServer server(std::vector{HttpReply(200, large), HttpReply(200, "next")}, serverName, shown);
  EXPECT_TRUE(Open().Send());
  EXPECT_EQ(Open().Fetch(), "next");
  EXPECT_EQ(server.Connections(), 2);
}

// The server takes a request on a kept connection and closes without a reply. It may have acted on the request.
TEST_P(KeptConnection, RepeatsNoRequestWithABody) {
  for (const bool post : {false, true}) {
    SCOPED_TRACE(post ? "POST" : "GET");
    const ScriptedServer server(std::vector{HttpReply(200, "one"), Reply{}, HttpReply(200, "again")}, serverName,
                                shown);
    EXPECT_EQ(Open().Fetch(), "one");
    EXPECT_EQ(post ? Open("POST").Fetch("body") : Open().Fetch(), post ? "!" : "again");
    EXPECT_EQ(server.Requests().size(), post ? 2u : 3u);
    EXPECT_EQ(Open("POST").Fetch(), "again") << "what failed is not kept";
  }
}

// A server that goes in the middle of a request would raise a signal that ends a host which does not expect it.
TEST_P(KeptConnection, SurvivesAServerThatGoesWhileItIsSentTo) {
  const ScriptedServer server(std::vector{HttpReply(200, "one"), Reply{.bytes = "", .end = Reply::End::reset}},
                              serverName, shown);
  EXPECT_EQ(Open().Fetch(), "one");
  EXPECT_EQ(Open("POST").Fetch(std::string(8'000'000, 'b')), "!");
  EXPECT_EQ(server.Requests().size(), 2u);
}

TEST_P(KeptConnection, IsReplacedWhenTheServerHasClosedIt) {
  const ScriptedServer server(Reply{.bytes = HttpReply(200, "once").bytes}, serverName, shown);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(Open().Fetch(), "once");
}

bool OtherThreadsSleep() {
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    const bool isThis = task.path().filename() == std::to_string(gettid());
    if (!isThis && ReadWholeFile(task.path() / "stat").find(") S ") == std::string::npos) return false;
  }
  return true;
}

// A child that used or closed the connection would disturb its parent's.
TEST_P(KeptConnection, IsLeftAloneByAForkedChild) {
  const ScriptedServer server(HttpReply(200, "body"), serverName, shown);
  const ScriptedServer another(HttpReply(200, "body"), "other.example");
  const auto fetchInChild = [](const Target& target) {
    // A child for which a sanitizer's lock is held would wait for it forever.
    EXPECT_TRUE(WaitUntil(OtherThreadsSleep));
    const pid_t child = fork();
    if (child == 0) _exit(Exchange(target).Fetch() == "body" ? 0 : 1);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  };
  EXPECT_EQ(Open().Fetch(), "body");
  fetchInChild({.host = "other.example"});
  EXPECT_EQ(Open().Fetch(), "body");
  EXPECT_EQ(server.Connections(), 1);
  fetchInChild({.flags = GetParam()});
  EXPECT_EQ(server.Connections(), 2);
}

TEST(KeptConnectionThatIdles, ServesForALimitedTime) {
  const ShortTimeouts restored;
  const ScriptedServer server(HttpReply(200, "body"));
  EXPECT_EQ(Exchange().Fetch(), "body");
  platform::webLimits.idleBeforeBody = 0s;
  std::this_thread::sleep_for(1s);  // which is the unit that libcurl counts in
  EXPECT_EQ(Exchange({.verb = "POST"}).Fetch("x"), "body");
  EXPECT_EQ(server.Connections(), 2);
  platform::webLimits.idle = 0s;
  EXPECT_EQ(Exchange().Fetch(), "body");
  EXPECT_EQ(server.Connections(), 3);
}

TEST(KeptConnectionOverTls, CountsNoMoreThanANewOneWhenTheTrustIsGone) {
  const TestAuthority authority;
  const ScriptedServer server(HttpReply(200, "body"), serverName, authority.Issue(serverName));
  EXPECT_EQ(Exchange({.flags = INTERNET_FLAG_SECURE}).Fetch(), "body");
  const TestAuthority other;
  static_cast<void>(other.Issue("other.example"));
  EXPECT_EQ(Exchange({.flags = INTERNET_FLAG_SECURE}).Fetch(), "!");
}

}  // namespace
}  // namespace nvsupport::testing
