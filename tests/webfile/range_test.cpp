// Ranged reads: the request, the results, and the host's memory behind the buffer.
#include <gtest/gtest.h>

#include <string>

#include "nvsupport/nvsupport.h"
#include "support/scripted_server.h"
#include "support/test_authority.h"
#include "webfile/web_file_connection.h"

namespace nvsupport::testing {
namespace {

TEST(WebRange, SendsTheRangeInFullByTheProxyOfTheEnvironment) {
  const ScriptedServer server(HttpReply(206, "0123456789"));
  const struct {
    const char* path;
    std::int64_t offset;
    std::int32_t length;
    std::string asked, range;
  } cases[] = {
      {"a.map", 0, 10, "/a.map", "0-9"},
      {"a b#\xE9?d=../e\xE9", 5'000'000'000, 5, "/a%20b%23%e9?d=../e\xE9", "5000000000-5000000004"},
      {"/a.map", INT64_MAX - 1, 1, "/a.map", "9223372036854775806-9223372036854775806"},
      {nullptr, 100, 0, "/", "100-99"},
  };
  for (const auto& entry : cases) {
    char buffer[10];
    EXPECT_EQ(xfa704a3f(serverName, entry.path, entry.offset, entry.length, buffer, nullptr, nullptr), entry.length);
    EXPECT_EQ(server.Requests().back(),
              "GET " + entry.asked +
                  " HTTP/1.1\r\nHost: web.example\r\nUser-Agent: Norvane\r\nPragma: no-cache\r\nRange: bytes=" +
                  entry.range + "\r\n\r\n");
  }
  EXPECT_EQ(xfa704a3f(serverName, "a.map", 0, 10, nullptr, nullptr, nullptr), 0) << "there is no place for it";
  const ScopedVariable settings[] = {{"no_proxy", ""}, {"http_proxy", "http://127.0.0.1:1"}};
  char byte = 0;
  EXPECT_EQ(xfa704a3f(serverName, "", 0, 1, &byte, nullptr, nullptr), -1) << "by the proxy, where nobody is";
}

TEST(WebRange, ComesOverTlsToAModuleThatAsksForIt) {
  const TestAuthority authority;
  const ScriptedServer server(HttpReply(206, "abc"), serverName, authority.Issue(serverName));
  char bytes[4] = "";
  EXPECT_EQ(WebFileConnection(serverName, false, true).ReadRange("", 0, 3, bytes), 3);
  EXPECT_STREQ(bytes, "abc");
}

TEST(WebRange, TellsWholeFromBrokenFromNothing) {
  const std::string body = std::string(4999, 'b') + 'e';
  const std::string untouched(5000, '.');
  const std::string guard(100, '#');  // the host's memory behind the buffer
  const std::string three = "bbb" + untouched.substr(3);
  const struct {
    const char* name;
    Reply reply;
    int stopAt;           // 99, or the number of the callback's call that stops
    std::int32_t result;  // of reading 5000 bytes
    int calls;
    std::string buffer;
  } cases[] = {
      {"206", HttpReply(206, body), 99, 5000, 2, body},
      {"200 with the whole file", HttpReply(200, body + "more"), 99, 5000, 2, body},
      {"the range", HttpReply(206, body, "content-range:  Bytes 7-5006/9999\r\n"), 99, 5000, 2, body},
      {"another one", HttpReply(206, body, "Content-Range: bytes 70-5069/9999\r\n"), 99, -1, 0, untouched},
      {"an unknown one", HttpReply(206, body, "Content-Range: bytes */9999\r\n"), 99, -1, 0, untouched},
      {"ranges", HttpReply(206, body, "Content-Type: Multipart/ByteRanges; boundary=b\r\n"), 99, -1, 0, untouched},
      {"stopped", HttpReply(206, body), 2, 0, 2, body},
      {"empty", HttpReply(206, ""), 99, 0, 0, untouched},
      {"closed early", {.bytes = "HTTP/1.1 206 Part\r\nContent-Length: 5000\r\n\r\nbbb"}, 99, 0, 1, three},
      {"416", HttpReply(416, body), 99, -1, 0, untouched},
      {"nothing", {.bytes = ""}, 99, -1, 0, untouched},
  };
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.name);
    const ScriptedServer server(entry.reply);
    std::string buffer = untouched + guard;
    int left = entry.stopAt;
    const auto countDown = [](void* calls) { return --*static_cast<int*>(calls) != 0; };
    EXPECT_EQ(xfa704a3f(serverName, "a.map", 7, 5000, buffer.data(), countDown, &left), entry.result);
    EXPECT_EQ(entry.stopAt - left, entry.calls);
    EXPECT_TRUE(buffer == entry.buffer + guard);
  }
}

}  // namespace
}  // namespace nvsupport::testing
