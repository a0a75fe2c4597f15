// The web client as the library calls it, against servers that answer badly or not at all.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "support/scripted_server.h"
#include "support/temporary_home.h"
#include "web_curl.h"

namespace nvsupport::testing {
namespace {

using namespace std::chrono_literals;

constexpr char serverName[] = "web.example";
constexpr DWORD followed = INTERNET_FLAG_NO_COOKIES;
constexpr DWORD notFollowed = followed | INTERNET_FLAG_NO_AUTO_REDIRECT;

// One exchange from its handles to its body.
class Exchange {
 public:
  Exchange(const std::string& host, const std::string& path, DWORD flags, const char* verb = "GET") {
    internet = InternetOpenA("Norvane", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
    const bool secure = (flags & INTERNET_FLAG_SECURE) != 0;
    const INTERNET_PORT port = secure ? INTERNET_DEFAULT_HTTPS_PORT : INTERNET_DEFAULT_HTTP_PORT;
    connection = InternetConnectA(internet, host.c_str(), port, nullptr, nullptr, INTERNET_SERVICE_HTTP, 0, 0);
    request = HttpOpenRequestA(connection, verb, path.c_str(), nullptr, nullptr, nullptr, flags, 0);
  }
  ~Exchange() {
    for (const HINTERNET handle : {request, connection, internet}) InternetCloseHandle(handle);
  }
  Exchange(const Exchange&) = delete;
  Exchange& operator=(const Exchange&) = delete;

  bool Send(const std::string& header = {}, std::string body = {}) {
    return HttpSendRequestA(request, header.empty() ? nullptr : header.c_str(), static_cast<DWORD>(header.size()),
                            body.empty() ? nullptr : body.data(), static_cast<DWORD>(body.size())) != 0;
  }
  DWORD Status() {
    DWORD status = 1000;
    DWORD size = sizeof status;
    HttpQueryInfoA(request, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size, nullptr);
    return status;
  }
  std::string Length() {
    char text[30] = {};
    DWORD size = sizeof text;
    return HttpQueryInfoA(request, HTTP_QUERY_CONTENT_LENGTH, text, &size, nullptr) ? text : "none";
  }
  // The body, "!" behind it if the transfer failed.
  std::string Body() {
    std::string body;
    char part[4096];
    DWORD got = 0;
    while (InternetReadFile(request, part, sizeof part, &got)) {
      if (got == 0) return body;
      body.append(part, got);
    }
    return body + "!";
  }

  HINTERNET internet;
  HINTERNET connection;
  HINTERNET request;
};

// Leads connections for the server's name to a scripted server.
class Route {
 public:
  explicit Route(const ScriptedServer& server)
      : variable("NV_CONNECT_TO", server.ConnectTo(serverName, 80) + "," + server.ConnectTo(serverName, 443)) {}

 private:
  ScopedVariable variable;
};

TEST(WebClient, SendsNoHeadersOfItsOwn) {
  ScriptedServer server({HttpReply(200, "body")});
  const Route route(server);
  constexpr DWORD noCache = notFollowed | INTERNET_FLAG_PRAGMA_NOCACHE;
  const std::string agent = "User-Agent: Norvane\r\n";
  EXPECT_TRUE(Exchange(serverName, "cgi-bin/a.cgi", noCache, "POST").Send({}, "123456"));
  EXPECT_TRUE(Exchange(serverName, "a.cgi", noCache, "POST").Send());
  EXPECT_TRUE(Exchange(serverName, "/a b#c?d=../e", noCache).Send());
  EXPECT_TRUE(Exchange(serverName, "x", noCache, nullptr).Send("Range:bytes=0-99\n"));
  EXPECT_TRUE(Exchange(serverName, "", notFollowed).Send());
  const std::vector<std::string> expected = {
      "POST /cgi-bin/a.cgi HTTP/1.1\r\nHost: web.example\r\nContent-Length: 6\r\n" + agent +
          "Pragma: no-cache\r\n\r\n123456",
      "POST /a.cgi HTTP/1.1\r\nHost: web.example\r\nContent-Length: 0\r\n" + agent + "Pragma: no-cache\r\n\r\n",
      "GET /a%20b%23c?d=../e HTTP/1.1\r\nHost: web.example\r\n" + agent + "Pragma: no-cache\r\n\r\n",
      "GET /x HTTP/1.1\r\nHost: web.example\r\n" + agent + "Pragma: no-cache\r\nRange: bytes=0-99\r\n\r\n",
      "GET / HTTP/1.1\r\nHost: web.example\r\n" + agent + "\r\n",
  };
  EXPECT_EQ(server.Requests(), expected);
}

TEST(WebClient, DeliversABodyAsItsServerEndsIt) {
  struct Case {
    std::string name;
    Reply reply;
    std::string length;
    std::string body;
  };
  const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  const std::vector<Case> cases = {
      {"length", HttpReply(200, "12345"), "5", "12345"},
      {"empty", HttpReply(200, ""), "0", ""},
      {"no length", {.bytes = "HTTP/1.1 200 OK\r\n\r\n12345"}, "none", "12345"},
      {"old version", {.bytes = "HTTP/1.0 200 OK\r\n\r\n12345"}, "none", "12345"},
      {"short", {.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n12345"}, "9", "12345"},
      {"long", {.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\n12345"}, "3", "123"},
      {"chunked", {.bytes = chunked + "2\r\n12\r\n3;x=y\r\n345\r\n0\r\nTrailer: t\r\n\r\n"}, "none", "12345"},
      {"cut chunk", {.bytes = chunked + "5\r\n123"}, "none", "123!"},
      {"bad chunk", {.bytes = chunked + "2\r\n12\r\nzz\r\n"}, "none", "12!"},
      {"interim", {.bytes = "HTTP/1.1 103 Wait\r\n\r\nHTTP/1.1 200 OK\r\n\r\n12345"}, "none", "12345"},
      {"pieces", {.bytes = HttpReply(200, "12345").bytes, .piece = 1, .pause = 1ms}, "5", "12345"},
      {"reset",
       {.bytes = "HTTP/1.1 200 OK\r\n\r\n12345", .end = Reply::End::reset, .piece = 23, .pause = 50ms},
       "none",
       "12345!"},
  };
  for (const Case& entry : cases) {
    SCOPED_TRACE(entry.name);
    ScriptedServer server({entry.reply});
    const Route route(server);
    Exchange exchange(serverName, "x", notFollowed);
    ASSERT_TRUE(exchange.Send());
    EXPECT_EQ(exchange.Status(), 200u);
    EXPECT_EQ(exchange.Length(), entry.length);
    EXPECT_EQ(exchange.Body(), entry.body);
  }
}

}  // namespace
}  // namespace nvsupport::testing
