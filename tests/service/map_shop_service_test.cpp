// The map shop service: which products an area finds, and when their index is made anew.
#include "service/mapshop/map_shop_service.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include "service/counters.h"
#include "service/process_pool.h"
#include "support/temporary_home.h"
#include "support/wire_items.h"

namespace {

using namespace nvsupport::service;
using namespace nvsupport::testing;

struct Point {
  double latitude;
  double longitude;
};

std::string Search(const std::vector<Point>& points) {
  const std::string block(reinterpret_cast<const char*>(points.data()), points.size() * sizeof(Point));
  return Int(101) + Int(4) + Int(points.size()) + block + Int(0);
}

// A line of the product file. area: south, west, north and east.
std::string Line(int number, const std::string& area = "0\t0\t0\t0", const std::string& title = "") {
  return std::to_string(number) + '\t' + title + "\t\t\t0\t" + area + '\n';
}

// The reply to a search that finds these products, of so many on offer.
std::string Finding(const std::vector<int>& numbers, int offered) {
  std::string reply = Int(0) + Int(0) + Int(numbers.size());
  for (const int number : numbers) reply += Text("") + Int(number) + Text("") + Text("") + Int(0);
  return reply + Int(offered);
}

// A product file and its index in a folder of their own.
struct Shop {
  explicit Shop(const std::string& lines = "") { Offer(lines); }
  // As an operator does it: the new file takes the place of the old one.
  void Offer(const std::string& lines) const {
    WriteWholeFile(folder / "new", lines);
    std::filesystem::rename(folder / "new", products);
  }
  std::string Answer(const std::string& request, std::int64_t most = 1000, std::size_t largest = 10000) const {
    return Whole(request, index, most, largest);
  }
  // With the bytes as they were announced.
  std::string Whole(const std::string& request, const std::string& indexFile, std::int64_t most,
                    std::size_t largest) const {
    ProductIndex offered(products, indexFile, 50);
    offered.Update();
    const Reply reply = AnswerSearch(request, offered, most, largest);
    std::string bytes = reply.body;
    const auto append = [&](std::string_view piece) {
      bytes += piece;
      return true;
    };
    if (reply.rest) reply.rest(append);
    EXPECT_EQ(bytes.size(), reply.body.size() + reply.restBytes);
    return bytes;
  }

