#include "kernel/Planar.h"

#include <array>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Kernel {
namespace {

constexpr std::array<Vec2, 6> Corner = {{{0, 0}, {4, 0}, {4, 1}, {1, 1}, {1, 3}, {0, 3}}};
const auto corner = [](std::size_t i) { return Corner[i]; };

TEST(Planar, ShoelaceSumIsTwiceTheAreaAndPositiveCounterClockwise) {
  EXPECT_EQ(12.0, twiceArea(Corner.size(), corner));
  EXPECT_EQ(-12.0, twiceArea(Corner.size(), [](std::size_t i) { return Corner[5 - i]; }));
}

TEST(Planar, AreaVectorIsTheSameFromEveryOrigin) {
  const auto inSpace = [](std::size_t i) { return Vec3{Corner[i].x, Corner[i].y, 2.0}; };
  EXPECT_EQ((Vec3{0, 0, 12}), twiceAreaVector(Corner.size(), {0, 0, 2}, inSpace));
  EXPECT_EQ((Vec3{0, 0, 12}), twiceAreaVector(Corner.size(), {1, -1, 2}, inSpace));
}

TEST(Planar, ConcaveOutlineContainsWhatItBoundsAlone) {
  EXPECT_TRUE(isInOutline(Corner.size(), {0.5, 2.0}, corner));
  EXPECT_TRUE(isInOutline(Corner.size(), {3.0, 0.5}, corner));
  EXPECT_FALSE(isInOutline(Corner.size(), {2.0, 2.0}, corner));
  EXPECT_FALSE(isInOutline(Corner.size(), {-1.0, 1.0}, corner));
}

TEST(Planar, SegmentsCrossOnlyWhereEachHasTheOthersEndsOnTwoSides) {
  EXPECT_TRUE(properlyCross({0, 0}, {2, 2}, {0, 2}, {2, 0}));
  EXPECT_FALSE(properlyCross({0, 0}, {2, 2}, {1, 1}, {2, 0}));  // touches
  EXPECT_FALSE(properlyCross({0, 0}, {2, 2}, {1, 1}, {3, 3}));  // lies along it
  EXPECT_FALSE(properlyCross({0, 0}, {1, 1}, {0, 4}, {4, 0}));
}

TEST(Planar, PiIsTheOneOfTheMathematicalLibrary) { EXPECT_EQ(std::acos(-1.0), Pi); }

}  // namespace
}  // namespace Lumivane::Kernel
