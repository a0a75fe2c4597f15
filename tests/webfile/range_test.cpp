// Ranged reads: the request, the results, and the host's memory around the buffer.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "nvsupport/nvsupport.h"
#include "support/scripted_server.h"
#include "support/short_timeouts.h"

namespace nvsupport::testing {
namespace {

const std::string partial = "HTTP/1.1 206 Partial\r\n";

bool CountCalls(void* calls) {
  ++*static_cast<int*>(calls);
  return true;
}

TEST(WebRange, SendsTheRangeInFull) {
  ScriptedServer server(HttpReply(206, "0123456789"));
  char buffer[10];
  const struct {
    std::int64_t offset;
    std::int32_t length;
    std::string range;
  } cases[] = {
      {0, 10, "0-9"},
      {5'000'000'000, 5, "5000000000-5000000004"},
      {INT64_MAX - 1, 1, "9223372036854775806-9223372036854775806"},
      {100, 0, "100-99"},
  };
  for (const auto& entry : cases) {
    EXPECT_EQ(xfa704a3f(serverName, "a.map", entry.offset, entry.length, buffer, nullptr, nullptr), entry.length);
    EXPECT_EQ(server.Requests().back(),
              "GET /a.map HTTP/1.1\r\nHost: web.example\r\nUser-Agent: Norvane\r\nPragma: no-cache\r\n"
              "Range: bytes=" +
                  entry.range + "\r\n\r\n");
  }
  EXPECT_EQ(xfa704a3f(serverName, "a b#c?d=../e\xE9", 0, 1, buffer, nullptr, nullptr), 1);
  EXPECT_TRUE(server.Requests().back().starts_with("GET /a%20b%23c?d=../e\xE9 HTTP/1.1\r\n"));
}

TEST(WebRange, TellsWholeFromBrokenFromNothing) {
  const std::string body(5000, 'b');
  const std::string three = "bbb" + std::string(4997, '.');
  const std::string untouched(5000, '.');
  const struct {
    const char* name;
    Reply reply;
    std::int32_t result;  // of reading 5000 bytes
    int calls;
    std::string buffer;
  } cases[] = {
      {"206", HttpReply(206, body), 5000, 2, body},
      {"200 with the whole file", HttpReply(200, body + "more"), 5000, 2, body},
      {"empty", HttpReply(206, ""), 0, 0, untouched},
      {"closed early", {.bytes = partial + "Content-Length: 5000\r\n\r\nbbb"}, 0, 1, three},
      {"silent", {.bytes = partial + "\r\nbbb", .end = Reply::End::hold}, 0, 1, three},
      {"416", HttpReply(416, body), -1, 0, untouched},
      {"nothing", {.bytes = ""}, -1, 0, untouched},
  };
  const ShortTimeouts timeouts;
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.name);
    ScriptedServer server(entry.reply);
    std::string buffer = untouched;
    int calls = 0;
    EXPECT_EQ(xfa704a3f(serverName, "a.map", 0, 5000, buffer.data(), &CountCalls, &calls), entry.result);
    EXPECT_EQ(calls, entry.calls);
    EXPECT_EQ(buffer, entry.buffer);
  }
  for (const char* host : {"", "web.exam\rple"})
    EXPECT_EQ(xfa704a3f(host, "a.map", 0, 1, nullptr, nullptr, nullptr), -1);
  ScriptedServer server(HttpReply(206, "0123456789"));
  std::string buffer(10, '.');
  const auto stop = [](void*) { return false; };
  EXPECT_EQ(xfa704a3f(serverName, "a.map", 0, 10, buffer.data(), stop, nullptr), 0);
  EXPECT_EQ(buffer, "0123456789") << "what came before the stop stays";
}

TEST(WebRange, WritesNothingBehindTheBuffer) {
  std::string file;
  for (int i = 0; i < 10'000; ++i) file += static_cast<char>(i * 37 % 251);
  ScriptedServer server(HttpReply(200, file));
  const std::string guard(64, '\xA5');
  for (const std::int32_t length : {-1, 0, 1, 4095, 4096, 4097, 8191, 8192, 8193, 9000}) {
    const auto wanted = static_cast<std::size_t>(std::max(length, 0));
    std::string memory = guard + std::string(wanted, '.') + guard;
    char* const buffer = memory.data() + guard.size();
    EXPECT_EQ(xfa704a3f(serverName, "a.map", 0, length, buffer, nullptr, nullptr), std::max(length, 0));
    EXPECT_TRUE(memory == guard + file.substr(0, wanted) + guard) << length;
  }
}

}  // namespace
}  // namespace nvsupport::testing
