#include "kernel/MergedOutline.h"

#include <algorithm>
#include <map>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::mergedOutline;
using Loops = std::vector<std::vector<int>>;

// How often each directed edge is walked, against its opposite.
std::map<std::pair<int, int>, int> walks(const Loops& loops) {
  std::map<std::pair<int, int>, int> result;
  for (const std::vector<int>& loop : loops) {
    for (size_t i = 0; i < loop.size(); ++i) {
      const int a = loop[i];
      const int b = loop[(i + 1) % loop.size()];
      if (a < b) ++result[{a, b}];
      if (a > b) --result[{b, a}];
    }
  }
  for (auto at = result.begin(); at != result.end();)
    at = at->second == 0 ? result.erase(at) : std::next(at);
  return result;
}

size_t edgeCount(const Loops& loops) {
  size_t count = 0;
  for (const std::vector<int>& loop : loops) count += loop.size();
  return count;
}

TEST(MergedOutline, PolygonAloneIsItsOwnOutline) {
  EXPECT_EQ((Loops{{1, 2, 3}}), mergedOutline({{2, 3, 1}}));
}

TEST(MergedOutline, CommonEdgeOfTwoPolygonsFallsOut) {
  EXPECT_EQ((Loops{{1, 2, 3, 4}}), mergedOutline({{1, 2, 3}, {1, 3, 4}}));
}

TEST(MergedOutline, PolygonsApartStayTwoLoops) {
  EXPECT_EQ((Loops{{1, 2, 3}, {4, 5, 6}}), mergedOutline({{1, 2, 3}, {4, 5, 6}}));
}

TEST(MergedOutline, RingOfPolygonsHasAnOuterAndAnInnerLoop) {
  const Loops ring = {{1, 2, 6, 5}, {2, 3, 7, 6}, {3, 4, 8, 7}, {4, 1, 5, 8}};
  EXPECT_EQ((Loops{{1, 2, 3, 4}, {5, 8, 7, 6}}), mergedOutline(ring));
}

TEST(MergedOutline, EdgesOfNoLengthAndPolygonsOfNoPointCountNothing) {
  EXPECT_EQ((Loops{{1, 2, 3}}), mergedOutline({{}, {1, 1, 2, 3, 3}, {7}}));
  EXPECT_EQ(Loops(), mergedOutline({}));
}

TEST(MergedOutline, EdgeWalkedTwiceOneWayStaysTwice) {
  EXPECT_EQ(6u, edgeCount(mergedOutline({{1, 2, 3}, {1, 2, 3}})));
}

TEST(MergedOutlineProperty, WindsAroundTheSameAndWalksNoEdgeBothWays) {
  std::mt19937_64 random(20240611);
  for (int round = 0; round < 2000; ++round) {
    Loops polygons(random() % 6);
    for (std::vector<int>& polygon : polygons) {
      polygon.resize(random() % 7);
      for (int& number : polygon) number = 1 + static_cast<int>(random() % 6);
    }
    const Loops merged = mergedOutline(polygons);
    const auto left = walks(merged);
    ASSERT_EQ(walks(polygons), left) << "round " << round;
    size_t walked = 0;
    for (const auto& edge : left) walked += static_cast<size_t>(std::abs(edge.second));
    ASSERT_EQ(walked, edgeCount(merged)) << "round " << round;
  }
}

}  // namespace
}  // namespace Lumivane::Test
