#include "kernel/Polygon3.h"
#include "plain/DepthSort.h"
#include "support/Extremes.h"
#include "utils/Shapes.h"

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::Vec3;
using Utils::toVectors;
using Polygon = std::vector<Vec3>;

const Polygon Square{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
const std::string ZeroLength = "Zero-length vector cannot be normalized\n";

Polygon shifted(Polygon polygon, Vec3 by) {
  for (Vec3& point : polygon) point = point + by;
  return polygon;
}

Kernel::Location locate(const Polygon& first, const Polygon& second) {
  return Kernel::locationOf(first, second);
}

TEST(LocationOf, SquareFacesDownwards) {
  EXPECT_TRUE((Kernel::facingOf(Square).normal.direction == Vec3{0, 0, -1}));
}

TEST(LocationOf, PointInFrontHasANegativeSide) {
  const Kernel::Facing facing = Kernel::facingOf(Square);
  EXPECT_LT(Kernel::sideOf(facing, {5, 5, -1}), 0.0);
  EXPECT_GT(Kernel::sideOf(facing, {5, 5, 1}), 0.0);
  EXPECT_EQ(Kernel::sideOf(facing, {5, 5, 0}), 0.0);
}

TEST(LocationOf, CopyOnTheFacingSideIsInFront) {
  EXPECT_EQ(2, locate(Square, shifted(Square, {0, 0, -1})).value);
}

TEST(LocationOf, CopyOnTheOtherSideIsBehind) {
  EXPECT_EQ(1, locate(Square, shifted(Square, {0, 0, 1})).value);
}

TEST(LocationOf, PolygonsInOnePlaneAreUndecided) {
  EXPECT_EQ(0, locate(Square, shifted(Square, {0.5, 0.5, 0})).value);
}

TEST(LocationOf, SecondThatStraddlesIsJudgedByItsOwnPlane) {
  // It faces towards larger x and crosses z = 0; the square lies on that side of it.
  const Polygon wall{{-1, 0, -1}, {-1, 0, 1}, {-1, 1, 1}};
  ASSERT_TRUE((Kernel::facingOf(wall).normal.direction == Vec3{1, 0, 0}));
  EXPECT_EQ(1, locate(Square, wall).value);
  EXPECT_EQ(2, locate(Square, Polygon{wall[2], wall[1], wall[0]}).value);
}

TEST(LocationOf, FirstQuestionIsFinalEvenIfTheFirstStraddlesTheSecond) {
  // All of the second is in front of the first, whose points lie on both sides of the second.
  const Polygon second{{0.5, -1, -1}, {0.5, -1, -3}, {0.5, 2, -2}};
  EXPECT_EQ(2, locate(Square, second).value);
}

TEST(LocationOf, PolygonsThatStraddleEachOtherAreUndecided) {
  const Polygon second{{0.5, -1, -1}, {0.5, -1, 1}, {0.5, 2, 1}};
  EXPECT_EQ(0, locate(Square, second).value);
}

TEST(LocationOf, PointsInThePlaneBesideOneSideGiveThatSide) {
  EXPECT_EQ(2, locate(Square, {{0, 0, 0}, {1, 0, 0}, {0, 0, -1}}).value);
  EXPECT_EQ(1, locate(Square, {{0, 0, 1}, {1, 0, 0}, {0, 0, 0}}).value);
}

TEST(LocationOf, CornerOnALineAsksOnceForEveryPoint) {
  const Polygon flat{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 5, 0}};
  const Kernel::Location location = locate(flat, shifted(Square, {0, 0, 1}));
  EXPECT_EQ(0, location.value);
  EXPECT_EQ(4U, location.zeroLengthAsked);
}

TEST(LocationOf, SecondOnALineAsksOnlyWhenItStraddles) {
  EXPECT_EQ(0U, locate(Square, {{0, 0, 1}, {1, 0, 1}, {2, 0, 1}}).zeroLengthAsked);
  const Kernel::Location location = locate(Square, {{0, 0, -1}, {0, 0, 0}, {0, 0, 1}});
  EXPECT_EQ(0, location.value);
  EXPECT_EQ(4U, location.zeroLengthAsked);
}

TEST(LocationOf, PolygonOfTwoPointsHasNoSidesAndNoMessage) {
  const Kernel::Location location = locate({{0, 0, 0}, {1, 0, 0}}, Square);
  EXPECT_EQ(0, location.value);
  EXPECT_EQ(0U, location.zeroLengthAsked);
  EXPECT_EQ(0, locate({}, Square).value);
  EXPECT_EQ(0, locate(Square, {}).value);
}

TEST(LocationOfProperty, AgreesWithThePlainQuestions) {
  std::mt19937_64 random(20240721);
  const auto anyPolygon = [&random](bool extreme) {
    Polygon polygon(1 + random() % 5);
    for (Vec3& point : polygon) {
      if (extreme) {
        point = anyVec3(random);
        continue;
      }
      const double x = static_cast<double>(random() % 4);
      const double y = static_cast<double>(random() % 4);
      point = {x, y, static_cast<double>(random() % 3)};
    }
    return polygon;
  };
  int counts[3] = {};
  int messages = 0;
  for (int i = 0; i < 40000; ++i) {
    const Polygon first = anyPolygon(i % 2 == 0);
    const Polygon second = anyPolygon(i % 2 == 0);
    std::string printed;
    const int expected = Plain::location(toVectors(first), toVectors(second), printed);
    const Kernel::Location location = locate(first, second);
    ASSERT_EQ(expected, location.value) << i;
    ASSERT_EQ(printed.size(), location.zeroLengthAsked * ZeroLength.size()) << i;
    ++counts[expected];
    if (!printed.empty()) ++messages;
  }
  for (const int count : counts) EXPECT_GT(count, 100);
  EXPECT_GT(messages, 100);
}

TEST(LocationOfProperty, OrderOfThePointsBehindTheCornerHasNoEffect) {
  std::mt19937_64 random(20240722);
  for (int i = 0; i < 5000; ++i) {
    Polygon first(6);
    Polygon second(6);
    for (Vec3& point : first) point = anyVec3(random);
    for (Vec3& point : second) point = anyVec3(random);
    const int expected = locate(first, second).value;
    std::shuffle(first.begin() + 3, first.end(), random);
    std::shuffle(second.begin() + 3, second.end(), random);
    ASSERT_EQ(expected, locate(first, second).value) << i;
  }
}

}  // namespace
}  // namespace Lumivane::Test
