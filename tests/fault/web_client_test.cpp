// The web client against servers that are silent, hostile, somebody else, or gone.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <iterator>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/exchange.h"
#include "support/short_timeouts.h"
#include "support/test_authority.h"

namespace nvsupport::testing {
namespace {

using namespace std::chrono_literals;

const std::string ok = "HTTP/1.1 200 OK\r\n";

double SecondsOf(const std::function<void()>& action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::string Repeat(const std::string& text, int times) {
  std::string repeated;
  for (int i = 0; i < times; ++i) repeated += text;
  return repeated;
}

// Whatever a server does to keep the client busy, only what the caller can see renews the time-outs.
TEST(WebClientFaults, GivesAServerUpThatDoesNotComeToThePoint) {
  constexpr int many = 500;  // pieces, which take ten seconds in all
  const auto slowly = [](const std::string& bytes, std::size_t piece) {
    return Reply{.bytes = bytes, .end = Reply::End::hold, .piece = piece, .pause = 20ms};
  };
  const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
  const std::string zipped = ok + "Transfer-Encoding: gzip\r\n\r\n" + std::string("\x1F\x8B\x08\0\0\0\0\0\0\3", 10);
  const std::string emptyBlock("\0\0\0\xFF\xFF", 5);
  const struct {
    const char* name;
    Reply reply;
    Target target;
    bool sent;
    std::string body;
  } cases[] = {
      {"silence", NoReply(), {}, false, "!"},
      {"silence in the handshake", NoReply(), {.flags = INTERNET_FLAG_SECURE}, false, "!"},
      {"a head in drops", slowly(ok + "X: " + std::string(many, 'x'), 1), {}, false, "!"},
      {"interim replies", slowly(Repeat("HTTP/1.1 100 Continue\r\n\r\n", many), 25), {}, false, "!"},
      {"half a body", {.bytes = ok + "Content-Length: 9\r\n\r\n12345", .end = Reply::End::hold}, {}, true, "12345!"},
      {"a chunk's extension", slowly(chunked + "5;" + std::string(many * 60, 'x'), 60), {}, true, "!"},
      {"empty blocks", slowly(zipped + Repeat(emptyBlock, many * 12), 60), {}, true, "!"},
      // An exchange with a body, which no caller can stop, has an end of its own.
      {"drops of a reply", slowly(ok + "\r\n" + std::string(many * 19, 'x'), 19), {.verb = "POST"}, true, ""},
      // Slow is not silent: this one takes twice the time-out in all.
      {"slow",
       {.bytes = ok + "\r\n" + std::string(240, 's'), .piece = 20, .pause = 100ms},
       {},
       true,
       std::string(240, 's')},
  };
  const ShortTimeouts timeouts;
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.name);
    const bool secure = entry.target.flags != 0;
    // The second reply comes on the connection of the first.
    ScriptedServer server(std::vector{entry.reply, HttpReply(200, "well"), entry.reply});
    for (const bool kept : {false, true}) {
      SCOPED_TRACE(kept ? "kept connection" : "new connection");
      const double seconds = SecondsOf([&] {
        Exchange exchange(entry.target);
        EXPECT_EQ(exchange.Send(), entry.sent);
        const std::string body = exchange.Body();
        if (entry.body.empty()) {
          EXPECT_TRUE(body.starts_with("xxx") && body.ends_with("!")) << body;
        } else {
          EXPECT_EQ(body, entry.body);
        }
      });
      EXPECT_GT(seconds, 0.59);
      EXPECT_LT(seconds, 5.0);
      if (kept || secure) break;
      EXPECT_EQ(Exchange().Fetch(), "well");
    }
    EXPECT_EQ(server.Connections(), secure ? 1 : 2);
  }
}

TEST(WebClientFaults, CountsTheTimeOfAllRedirectsTogether) {
  const ShortTimeouts timeouts;
  ScriptedServer server([](const std::string&) {
    std::this_thread::sleep_for(200ms);
    return HttpReply(301, "", "Location: /x\r\n");
  });
  EXPECT_FALSE(Exchange().Send());
  EXPECT_LT(server.Requests().size(), 9u);
}

TEST(WebClientFaults, EndsAnEndlessReplyToARequestWithABody) {
  const ShortTimeouts timeouts;
  const std::string large(ShortTimeouts::replySize + 1, 'b');
  ScriptedServer server(HttpReply(200, large));
  const std::pair<const char*, std::string> cases[] = {{"GET", large}, {"POST", large.substr(1) + "!"}};
  for (const auto& [verb, body] : cases) EXPECT_TRUE(Exchange({.verb = verb}).Fetch() == body) << verb;
}

TEST(WebClientFaults, DoesNotCountTheTimeThatTheCallerTakes) {
  const std::string body(3'000'000, 'b');
  ScriptedServer server(HttpReply(200, body));
  Exchange exchange;
  ASSERT_TRUE(exchange.Send());
  const ShortTimeouts timeouts;
  std::this_thread::sleep_for(900ms);
  EXPECT_EQ(exchange.Body(), body);
}

TEST(WebClientFaults, EndsAnEndlessHead) {
  const std::string line = "X: " + std::string(1000, 'x') + "\r\n";
  const std::string lines = ok + Repeat(line, 1000);
  const std::string interims = Repeat("HTTP/1.1 100 Continue\r\n" + line + "\r\n", 1000);
  const std::string otherProtocol = "HTTP/1.1 101 Switch\r\n\r\n" + std::string(1'000'000, 'x');
  for (const std::string& bytes : {lines, interims, otherProtocol, std::string("SSH-2.0\r\n")}) {
    ScriptedServer server(Reply{.bytes = bytes, .end = Reply::End::hold});
    EXPECT_LT(SecondsOf([] { EXPECT_FALSE(Exchange().Send()); }), 5.0) << bytes.substr(0, 40);
  }
}

// What went over TLS, a password perhaps, was meant for that host alone.
TEST(WebClientFaults, FollowsARedirectIntoTlsButThenNeverOffTheHostOrOutOfTls) {
  const TestAuthority authority;
  const auto redirect = [](int status, const std::string& place) {
    return HttpReply(status, "", "Location: " + place + "\r\n");
  };
  const ScriptedServer plain(redirect(301, "https://web.example/a"), "");  // of every name
  const ScriptedServer other(HttpReply(200, "theirs"), "other.example", authority.Issue("other.example"));
  std::string place;
  const std::string safe(3'000'000, 's');  // more than TLS and the client hold back at a time
  const ScriptedServer secure(
      [&](const std::string& request) {
        return request.find(" /a ") != std::string::npos ? redirect(307, place) : HttpReply(200, safe);
      },
      serverName, authority.Issue(serverName));
  for (const char* kept : {"/b", "https://web.example/b", "https://WEB.example:443/b"}) {
    SCOPED_TRACE(place = kept);
    Exchange into({.verb = "POST"});
    EXPECT_TRUE(into.Send({}, "secret"));
    EXPECT_EQ(into.Body(), safe);
  }
  for (const char* left : {"http://web.example/b", "https://other.example/b", "//other.example/b",
                           "http://other.example/b", "https://web.example@other.example/b"}) {
    SCOPED_TRACE(place = left);
    EXPECT_FALSE(Exchange({.path = "a", .flags = INTERNET_FLAG_SECURE, .verb = "POST"}).Send({}, "secret"));
    Exchange into;
    EXPECT_FALSE(into.Send());
    EXPECT_EQ(into.Body(), "!");
  }
  EXPECT_EQ(other.Connections(), 0);
}

// A server that goes in the middle of a request would raise a signal that ends a host which does not expect it.
TEST(WebClientFaults, SurvivesAServerThatGoesWhileItIsSentTo) {
  const TestAuthority authority;
  const std::string body(8'000'000, 'b');
  for (const DWORD flags : {DWORD{0}, INTERNET_FLAG_SECURE}) {
    const ScriptedServer server(Reply{.bytes = {}, .end = Reply::End::reset}, serverName,
                                flags != 0 ? authority.Issue(serverName) : TlsIdentity{});
    EXPECT_FALSE(Exchange({.flags = flags, .verb = "POST"}).Send({}, body));
    EXPECT_EQ(server.Requests().size(), 1u);
  }
}

TEST(WebClientFaults, TakesAReplyThatComesBeforeTheWholeRequestIsSent) {
  ScriptedServer server(HttpReply(413, "too much"));
  Exchange exchange({.verb = "POST"});
  // The body is the test's own and gone when the reply is read.
  ASSERT_TRUE(exchange.Send({}, std::string(8'000'000, 'b')));
  EXPECT_EQ(exchange.Status(), 413u);
  EXPECT_EQ(exchange.Body().substr(0, 8), "too much");
}

TEST(WebClientFaults, LeavesNoThreadBehind) {
  const auto threads = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}); };
  const ScriptedServer server(HttpReply(200, "body"));
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
