// The web file exports on several threads at a time: what a host with a progress bar does. ThreadSanitizer looks on.
#include <gtest/gtest.h>

#include <latch>
#include <list>
#include <string>
#include <thread>

#include "nvsupport/nvsupport.h"
#include "support/scripted_server.h"
#include "support/temporary_home.h"

namespace nvsupport::testing {
namespace {

TEST(WebFileThreads, MixUpNoTransfersOfEachOther) {
  constexpr int count = 6;
  const TemporaryFolder folder;
  std::latch start(count);
  const auto work = [&](const std::string& host, const std::string& body) {
    const std::string file = folder / host;
    start.arrive_and_wait();
    for (int round = 0; round < 10; ++round) {
      WebProgressCounters counters{};
      EXPECT_TRUE(NSDownloadWebFileProgress(host.c_str(), "x", file.c_str(), nullptr, nullptr, &counters));
      EXPECT_TRUE(ReadWholeFile(file) == body);
      EXPECT_EQ(counters.done, body.size());
      std::string stretch(body.size(), '\0');
      const auto size = static_cast<std::int32_t>(body.size());
      EXPECT_EQ(xfa704a3f(host.c_str(), "x", 0, size, stretch.data(), nullptr, nullptr), size);
      EXPECT_TRUE(stretch == body);
    }
  };
  std::list<ScriptedServer> servers;
  std::list<std::thread> threads;
  for (int i = 0; i < count; ++i) {
    const std::string host = "host" + std::to_string(i) + ".example";
    const std::string body(50'000 + static_cast<std::size_t>(i), static_cast<char>('a' + i));
    servers.emplace_back(HttpReply(200, body), host);
    threads.emplace_back(work, host, body);
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(WebFileThreads, LoseNoWholeBodyWhenTwoWriteOneFile) {
  const TemporaryFolder folder;
  const ScriptedServer servers[] = {ScriptedServer(HttpReply(200, "body"), "0.example"),
                                    ScriptedServer(HttpReply(200, "body"), "1.example")};
  const auto work = [file = folder / "a.map"](const char* host) {
    for (int round = 0; round < 300; ++round) {
      WebProgressCounters counters{};
      const bool done = NSDownloadWebFileProgress(host, "x", file.c_str(), nullptr, nullptr, &counters);
      EXPECT_EQ(done, counters.done == 4) << host;
    }
  };
  std::thread other(work, "1.example");
  work("0.example");
  other.join();
}

}  // namespace
}  // namespace nvsupport::testing
