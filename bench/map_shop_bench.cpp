// How the map shop search grows with the size of the reply: a whole search over HTTP on loopback, from the request to
// the last record in the host's hands.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <nvsupport/nvsupport.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "mapshop/map_shop_reply.h"
#include "support/scripted_server.h"

namespace {

using namespace nvsupport::testing;

// Bytes that the process has from its allocator.
double AllocatedBytes() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<double>(info.uordblks + info.hblkhd);
}

Reply ReplyOfSize(std::int32_t items) {
  MapShopReply reply = ReplyOf(items);
  for (std::int32_t i = 0; i < items; ++i) {
    const std::string number = std::to_string(i);
    reply.Add({"Hiking map " + number, i, "A map of the hills", "maps/region/" + number + ".nvpkg", -i});
  }
  return HttpReply(200, reply.Close(0).bytes);
}

// What a handle holds beyond the reply, in terms of the records in it.
double MemoryRatio(std::int32_t items) {
  const auto settle = [] { std::this_thread::sleep_for(std::chrono::milliseconds(200)); };  // the server, of its reply
  settle();
  const double before = AllocatedBytes();
  const NVMapShopHandle handle = NSMapShopSearch(nullptr, 0);
  settle();
  const double held = AllocatedBytes() - before;
  NSMapShopClose(handle);
  return held / (static_cast<double>(items) * sizeof(MapShopItem));
}

void BM_MapShopSearch(benchmark::State& state) {
  const auto items = static_cast<std::int32_t>(state.range(0));
  const Reply reply = ReplyOfSize(items);
  ScriptedServer server([&reply](const std::string&) { return reply; });
  setenv("NV_CONNECT_TO", server.ConnectTo(NV_SERVICE_HOST, 80).c_str(), 1);
  const double memoryRatio = MemoryRatio(items);
  for (auto _ : state) {
    const NVMapShopHandle handle = NSMapShopSearch(nullptr, 0);
    MapShopItem item;
    std::int32_t taken = 0;
    while (NSMapShopGetNext(handle, &item)) ++taken;
    NSMapShopClose(handle);
    if (taken != items) state.SkipWithError("records are missing");
  }
  state.SetItemsProcessed(state.iterations() * items);
  state.counters["memory/records"] = memoryRatio;
  unsetenv("NV_CONNECT_TO");
}

BENCHMARK(BM_MapShopSearch)
    ->Name("map_shop_search")
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
