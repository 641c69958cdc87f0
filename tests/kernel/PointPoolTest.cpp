#include "kernel/PointPool.h"
#include "plain/PointPool.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::PointPool;
using Kernel::Vec2;

constexpr double Precision = 0.001;
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

TEST(PointPool, NothingIsFoundInAnEmptyPool) {
  EXPECT_EQ(PointPool::None, PointPool(Precision).find({0, 0}));
}

TEST(PointPool, LessThanTheToleranceOnBothAxesAgrees) {
  PointPool pool(Precision);
  EXPECT_EQ(0u, pool.add({0, 0}));
  EXPECT_EQ(0u, pool.find({0.0009, -0.0009}));
  EXPECT_EQ(PointPool::None, pool.find({0.001, 0}));
  EXPECT_EQ(PointPool::None, pool.find({0, -0.001}));
}

TEST(PointPool, TheFirstAddedWinsEvenIfAnotherIsNearer) {
  PointPool pool(Precision);
  pool.add({0.0, 0.0});
  pool.add({0.0015, 0.0});
  EXPECT_EQ(0u, pool.find({0.0009, 0.0}));
  EXPECT_EQ(1u, pool.find({0.001, 0.0}));
}

TEST(PointPool, WhatIsNoFiniteNumberAgreesWithNothing) {
  PointPool pool(Precision);
  pool.add({NotANumber, 0});
  pool.add({Infinity, 0});
  EXPECT_EQ(PointPool::None, pool.find({NotANumber, 0}));
  EXPECT_EQ(PointPool::None, pool.find({Infinity, 0}));
  EXPECT_EQ(2u, pool.add({0, 0}));
  EXPECT_EQ(2u, pool.find({0, 0}));
  EXPECT_EQ(3u, pool.size());
}

// A coordinate of every kind: near cell borders, on the picture, far out, and no number at all.
double anyCoordinate(std::mt19937_64& random, double tolerance) {
  const double unit = std::uniform_real_distribution<double>(-1, 1)(random);
  switch (random() % 12) {
    case 0:
      return std::round(unit * 5) * tolerance * 4;
    case 1:
      return std::nextafter(std::round(unit * 5) * tolerance, unit);
    case 2:
      return unit * 4e8 * tolerance;
    case 3:
      return 4e8 * tolerance + std::round(unit * 3) * tolerance;
    case 4:
      return std::ldexp(unit, static_cast<int>(random() % 2000) - 1000);
    case 5:
      return random() % 2 == 0 ? Infinity : -Infinity;
    case 6:
      return NotANumber;
    default:
      return unit * 10 * tolerance;
  }
}

// Every look-up of a growing pool gives what the scan gives.
void expectSameAsScan(double tolerance, std::size_t count, std::mt19937_64& random) {
  PointPool pool(tolerance);
  Plain::PointPool plain(tolerance);
  for (std::size_t i = 0; i < count; ++i) {
    const Vec2 point{anyCoordinate(random, tolerance), anyCoordinate(random, tolerance)};
    const std::size_t expected = plain.find(point);
    ASSERT_EQ(expected, pool.find(point))
        << "tolerance " << tolerance << " point " << i << ": " << point.x << ", " << point.y;
    if (expected != PointPool::None && random() % 4 != 0) continue;
    plain.add(point);
    pool.add(point);
  }
}

TEST(PointPoolProperty, GivesTheFirstMatchOfTheScan) {
  std::mt19937_64 random(20240611);
  for (int run = 0; run < 20; ++run) {
    ASSERT_NO_FATAL_FAILURE(expectSameAsScan(Precision, 1000, random));
  }
}

TEST(PointPoolProperty, GivesTheFirstMatchOfTheScanOnPicturePoints) {
  std::mt19937_64 random(20240612);
  std::uniform_real_distribution<double> coordinate(-0.05, 0.05);
  PointPool pool(Precision);
  Plain::PointPool plain(Precision);
  for (int i = 0; i < 20000; ++i) {
    const Vec2 point{coordinate(random), coordinate(random)};
    const std::size_t expected = plain.find(point);
    ASSERT_EQ(expected, pool.find(point)) << "point " << i;
    if (expected != PointPool::None) continue;
    plain.add(point);
    pool.add(point);
  }
}

TEST(PointPoolProperty, GivesTheFirstMatchOfTheScanForAnyTolerance) {
  std::mt19937_64 random(20240613);
  for (const double tolerance : {1e-9, 0.3, 50.0, 0.0, -1.0, 1e-150, 1e200, Infinity, NotANumber}) {
    ASSERT_NO_FATAL_FAILURE(expectSameAsScan(tolerance, 500, random));
  }
}

// The tolerance may be smaller than the distance of neighbouring doubles, down to the smallest of
// all: the cells, which do not shrink with it, miss no point.
TEST(PointPoolProperty, GivesTheFirstMatchOfTheScanForTolerancesFarBelowThePicture) {
  std::mt19937_64 random(20240614);
  for (const double tolerance : {1e-10, 1e-13, 1e-16, 1e-17, 1e-160, 2.3e-308, 5e-324}) {
    PointPool pool(tolerance);
    Plain::PointPool plain(tolerance);
    std::vector<double> coordinates{0.0, -0.0, 4e-7, -1.0};
    std::size_t found = 0;
    for (int i = 0; i < 1500; ++i) {
      double near = coordinates[random() % coordinates.size()];
      if (random() % 2 == 0) near += (static_cast<double>(random() % 9) - 4.0) / 4.0 * tolerance;
      if (random() % 4 == 0) near = std::nextafter(near, random() % 2 == 0 ? -9.0 : 9.0);
      if (random() % 8 == 0) coordinates.push_back(std::ldexp(near + 0.3, -1));
      const Vec2 point{near, coordinates[random() % 4]};
      const std::size_t expected = plain.find(point);
      ASSERT_EQ(expected, pool.find(point)) << tolerance << ": " << point.x << ", " << point.y;
      found += expected != PointPool::None ? 1 : 0;
      plain.add(point);
      pool.add(point);
    }
    EXPECT_LT(100u, found) << tolerance;
  }
}

}  // namespace
}  // namespace Lumivane::Test
