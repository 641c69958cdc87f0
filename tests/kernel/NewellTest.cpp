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

TEST(Newell, NeedlesHaveAllDigitsOfTheirNormal) {
  // A million long and a millionth wide; differences of corners lose the width.
  const Vec3 along = {612345.678, -523456.789, 412345.67};
  const Vec3 middle = {3e-7, 2e-7, -4e-7};
  const std::vector<Vec3> needle = {middle + along, middle - along, {1e-6, -2e-6, 3e-6}};
  const auto term = [](long double a, long double b, long double c, long double d) {
    return a * b - c * d;
  };
  long double area[3] = {};
  for (std::size_t i = 0; i < 3; ++i) {
    // From the last corner, whose differences the wider numbers hold.
    const auto from = [&](double Vec3::*axis, std::size_t k) {
      return static_cast<long double>(needle[k % 3].*axis) -
             static_cast<long double>(needle[2].*axis);
    };
    area[0] +=
        term(from(&Vec3::y, i), from(&Vec3::z, i + 1), from(&Vec3::z, i), from(&Vec3::y, i + 1));
    area[1] +=
        term(from(&Vec3::z, i), from(&Vec3::x, i + 1), from(&Vec3::x, i), from(&Vec3::z, i + 1));
    area[2] +=
        term(from(&Vec3::x, i), from(&Vec3::y, i + 1), from(&Vec3::y, i), from(&Vec3::x, i + 1));
  }
  const long double length = std::sqrt(area[0] * area[0] + area[1] * area[1] + area[2] * area[2]);
  const Vec3 normal = planeOf(needle).normal;
  EXPECT_NEAR(static_cast<double>(area[0] / length), normal.x, 1e-7);
  EXPECT_NEAR(static_cast<double>(area[1] / length), normal.y, 1e-7);
  EXPECT_NEAR(static_cast<double>(area[2] / length), normal.z, 1e-7);
}

TEST(Newell, ThinOutlinesFarFromTheOriginKeepTheirPlane) {
  const double far = 0x1p90;
  const OutlinePlane plane = planeOf({{far, 0, 0}, {far, 1, 0}, {far, 1, 1e-5}});
  expectNear({1, 0, 0}, plane.normal, 1e-12);
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
