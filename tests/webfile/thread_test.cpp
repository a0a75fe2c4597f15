// The web file exports on several threads at a time, and the results of searches on the threads that hold their
// handles: what a host with a progress bar does. ThreadSanitizer looks on.
#include <gtest/gtest.h>

#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "mapshop/map_shop_reply.h"
#include "nvsupport/nvsupport.h"
#include "support/scripted_server.h"
#include "support/temporary_home.h"

namespace nvsupport::testing {
namespace {

// What one thread does, with a server of its own.
struct Worker {
  void Work(const std::string& file, std::latch& start) {
    start.arrive_and_wait();
    for (int round = 0; round < 10; ++round) {
      WebProgressCounters counters{};
      EXPECT_TRUE(NSDownloadWebFileProgress(host.c_str(), "x", file.c_str(), &Worker::Call, this, &counters));
      EXPECT_TRUE(ReadWholeFile(file) == body);
      EXPECT_EQ(counters.done, body.size());
      std::string stretch(body.size(), '\0');
      EXPECT_EQ(
          xfa704a3f(host.c_str(), "x", 0, static_cast<std::int32_t>(body.size()), stretch.data(), &Worker::Call, this),
          body.size());
      EXPECT_TRUE(stretch == body);
      EXPECT_TRUE(x77fc64c7(host.c_str(), "x", file.c_str(), nullptr, nullptr));
    }
    EXPECT_GT(calls, 0);
    MapShopItem item{};
    EXPECT_TRUE(NSMapShopGetNext(results, &item));
    EXPECT_EQ(item.firstValue, 3);
    EXPECT_EQ(NSMapShopClose(results), 7);
  }
  static bool Call(void* worker) {
    ++static_cast<Worker*>(worker)->calls;
    return true;
  }

  std::string host;
  std::string body;
  NVMapShopHandle results = nullptr;
  int calls = 0;
  ScriptedServer server{HttpReply(200, body), host};
};

TEST(WebFileThreads, WorkSideBySide) {
  constexpr std::size_t count = 6;
  const TemporaryFolder folder;
  const ScriptedServer shop(HttpReply(200, ReplyWith({{"T", 3, "S", "F", 4}}, 7)), NV_SERVICE_HOST);
  std::vector<std::unique_ptr<Worker>> workers;
  for (std::size_t i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    workers.emplace_back(new Worker{.host = "host" + number + ".example", .body = std::string(50'000 + i, number[0])});
  }
  for (const auto& worker : workers) worker->results = NSMapShopSearch(nullptr, 0);

  std::latch start(count);
  std::vector<std::thread> threads;
  for (const auto& worker : workers) {
    threads.emplace_back([&, file = folder / worker->host] { worker->Work(file, start); });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace nvsupport::testing
