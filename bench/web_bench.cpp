// The library's transfers and exchanges, on a server in another process, so that the processor time is its own.
#include <nvsupport/nvsupport.h>

#include <cstdlib>
#include <vector>

#include "bench_data.h"
#include "local_server.h"
#include "wire/web_binary_cgi.h"

namespace nvsupport::bench {
namespace {

constexpr std::int64_t mebibyte = std::int64_t{1} << 20;

// loaded: libcurl is there before the clock runs, as it is in a peer.
void UseServer(bool delayed, bool loaded = true) {
  const LocalServer& server = Server();
  const std::string routes = Route(webHost, 80, server.plain) + ',' + Route(delayedHost, 80, server.delayedPlain) +
                             ',' + Route(serviceHost, 80, server.plain) + ',' +
                             Route(serviceHost, 443, delayed ? server.delayedTls : server.tls);
  setenv("NV_CONNECT_TO", routes.c_str(), 1);
  setenv("SSL_CERT_FILE", server.trust.c_str(), 1);
  char byte = 0;
  if (loaded) xfa704a3f(webHost, "1", 0, 1, &byte, nullptr, nullptr);
}

void MapShopSearch(benchmark::State& state) {
  UseServer(false);
  const MapShopPoint count{0, static_cast<double>(state.range(0)) / 1000};  // which the server reads
  const double before = BeginPeak();
  const auto search = [&] {
    const NVMapShopHandle handle = NSMapShopSearch(&count, 1);
    MapShopItem item;
    std::int64_t taken = 0;
    while (NSMapShopGetNext(handle, &item)) ++taken;
    NSMapShopClose(handle);
    if (taken != state.range(0)) state.SkipWithError("records are missing");
  };
  search();  // for which the server makes its reply
  for (auto _ : state) search();
  state.counters["peak_kB"] = PeakKilobytes() - before;
}

void Download(benchmark::State& state) {
  UseServer(false);
  const std::string path = std::to_string(state.range(0));
  const std::string file = TemporaryFolder() + "/file";
  for (auto _ : state) {
    if (!NSDownloadWebFileProgress(webHost, path.c_str(), file.c_str(), nullptr, nullptr, nullptr)) {
      state.SkipWithError("the download failed");
    }
  }
}

void RangedReads(benchmark::State& state, const char* host, int times) {
  UseServer(false);
  const auto length = static_cast<std::int32_t>(state.range(0));
  std::vector<char> buffer(static_cast<std::size_t>(length));
  for (auto _ : state) {
    for (int i = 0; i < times; ++i) {
      if (xfa704a3f(host, "1000000000", i, length, buffer.data(), nullptr, nullptr) == length) continue;
      state.SkipWithError("the read failed");
    }
  }
}

// An exchange as the account operations make it.
bool Exchange(std::int32_t operation) {
  CWebBinaryCGI channel("cgi-bin/svcapp.cgi", true);
  channel.WriteValue(operation);
  channel.WriteString("user");
  if (!channel.Send()) return false;
  std::int32_t status = -1;
  channel.ReadValue(status);
  channel.ReadValue(status);
  std::string token;
  return channel.ReadString(token) && status == 0;
}

void TlsExchange(benchmark::State& state, bool warm) {
  UseServer(false, warm);
  if (warm && !Exchange(8)) state.SkipWithError("the exchange failed");
  for (auto _ : state) {
    if (!Exchange(8)) state.SkipWithError("the exchange failed");
  }
}

// Sign-in, computer name, token.
void AccountChain(benchmark::State& state) {
  UseServer(true);
  for (auto _ : state) {
    for (const std::int32_t operation : {8, 9, 11}) {
      if (!Exchange(operation)) state.SkipWithError("the exchange failed");
    }
  }
}

BENCHMARK(MapShopSearch)->Name("map_shop_search")->Arg(100)->Arg(10000)->Arg(100000)->UseRealTime();
BENCHMARK(Download)->Name("download")->Arg(1024)->Arg(10 * mebibyte)->Arg(1024 * mebibyte)->UseRealTime();
BENCHMARK_CAPTURE(RangedReads, once, webHost, 1)->Name("ranged_read")->Arg(4096)->Arg(64 * mebibyte)->UseRealTime();
BENCHMARK_CAPTURE(RangedReads, many, webHost, 50)->Name("ranged_read_50")->Arg(4096)->UseRealTime();
// Once in a process: what is kept from one iteration to the next is what these are about.
BENCHMARK_CAPTURE(RangedReads, far, delayedHost, 50)->Name("ranged_read_50_25ms")->Arg(4096)->Iterations(1);
BENCHMARK(AccountChain)->Name("account_chain_25ms")->Iterations(1);
BENCHMARK_CAPTURE(TlsExchange, first, false)->Name("tls_exchange_first")->Iterations(1);
BENCHMARK_CAPTURE(TlsExchange, next, true)->Name("tls_exchange_following")->UseRealTime();

}  // namespace
}  // namespace nvsupport::bench
