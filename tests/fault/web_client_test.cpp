// The web client against servers that are silent, hostile, somebody else, or gone.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "support/exchange.h"
#include "support/short_timeouts.h"
#include "support/test_authority.h"

namespace nvsupport::testing {
namespace {

using namespace std::chrono_literals;

const std::string ok = "HTTP/1.1 200 OK\r\n";

// An authority that the client trusts while the object lives.
class TrustedAuthority : public TestAuthority {
  const TemporaryFolder folder;
  const ScopedVariable store{"SSL_CERT_FILE", (WriteWholeFile(folder / "ca.pem", Certificate()), folder / "ca.pem")};
};

double SecondsOf(const std::function<void()>& action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST(WebClientFaults, GivesASilentServerUpAfterTheTimeOut) {
  const ShortTimeouts timeouts;
  const struct {
    Reply reply;
    DWORD flags;
    bool sent;
    std::string body;
  } cases[] = {
      {NoReply(), 0, false, "!"},
      {NoReply(), INTERNET_FLAG_SECURE, false, "!"},  // in the handshake
      {{.bytes = ok + "Content-", .end = Reply::End::hold}, 0, false, "!"},
      {{.bytes = ok + "Content-Length: 9\r\n\r\n12345", .end = Reply::End::hold}, 0, true, "12345!"},
      // Slow is not silent: this one takes twice the time-out in all.
      {{.bytes = ok + "\r\n123456", .piece = 2, .pause = 50ms}, 0, true, "123456"},
  };
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.reply.bytes);
    RoutedServer server(entry.reply);
    const double seconds = SecondsOf([&] {
      Exchange exchange({.flags = entry.flags});
      EXPECT_EQ(exchange.Send(), entry.sent);
      EXPECT_EQ(exchange.Body(), entry.body);
    });
    EXPECT_GT(seconds, 0.29);
    EXPECT_LT(seconds, 5.0);
  }
}

TEST(WebClientFaults, DoesNotCountTheTimeThatTheCallerTakes) {
  const ShortTimeouts timeouts;
  const std::string body(3'000'000, 'b');
  RoutedServer server(HttpReply(200, body));
  Exchange exchange;
  ASSERT_TRUE(exchange.Send());
  std::this_thread::sleep_for(600ms);
  EXPECT_EQ(exchange.Body(), body);
}

TEST(WebClientFaults, EndsAnEndlessHead) {
  const std::string line = "X: " + std::string(1000, 'x') + "\r\n";
  std::string lines = ok;
  std::string interims;
  for (int i = 0; i < 1000; ++i) {
    lines += line;
    interims += "HTTP/1.1 100 Continue\r\n" + line + "\r\n";
  }
  const std::string otherProtocol = "HTTP/1.1 101 Switch\r\n\r\n" + std::string(1'000'000, 'x');
  for (const std::string& bytes : {lines, interims, otherProtocol, std::string("SSH-2.0\r\n")}) {
    RoutedServer server(Reply{.bytes = bytes, .end = Reply::End::hold});
    EXPECT_LT(SecondsOf([] { EXPECT_FALSE(Exchange().Send()); }), 5.0) << bytes.substr(0, 40);
  }
}

TEST(WebClientFaults, FollowsARedirectIntoTlsButNeverOutOfIt) {
  const TrustedAuthority authority;
  const TlsIdentity identity = authority.Issue(serverName);
  const auto redirect = [](const std::string& place) { return HttpReply(301, "", "Location: " + place + "\r\n"); };
  ScriptedServer plain({redirect("https://web.example/a")});
  const std::string safe(3'000'000, 's');  // more than TLS and the client hold back at a time
  ScriptedServer secure({HttpReply(200, safe), redirect("http://web.example/b")}, &identity);
  const ScopedVariable route("NV_CONNECT_TO",
                             plain.ConnectTo(serverName, 80) + "," + secure.ConnectTo(serverName, 443));
  {
    Exchange into;
    EXPECT_TRUE(into.Send());
    EXPECT_EQ(into.Body(), safe);
  }
  EXPECT_FALSE(Exchange({.flags = INTERNET_FLAG_SECURE}).Send());
  EXPECT_EQ(plain.Connections(), 1);
}

// A server that goes in the middle of a request would raise a signal that ends a host which does not expect it.
TEST(WebClientFaults, SurvivesAServerThatGoesWhileItIsSentTo) {
  const TrustedAuthority authority;
  const TlsIdentity identity = authority.Issue(serverName);
  const std::string body(8'000'000, 'b');
  for (const DWORD flags : {DWORD{0}, INTERNET_FLAG_SECURE}) {
    RoutedServer server(std::vector<Reply>{{.bytes = "", .end = Reply::End::reset}}, flags != 0 ? &identity : nullptr);
    server.AnswerAfter(1000);
    EXPECT_FALSE(Exchange({.flags = flags, .verb = "POST"}).Send({}, body));
    EXPECT_EQ(server.Requests().size(), 1u);
  }
}

TEST(WebClientFaults, TakesAReplyThatComesBeforeTheWholeRequestIsSent) {
  RoutedServer server(HttpReply(413, "too much"));
  server.AnswerAfter(1000);
  Exchange exchange({.verb = "POST"});
  // The body is the test's own and gone when the reply is read.
  ASSERT_TRUE(exchange.Send({}, std::string(8'000'000, 'b')));
  EXPECT_EQ(exchange.Status(), 413u);
  EXPECT_EQ(exchange.Body().substr(0, 8), "too much");
}

TEST(WebClientFaults, LeavesNoThreadBehind) {
  const auto threads = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}); };
  const ScriptedServer server({HttpReply(200, "body")});
  // By name, which libcurl looks up on a thread of its own.
  const ScopedVariable route("NV_CONNECT_TO", "web.example:80:localhost:" + std::to_string(server.Port()));
  const auto before = threads();
  {
    Exchange exchange;
    EXPECT_TRUE(exchange.Send());
    Exchange nowhere({.host = "no-such-name.invalid"});
    EXPECT_FALSE(nowhere.Send());
  }
  EXPECT_EQ(threads(), before);
}

}  // namespace
}  // namespace nvsupport::testing
