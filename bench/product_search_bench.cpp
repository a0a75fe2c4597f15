// How the service's search of the map shop grows with the number of products on offer: with the index open, as a
// process keeps it, for areas that find some twenty products whatever their number, and for the whole world.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>

#include "service/mapshop/map_shop_service.h"
#include "support/wire_items.h"

namespace {

using namespace nvsupport::service;
using nvsupport::testing::Int;

constexpr double latitudes = 160;
constexpr double longitudes = 340;

class Shop {
 public:
  explicit Shop(std::int64_t products) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> share;
    std::ofstream file(path);
    for (std::int64_t i = 0; i < products; ++i) {
      const double south = -80 + share(random) * latitudes;
      const double west = -170 + share(random) * longitudes;
      file << i << "\tHiking map\tA map of the hills\tfiles/maps/" << i << ".nvmap\t100\t" << south << '\t' << west
           << '\t' << south + 0.01 << '\t' << west + 0.01 << '\n';
    }
    file.close();
    const auto start = std::chrono::steady_clock::now();
    Index();
    indexSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }
  ~Shop() { std::filesystem::remove_all(folder); }

  // Made once for each number: the benchmark asks several times.
  static const Shop& Of(std::int64_t products) {
    static std::map<std::int64_t, Shop> shops;
    return shops.try_emplace(products, products).first->second;
  }

  ProductIndex Index() const {
    ProductIndex index(path, folder + "/index");
    index.Update();
    return index;
  }
  double indexSeconds = 0;

 private:
  std::string folder = [] {
    std::string name = "/tmp/nvsupport-bench-XXXXXX";
    return std::string(mkdtemp(name.data()));
  }();
  const std::string path = folder + "/products.tsv";
};

constexpr std::int64_t most = 10'000;

void Take(const Reply& reply) {
  reply.rest([](std::string_view piece) {
    benchmark::DoNotOptimize(piece.data());
    return true;
  });
}

void BM_ProductSearch(benchmark::State& state) {
  const Shop& shop = Shop::Of(state.range(0));
  state.counters["index_made_s"] = shop.indexSeconds;
  ProductIndex index = shop.Index();
  const double side = std::sqrt(20 * latitudes * longitudes / static_cast<double>(state.range(0)));
  std::mt19937 random(2);
  std::uniform_real_distribution<double> share;
  double found = 0;
  for (auto _ : state) {
    const double south = -80 + share(random) * std::max(0.0, latitudes - side);
    const double west = -170 + share(random) * (longitudes - side);
    const double points[] = {south, west, std::min(south + side, 90.0), west + side};
    const std::string block(reinterpret_cast<const char*>(points), sizeof points);
    index.Update();
    const Reply reply = AnswerSearch(Int(101) + Int(4) + Int(2) + block + Int(0), index, most);
    Take(reply);
    found += static_cast<unsigned char>(reply.body[8]);
  }
  state.counters["found"] = found / static_cast<double>(state.iterations());
}

BENCHMARK(BM_ProductSearch)->Name("product_search")->Arg(100)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_WorldSearch(benchmark::State& state) {
  ProductIndex index = Shop::Of(state.range(0)).Index();
  for (auto _ : state) Take(AnswerSearch(Int(101) + Int(4) + Int(0) + Int(0), index, most));
}

BENCHMARK(BM_WorldSearch)->Name("world_search")->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
