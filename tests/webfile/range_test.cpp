// Ranged reads: the request, the results, and the host's memory around the buffer.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "nvsupport/nvsupport.h"
#include "support/routed_server.h"
#include "support/short_timeouts.h"

namespace nvsupport::testing {
namespace {

using namespace std::chrono_literals;

const std::string partial = "HTTP/1.1 206 Partial\r\n";

bool CountCalls(void* calls) {
  ++*static_cast<int*>(calls);
  return true;
}

TEST(WebRange, SendsTheRangeInFull) {
  RoutedServer server(HttpReply(206, "0123456789"));
  char buffer[10];
  struct Case {
    std::int64_t offset;
    std::int32_t length;
    std::string range;
  };
  const Case cases[] = {
      {0, 10, "0-9"},
      {5'000'000'000, 5, "5000000000-5000000004"},
      {INT64_MAX - 1, 1, "9223372036854775806-9223372036854775806"},
      {100, 0, "100-99"},
      {100, -1, "100-98"},
      {-7, 2, "-7--6"},
  };
  for (const Case& entry : cases) {
    const std::int32_t expected = entry.length > 0 ? entry.length : 0;
    EXPECT_EQ(xfa704a3f(serverName, "a.map", entry.offset, entry.length, buffer, nullptr, nullptr), expected);
    EXPECT_EQ(server.Requests().back(),
              "GET /a.map HTTP/1.1\r\nHost: web.example\r\nUser-Agent: Norvane\r\n"
              "Pragma: no-cache\r\nRange: bytes=" +
                  entry.range + "\r\n\r\n");
  }
}

TEST(WebRange, TellsWholeFromBrokenFromNothing) {
  const std::string body(5000, 'b');
  struct Case {
    std::string name;
    Reply reply;
    std::int32_t result;  // of reading 5000 bytes
    int calls;
  };
  const Case cases[] = {
      {"206", HttpReply(206, body), 5000, 2},
      {"200 with the whole file", HttpReply(200, body + body), 5000, 2},
      {"no length", {.bytes = partial + "\r\n" + body}, 5000, 2},
      {"short", HttpReply(206, body.substr(1)), 0, 2},
      {"empty", HttpReply(206, ""), 0, 0},
      {"closed early", {.bytes = partial + "Content-Length: 5000\r\n\r\nbbb"}, 0, 1},
      {"silent", {.bytes = partial + "\r\nbbb", .end = Reply::End::hold}, 0, 1},
      {"reset", {.bytes = partial + "\r\nbbb", .end = Reply::End::reset, .pause = 30ms}, 0, 1},
      {"416", HttpReply(416, body), -1, 0},
      {"nothing", {.bytes = ""}, -1, 0},
      {"never", NoReply(), -1, 0},
  };
  const ShortTimeouts timeouts;
  for (const Case& entry : cases) {
    SCOPED_TRACE(entry.name);
    RoutedServer server(entry.reply);
    std::string buffer(5000, '.');
    int calls = 0;
    EXPECT_EQ(xfa704a3f(serverName, "a.map", 0, 5000, buffer.data(), &CountCalls, &calls), entry.result);
    EXPECT_EQ(calls, entry.calls);
    if (entry.result == 5000) {
      EXPECT_EQ(buffer, body);
    }
    if (entry.calls == 1) {
      EXPECT_EQ(buffer.substr(0, 4), "bbb.");
    }
  }
  EXPECT_EQ(xfa704a3f("", "a.map", 0, 1, nullptr, nullptr, nullptr), -1);
  RoutedServer server(HttpReply(206, "0123456789"));
  std::string buffer(10, '.');
  EXPECT_EQ(xfa704a3f(
                serverName, "a.map", 0, 10, buffer.data(), [](void*) { return false; }, nullptr),
            0);
  EXPECT_EQ(buffer, "0123456789") << "what came before the stop stays";
}

TEST(WebRange, WritesNothingBehindTheBuffer) {
  std::string file;
  for (int i = 0; i < 10'000; ++i) file += static_cast<char>(i * 37 % 251);
  RoutedServer server(HttpReply(200, file));
  constexpr std::size_t guard = 64;
  for (std::int32_t length = -1; length <= 9000; ++length) {
    const std::size_t wanted = length > 0 ? static_cast<std::size_t>(length) : 0;
    std::string memory(wanted + 2 * guard, '\xA5');
    ASSERT_EQ(xfa704a3f(serverName, "a.map", 0, length, memory.data() + guard, nullptr, nullptr),
              static_cast<std::int32_t>(wanted));
    const std::string untouched(guard, '\xA5');
    ASSERT_EQ(memory.substr(0, guard), untouched) << length;
    ASSERT_EQ(memory.substr(guard, wanted), file.substr(0, wanted)) << length;
    ASSERT_EQ(memory.substr(guard + wanted), untouched) << length;
  }
}

}  // namespace
}  // namespace nvsupport::testing
