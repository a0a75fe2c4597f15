// The map shop service: the example of the protocol page against the real program, and which products an area finds.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "cgi_program.h"
#include "request.h"
#include "service/mapshop/map_shop_service.h"

namespace {

using nvsupport::service::AnswerSearch;
using nvsupport::service::Product;

struct Point {
  double latitude;
  double longitude;
};

std::string Search(const std::vector<Point>& points) {
  const std::string block(reinterpret_cast<const char*>(points.data()), points.size() * sizeof(Point));
  return Int(101) + Int(4) + Int(points.size()) + block + Int(0);
}

// The numbers of the products that a search finds.
std::vector<std::uint32_t> Found(const std::vector<Product>& products, const std::vector<Point>& points) {
  const std::string reply = AnswerSearch(Search(points), products);
  EXPECT_EQ(WordAt(reply, 0), 0U);
  std::vector<std::uint32_t> numbers;
  for (std::size_t i = 0; i < WordAt(reply, 2); ++i) numbers.push_back(WordAt(reply, 3 + 5 * i + 1));
  return numbers;
}

TEST(MapShopProgram, AnswersTheExampleOfTheProtocolPage) {
  EXPECT_EQ(Post("mapstore2.cgi", "", Example("search request")).body, Example("search reply"));
}

TEST(MapShopSearch, FindsWhatMeetsTheBoxAroundThePoints) {
  using Numbers = std::vector<std::uint32_t>;
  const std::vector<Product> products = {
      {1, "", "", "", 0, {45, 6, 46, 7}},        // west of the middle
      {2, "", "", "", 0, {-19, 177, -16, 182}},  // across the 180th meridian
      {3, "", "", "", 0, {-90, -180, 90, 180}},  // the whole world
      {4, "", "", "", 0, {30, -10, 31, -9}},
  };
  const struct {
    const char* what;
    std::vector<Point> points;
    Numbers found;
  } cases[] = {
      {"a point inside", {{45.5, 6.5}}, {1, 3}},
      {"a point on the corner", {{46, 7}}, {1, 3}},
      {"a point beside", {{46.001, 7}}, {3}},
      {"points around, none inside", {{40, 0}, {50, 10}}, {1, 3}},
      {"points on a diagonal count as a box", {{44, 20}, {50, 7}}, {1, 3}},
      {"east of the meridian", {{-17, -179}}, {2, 3}},
      {"beyond it, counted on", {{-17, 181}}, {2, 3}},
      {"west of it, counted on downwards", {{-17, -182}}, {2, 3}},
      {"a turn further", {{45.5, 366.5}}, {1, 3}},
      {"a turn back", {{45.5, -353.5}}, {1, 3}},
      {"the ends of the range", {{-17, -400}, {31, 400}}, {2, 3, 4}},
      {"across the meridian, short of it", {{-17, 183}, {-17, 190}}, {3}},
      {"poles", {{90, 0}, {-90, 0}}, {3}},
      {"no points", {}, {1, 2, 3, 4}},
  };
  for (const auto& row : cases) EXPECT_EQ(Found(products, row.points), row.found) << row.what;
}

TEST(MapShopSearch, IsNotUnderstoodWhenItIsCutOrNoArea) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const Point bad : {Point{90.5, 0}, Point{-91, 0}, Point{0, 400.5}, Point{0, -401}, Point{std::nan(""), 0},
                          Point{0, std::nan("")}, Point{infinity, 0}, Point{0, -infinity}}) {
    EXPECT_EQ(AnswerSearch(Search({{1, 1}, bad}), {}), Int(1));
  }
  const std::string request = Search({{45, 6}, {46, 7}});
  for (std::size_t length = 0; length < request.size(); ++length) {
    ASSERT_EQ(AnswerSearch(request.substr(0, length), {}), Int(1)) << length;
  }
  for (const std::uint32_t count : {3U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    EXPECT_EQ(AnswerSearch(request.substr(0, 8) + Int(count) + request.substr(12), {}), Int(1)) << count;
  }
}

}  // namespace
