// Connections that are kept between exchanges: the caller and the server never suffer for them.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/exchange.h"
#include "support/run_program.h"
#include "support/short_timeouts.h"
#include "support/test_authority.h"
#include "web/web_engine.h"
#include "web/web_trust.h"

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

TEST(TrustStore, IsTheUsualOneUnlessTheEnvironmentNamesAnother) {
  const ScopedVariable file("SSL_CERT_FILE", "");
  EXPECT_TRUE(std::filesystem::exists(platform::FindTrustStore().file)) << "and so seen when it changes";
}

TEST_P(KeptConnection, IsNotKeptInTheMiddleOfAReply) {
  const ScriptedServer server(std::vector{HttpReply(200, large), HttpReply(200, "next")}, serverName, shown);
  EXPECT_TRUE(Open().Send());
  EXPECT_EQ(Open().Fetch(), "next");
  EXPECT_EQ(server.Connections(), 2);
}

// What nobody asked for would be read as the next reply.
TEST_P(KeptConnection, IsNotUsedOnceMoreCameThanTheReply) {
  const std::string one = HttpReply(200, "one").bytes;
  const std::string stale = "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nold";
  const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\none\r\n0\r\n\r\n";
  const struct {
    const char* name;
    std::string bytes;
    std::size_t piece;
    Reply::End end;
  } cases[] = {
      {"the reply again, later", one + one, one.size(), Reply::End::keep},
      {"behind the body, at once", one + stale, 0, Reply::End::keep},
      {"behind the body's last byte, which comes by itself", one + stale, one.size() - 1, Reply::End::keep},
      {"behind chunks, later", chunked + stale, chunked.size(), Reply::End::keep},
      {"a time-out", one + "HTTP/1.1 408 Late\r\nContent-Length: 0\r\n\r\n", one.size(), Reply::End::close},
  };
  for (const auto& entry : cases) {
    for (const char* verb : {"GET", "POST"}) {
      SCOPED_TRACE(std::string(entry.name) + ", then " + verb);
      const Reply first{.bytes = entry.bytes, .end = entry.end, .piece = entry.piece, .pause = 20ms};
      const ScriptedServer server(std::vector{first, HttpReply(200, "two")}, serverName, shown);
      EXPECT_NE(Open().Fetch(), "!");
      std::this_thread::sleep_for(100ms);
      EXPECT_EQ(Open(verb).Fetch(), "two");
      EXPECT_EQ(Open().Fetch(), "two");
      EXPECT_EQ(server.Connections(), 2);
    }
  }
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

// Some versions of libcurl fail then, some skip the blank; older ones write behind the last header of the reply before,
// which they have freed.
TEST_P(KeptConnection, SurvivesAReplyWhoseFirstHeaderContinuesNone) {
  const Reply folded{.bytes = "HTTP/1.1 200 OK\r\n X: y\r\nContent-Length: 3\r\n\r\ntwo", .end = Reply::End::keep};
  const ScriptedServer server(std::vector{HttpReply(200, "one"), folded, HttpReply(200, "three")}, serverName, shown);
  EXPECT_EQ(Open().Fetch(), "one");
  const std::string got = Open("POST").Fetch("body");
  EXPECT_TRUE(got == "two" || got == "!") << got;
  EXPECT_EQ(Open().Fetch(), "three");
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
  const ScriptedServer another(HttpReply(200, "body"), "other.example");
  EXPECT_EQ(Exchange().Fetch(), "body");
  std::this_thread::sleep_for(1100ms);  // common servers close after some seconds, and a request is on its way for long
  EXPECT_EQ(Exchange({.verb = "POST"}).Fetch("x"), "body");
  EXPECT_EQ(server.Connections(), 2);
  EXPECT_EQ(Exchange({.host = "other.example"}).Fetch(), "body");
  platform::webLimits.idle = 200ms;
  std::this_thread::sleep_for(100ms);
  EXPECT_EQ(Exchange({.host = "other.example"}).Fetch(), "body");
  EXPECT_EQ(another.Connections(), 1);
  std::this_thread::sleep_for(150ms);
  EXPECT_EQ(Exchange({.host = "other.example"}).Fetch(), "body");
  EXPECT_TRUE(WaitUntil([&] { return server.Open() == 0; })) << "closed by an exchange with another host";
  EXPECT_EQ(another.Connections(), 1);
  EXPECT_EQ(Exchange().Fetch(), "body");
  EXPECT_EQ(server.Connections(), 3);
}

// Which programs that it starts may well be meant to have.
TEST(KeptConnectionsEngine, LeavesSocketsThatTheHostOpensMeanwhileAsTheyAre) {
  const ShortTimeouts restored;
  platform::webLimits.idle = -1ms;  // each exchange makes anew what is kept
  const ScriptedServer server(HttpReply(200, "body"));
  std::atomic<bool> goesOn = true;
  std::vector<int> opened;
  std::thread host([&] {
    for (int ends[2]; goesOn && opened.size() < 600; opened.insert(opened.end(), ends, ends + 2)) {
      EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
      EXPECT_EQ(write(ends[0], "x", 1), 1);
      std::this_thread::sleep_for(200us);
    }
  });
  for (int i = 0; i < 100; ++i) EXPECT_EQ(Exchange().Fetch(), "body");
  goesOn = false;
  host.join();
  for (const int end : opened) {
    EXPECT_EQ(fcntl(end, F_GETFD), 0);
    close(end);
  }
}

TEST(KeptConnectionsEngine, IdlesAsManyTimesAsItWasInUseAtOnceLately) {
  const ShortTimeouts restored;
  const auto use = [](std::size_t atOnce, const char* origin = "") {
    std::vector<std::unique_ptr<platform::WebEngine>> engines(atOnce);
    for (auto& engine : engines) engine = platform::TakeWebEngine({.origin = origin, .trust = {}});
    for (auto& engine : engines) {
      engine->EndTransfer(false);
      platform::GiveBackWebEngine(std::move(engine));
    }
    return platform::WebEngine::Count();
  };
  EXPECT_EQ(use(8), 8u);
  EXPECT_EQ(use(1), 8u);
  EXPECT_EQ(use(20), 16u);
  platform::webLimits.idle = -1ms;
  EXPECT_EQ(use(1), 1u);
  platform::webLimits.idle = 1min;
  for (const char* origin : {"1", "2", "3", "4", "5"}) use(1, origin);
  EXPECT_EQ(platform::WebEngine::Count(), 4u);
}

TEST(KeptConnectionsEngine, LeavesTheHostsSigpipeAsItIs) {
  const auto closeMany = [] {
    for (int i = 0; i < 1000; ++i) platform::TakeWebEngine({});
  };
  std::thread another(closeMany);
  closeMany();
  another.join();
  struct sigaction found{};
  sigaction(SIGPIPE, nullptr, &found);
  EXPECT_EQ(found.sa_handler, SIG_DFL);
}

// Neither a connection nor a TLS session that it has verified.
TEST(KeptConnectionOverTls, IsOfTheTrustStoreAsTheFileIsNow) {
  const TestAuthority authority;
  const TlsIdentity shown = authority.Issue(serverName);
  const std::string store = platform::FindTrustStore().file;
  const std::string good = ReadWholeFile(store);
  const std::string bad = good.substr(0, good.size() / 2) + std::string(good.size() - good.size() / 2, 'A');
  const auto fetch = [] { return Exchange({.flags = INTERNET_FLAG_SECURE}).Fetch(); };
  for (const Reply::End end : {Reply::End::keep, Reply::End::close}) {
    const ScriptedServer server(Reply{.bytes = HttpReply(200, "body").bytes, .end = end}, serverName, shown);
    for (const std::string& written : {store, store + ".new"}) {
      for (const std::string& bytes : {good, bad, good}) {
        std::this_thread::sleep_for(20ms);  // file systems tell the time in steps
        WriteWholeFile(written, bytes);
        std::filesystem::rename(written, store);
        EXPECT_EQ(fetch(), bytes == good ? "body" : "!") << written;
      }
    }
  }
  const ScopedVariable folder("SSL_CERT_DIR", std::filesystem::path(store).parent_path());
  const ScriptedServer server(HttpReply(200, "body"), serverName, shown);
  EXPECT_EQ(fetch() + fetch(), "bodybody");
  EXPECT_EQ(server.Connections(), 1);
  std::this_thread::sleep_for(20ms);
  WriteWholeFile(store + ".added", "");
  EXPECT_EQ(fetch(), "body");
  EXPECT_EQ(server.Connections(), 2);
}

}  // namespace
}  // namespace nvsupport::testing
