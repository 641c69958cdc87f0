#include "kernel/Newell.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Kernel {
namespace {

OutlinePlane planeOf(const std::vector<Vec3>& points) {
  return outlinePlane(points.data(), points.size());
}

void expectNear(Vec3 expected, Vec3 actual, double tolerance) {
  EXPECT_NEAR(expected.x, actual.x, tolerance);
  EXPECT_NEAR(expected.y, actual.y, tolerance);
  EXPECT_NEAR(expected.z, actual.z, tolerance);
}

std::vector<Vec3> circle(int corners, double radius, Vec3 centre) {
  std::vector<Vec3> result;
  for (int i = 0; i < corners; ++i) {
    const double angle = 6.283185307179586 * i / corners;
    result.push_back(centre + Vec3{radius * std::cos(angle), radius * std::sin(angle), 0.0});
  }
  return result;
}

TEST(Newell, TheNormalPointsToWhereCornersRunCounterClockwise) {
  const OutlinePlane plane = planeOf({{0, 0, 2}, {4, 0, 2}, {4, 2, 2}, {0, 2, 2}});
  EXPECT_EQ((Vec3{0, 0, 1}), plane.normal);
  EXPECT_EQ((Vec3{2, 1, 2}), plane.mean);
  EXPECT_DOUBLE_EQ(std::sqrt(20.0), plane.size);
}

TEST(Newell, TheWholeOutlineCountsNotItsFirstCorners) {
  // The first three corners turn the other way.
  const OutlinePlane plane = planeOf({{0, 0, 0}, {1, 1, 0}, {2, 0, 0}, {2, 3, 0}, {0, 3, 0}});
  EXPECT_EQ((Vec3{0, 0, 1}), plane.normal);
}

TEST(Newell, OutlinesWithoutAreaHaveNoNormal) {
  EXPECT_FALSE(planeOf({}).exists());
  EXPECT_FALSE(planeOf({{1, 2, 3}}).exists());
  EXPECT_FALSE(planeOf({{0, 0, 0}, {1, 0, 0}}).exists());
  EXPECT_FALSE(planeOf({{1, 1, 1}, {1, 1, 1}, {1, 1, 1}}).exists());
  EXPECT_FALSE(planeOf({{0.1, 0.2, 0.3}, {0.2, 0.4, 0.6}, {0.3, 0.6, 0.9}}).exists());
  EXPECT_FALSE(planeOf({{0.1, 0, 0.7}, {1.3, 0, 1.9}, {0.1, 0, 1.9}, {1.3, 0, 0.7}}).exists());
}

TEST(Newell, SliversHaveTheirNormal) {
  const OutlinePlane plane = planeOf({{0, 0, 0}, {1, 0, 0}, {1, 1e-12, 0}});
  expectNear({0, 0, 1}, plane.normal, 1e-12);
}

TEST(Newell, NeitherPlaceNorUnitMatters) {
  const Vec3 n = planeOf({{0, 0, 0}, {1, 0, 0.5}, {1, 1, 1.0}, {0, 1, 0.5}}).normal;
  for (const double unit : {1e-200, 1e-20, 1e20, 1e29}) {
    const OutlinePlane plane =
        planeOf({{0, 0, 0}, {unit, 0, 0.5 * unit}, {unit, unit, unit}, {0, unit, 0.5 * unit}});
    expectNear(n, plane.normal, 1e-15);
  }
  const OutlinePlane far =
      planeOf({{1e6, 2e6, 0}, {1e6 + 1, 2e6, 0.5}, {1e6 + 1, 2e6 + 1, 1.0}, {1e6, 2e6 + 1, 0.5}});
  expectNear(n, far.normal, 1e-15);
}

TEST(Newell, LongOutlinesFarFromTheOriginKeepTheirPlane) {
  for (const int corners : {3, 100, 100000}) {
    const OutlinePlane plane = planeOf(circle(corners, 0.01, {84616.0, 447422.0, 12.0}));
    expectNear({0, 0, 1}, plane.normal, 1e-9);
    EXPECT_NEAR(12.0, plane.mean.z, 1e-12);
  }
}

}  // namespace
}  // namespace Lumivane::Kernel
