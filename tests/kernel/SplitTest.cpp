#include "kernel/Split.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::Vec3;

std::vector<Vec3> square(double side) {
  return {{0, 0, 0}, {side, 0, 0}, {side, side, 0}, {0, side, 0}};
}

std::vector<Vec3> splitOf(const std::vector<Vec3>& polygon, std::int64_t pieceCount) {
  std::vector<Vec3> points;
  Kernel::splitPolygon(polygon, pieceCount, points);
  return points;
}

TEST(SplitPolygon, SideReachedByTheAdditionGivesOnePointForEachPiece) {
  EXPECT_EQ(24u, splitOf(square(3), 6).size());
  EXPECT_EQ(24u, splitOf(square(5), 6).size());
}

// Six sixths, added up, end just under 1.
TEST(SplitPolygon, SideMissedByTheAdditionGivesOnePointMore) {
  const std::vector<Vec3> points = splitOf(square(1), 6);
  ASSERT_EQ(28u, points.size());
  EXPECT_NEAR(1.0 / 6, points[1].x, 1e-15);
  EXPECT_LT(points[6].x, 1.0);
  EXPECT_NEAR(1.0, points[6].x, 1e-15);
  EXPECT_EQ((Vec3{1, 0, 0}), points[7]);
}

TEST(SplitPolygon, OneShortEdgeGivesUpThePolygon) {
  EXPECT_TRUE(splitOf({{0, 0, 0}, {1, 0, 0}, {1, 0.00005, 0}}, 6).empty());
}

TEST(SplitPolygon, EdgeOfExactlyTheLimitIsSplit) {
  EXPECT_EQ(4u, splitOf({{0, 0, 0}, {0.0001, 0, 0}}, 2).size());
  const double shorter = std::nextafter(0.0001, 0.0);
  EXPECT_TRUE(splitOf({{0, 0, 0}, {shorter, 0, 0}}, 2).empty());
}

TEST(SplitPolygon, OnePointIsAnEdgeOfNoLength) { EXPECT_TRUE(splitOf({{1, 2, 3}}, 6).empty()); }

TEST(SplitPolygon, NoPointsGiveNoPoints) { EXPECT_TRUE(splitOf({}, 6).empty()); }

TEST(SplitPolygon, TwoPointsAreWalkedThereAndBack) {
  const std::vector<Vec3> points = splitOf({{0, 0, 0}, {4, 0, 0}}, 2);
  ASSERT_EQ(4u, points.size());
  EXPECT_EQ((Vec3{2, 0, 0}), points[1]);
  EXPECT_EQ((Vec3{4, 0, 0}), points[2]);
  EXPECT_EQ((Vec3{2, 0, 0}), points[3]);
}

TEST(SplitPolygon, NoPiecesLeaveTheCornersAlone) {
  EXPECT_EQ(4u, splitOf(square(2), 0).size());
  EXPECT_EQ(4u, splitOf(square(2), -5).size());
}

TEST(SplitPolygon, CoordinatesThatAreNoNumbersEnd) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(3u, splitOf({{nan, 0, 0}, {nan, 1, 0}, {nan, 1, 1}}, 6).size());
  EXPECT_EQ(2u, splitOf({{infinity, 0, 0}, {0, 0, 0}}, 6).size());
}

}  // namespace
}  // namespace Lumivane::Test