  const TemporaryFolder folder;
  const std::string products = folder / "products.tsv";
  const std::string index = folder / "products.index";
};

TEST(MapShopService, FindsWhatMeetsTheBoxAroundThePoints) {
  const Shop shop("# the Alps, across the 180th meridian, the whole world, Marrakech\n\n" + Line(1, "45\t6\t46\t7") +
                  Line(2, "-19\t177\t-16\t-178") + Line(3, "-90\t-180\t90\t180") + Line(4, "30.1\t-10.1\t31.3\t-9.7"));
  const struct {
    const char* what;
    std::vector<Point> points;
    std::vector<int> found;
  } cases[] = {
      {"a point on the northeastern corner", {{46, 7}}, {1, 3}},
      {"a point on the southwestern corner", {{45, 6}}, {1, 3}},
      {"a corner that single precision does not hold", {{31.3, -9.7}}, {3, 4}},
      {"a point beside", {{46.001, 7}}, {3}},
      {"a point so near that single precision tells no difference", {{31.3000001, -9.7}}, {3}},
      {"points around, none inside", {{40, 0}, {50, 10}}, {1, 3}},
      {"east of the meridian", {{-17, -179}}, {2, 3}},
      {"on its southern edge, counted on", {{-19, 181}}, {2, 3}},
      {"on its northern edge, counted on downwards", {{-16, -182}}, {2, 3}},
      {"a turn further", {{45.5, 366.5}}, {1, 3}},
      {"a turn back", {{45.5, -353.5}}, {1, 3}},
      {"the ends of the range", {{-17, -400}, {31, 400}}, {2, 3, 4}},
      {"across the meridian, short of it", {{-17, 183}, {-17, 190}}, {3}},
      {"poles", {{90, 0}, {-90, 0}}, {3}},
      {"no points", {}, {1, 2, 3, 4}},
  };
  for (const auto& row : cases) EXPECT_EQ(shop.Answer(Search(row.points)), Finding(row.found, 4)) << row.what;
}

TEST(MapShopService, FollowsTheProductFile) {
  const std::string all = Search({});
  const Shop shop(Line(1));
  EXPECT_EQ(shop.Answer(all), Finding({1}, 1));
  const auto made = std::filesystem::last_write_time(shop.index);
  EXPECT_EQ(shop.Answer(all), Finding({1}, 1));
  EXPECT_EQ(std::filesystem::last_write_time(shop.index), made) << "made anew without need";

  WriteWholeFile(shop.index + "-new", "what a killed process left");
  shop.Offer(Line(2) + Line(3));
  EXPECT_EQ(shop.Answer(all), Finding({2, 3}, 2));

  for (const char* noArea :
       {"", "-90.1\t0\t0\t0", "0\t0\t91\t0", "0\tnan\t0\t0", "0\t0\tx\t0", "0\t0\tinf\t0", "0\t0\t0\t401"}) {
    shop.Offer(Line(4) + Line(5, noArea));
    testing::internal::CaptureStderr();
    EXPECT_EQ(shop.Answer(all), Finding({2, 3}, 2)) << noArea;
    EXPECT_EQ(shop.Answer(all), Finding({2, 3}, 2));
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(log.ends_with("products.tsv: line 2\n")) << noArea << log;
    EXPECT_EQ(std::ranges::count(log, '\n'), 1) << "told more than once: " << log;
  }

  shop.Offer(Line(6));
  WriteWholeFile(shop.index, "no index");
  EXPECT_EQ(shop.Answer(all), Finding({6}, 1));
  EXPECT_EQ(shop.Whole(all, "", 10, 1000), Finding({6}, 1)) << "without an index";
  EXPECT_THROW(ProductIndex(shop.folder / "none", shop.index).Update(), std::runtime_error);

  ProductIndex kept(shop.products, shop.index);
  kept.Update();
  shop.Offer(Line(7) + Line(8));
  EXPECT_EQ(shop.Answer(all), Finding({7, 8}, 2));
  kept.Update();
  EXPECT_EQ(kept.ProductCount(), 2U);
}

TEST(MapShopService, GivesNoMoreThanFitsIntoAReply) {
  const std::string title(900, 't');
  const Shop shop(Line(1, "0\t0\t0\t0", title) + Line(2) + Line(3));
  EXPECT_EQ(shop.Answer(Search({}), 1000, 1820),
            Int(0) + Int(0) + Int(1) + Text(title) + Int(1) + Text("") + Text("") + Int(0) + Int(3));

  std::string dense;  // more than are sorted
  for (int number = 0; number < 4000; ++number) dense += Line(number, number % 2 == 0 ? "0\t0\t9\t9" : "5\t5\t9\t9");
  shop.Offer(dense);
  EXPECT_EQ(shop.Answer(Search({{1, 1}}), 3), Finding({0, 2, 4}, 4000));
  EXPECT_EQ(shop.Answer(Search({{7, 7}}), 3), Finding({0, 1, 2}, 4000));
  EXPECT_EQ(shop.Answer(Search({}), 3000, 100'000).size(), Finding({}, 0).size() + std::size_t{3000} * 20);
}

TEST(MapShopService, IsNotUnderstoodWhenItIsCutOrNoArea) {
  const Shop shop;
  for (const Point bad : {Point{90.5, 0}, Point{-91, 0}, Point{0, 400.5}, Point{0, -401}, Point{0, std::nan("")}}) {
    EXPECT_EQ(shop.Answer(Search({{1, 1}, bad})), Int(1)) << bad.latitude << ' ' << bad.longitude;
  }
  const std::string request = Search({{45, 6}, {46, 7}});
  for (std::size_t length = 0; length < request.size(); ++length) {
    EXPECT_EQ(shop.Answer(request.substr(0, length)), Int(1)) << length;
  }
  EXPECT_EQ(shop.Answer(request.substr(0, 8) + Int(0xFFFFFFFF) + request.substr(12)), Int(1)) << "points without end";
}

TEST(ProcessPool, StartsWorkThatFailsNoMoreThanTenTimesASecond) {
  const nvsupport::testing::TemporaryFolder folder;
  const pid_t pool = fork();
  if (pool == 0) {
    RunPool(socket(AF_UNIX, SOCK_STREAM, 0), 1, [&](const NextConnection&) {
      std::ofstream(folder / "starts", std::ios::app) << '.';
      throw std::runtime_error("it fails");
    });
    _exit(0);
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  kill(pool, SIGTERM);
  EXPECT_EQ(waitpid(pool, nullptr, 0), pool);
  EXPECT_LE(std::filesystem::file_size(folder / "starts"), 8u);
}

TEST(Counters, TellHowManyRequestsTookHowLong) {
  for (const double seconds : {0.001, 0.002, 99.0}) CountRequest("svcuser", 404, seconds);
  const HashInProgress hash;
  const std::string text = CountersText();
  for (const char* line :
       {"requests_total{program=\"svcuser\",status=\"404\"} 3\n", "{program=\"svcuser\",le=\"0.001\"} 1\n",
        "{program=\"svcuser\",le=\"2.5\"} 2\n", "{program=\"svcuser\",le=\"+Inf\"} 3\n",
        "_sum{program=\"svcuser\"} 99.003", "_count{program=\"svcuser\"} 3\n", "hashes_in_progress 1\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << text;
  }
}

}  // namespace
