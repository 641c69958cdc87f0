#include "kernel/Hemisphere.h"
#include "support/Vectors.h"

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::planePointRadial;
using Kernel::planePointSquare;
using Kernel::Vec2;
using Kernel::Vec3;

constexpr double Rounding = 1e-15;

std::function<void(const VectorCase&)> planePointCheck(Vec2 (*planePoint)(Vec3)) {
  return [planePoint](const VectorCase& c) {
    const Vec3 camera{toDouble(c.in["x"]), toDouble(c.in["y"]), toDouble(c.in["z"])};
    const Vec2 point = planePoint(camera);
    EXPECT_TRUE(sameBits(toVector(c.out), std::vector<double>{point.x, point.y}));
  };
}

const VectorTests radialVectors("planePointRadial", planePointCheck(planePointRadial));
const VectorTests squareVectors("planePointSquare", planePointCheck(planePointSquare));

TEST(PlanePointRadial, StraightAheadIsTheCentre) {
  EXPECT_EQ((Vec2{0, 0}), planePointRadial({0, 0, 3}));
}

TEST(PlanePointRadial, TheEyeItselfIsAtTheTopOfTheRim) {
  const Vec2 point = planePointRadial({0, 0, 0});
  EXPECT_NEAR(-6.123e-17, point.x, 1e-20);
  EXPECT_EQ(1.0, point.y);
}

TEST(PlanePointRadial, TheCameraPlaneIsTheRim) {
  for (const Vec3 camera : {Vec3{1, 0, 0}, Vec3{-3, 4, 0}, Vec3{0.1, -7, 0}}) {
    const Vec2 point = planePointRadial(camera);
    EXPECT_NEAR(1.0, point.x * point.x + point.y * point.y, Rounding);
  }
}

TEST(PlanePointRadial, AnAngleOf45DegreesToTheRightIsItsSineToTheRight) {
  const Vec2 point = planePointRadial({-1, 0, 1});
  EXPECT_NEAR(std::sqrt(0.5), point.x, Rounding);
  EXPECT_NEAR(0.0, point.y, Rounding);
}

TEST(PlanePointRadial, TheThirdAxisPointsUpward) {
  EXPECT_NEAR(std::sqrt(0.5), planePointRadial({0, 1, 1}).y, Rounding);
  EXPECT_NEAR(-std::sqrt(0.5), planePointRadial({0, -1, 1}).y, Rounding);
}

TEST(PlanePointSquare, StraightAheadIsTheLeftSideAndNotTheCentre) {
  EXPECT_EQ((Vec2{-1, 0}), planePointSquare({0, 0, 2}));
}

TEST(PlanePointSquare, TheWholeCentreLineIsOnTheLeftSide) {
  for (const double y : {0.001, 0.5, 3.0}) {
    const Vec2 point = planePointSquare({0, y, 1});
    EXPECT_EQ(-1.0, point.x);
    EXPECT_GT(point.y, 0.0);
  }
}

TEST(PlanePointSquare, BesideTheCentreLineTheAzimuthIsNearZero) {
  const Vec2 left = planePointSquare({1e-9, 0, 1});
  EXPECT_LE(left.x, 0.0);
  EXPECT_NEAR(0.0, left.x, 1e-7);
  const Vec2 right = planePointSquare({-1e-6, 0, 1});
  EXPECT_GT(right.x, 0.0);
  EXPECT_NEAR(0.0, right.x, 1e-5);
}

TEST(PlanePointSquare, TheEyeItselfIsOnTheLeftSide) {
  EXPECT_EQ((Vec2{-1, 0}), planePointSquare({0, 0, 0}));
}

TEST(PlanePointSquare, TheThirdAxisIsTheUpperLeftCorner) {
  EXPECT_EQ((Vec2{-1, 1}), planePointSquare({0, 4, 0}));
}

TEST(PlanePointSquare, AnAzimuthOf45DegreesIsHalfWay) {
  const Vec2 point = planePointSquare({2, 0, 2});
  EXPECT_NEAR(-0.5, point.x, Rounding);
  EXPECT_EQ(0.0, point.y);
}

TEST(PlanePointSquare, TheCameraPlaneIsTheTwoSides) {
  EXPECT_EQ((Vec2{-1, 0}), planePointSquare({5, 0, 0}));
  EXPECT_EQ((Vec2{1, 0}), planePointSquare({-5, 0, 0}));
}

TEST(PlanePointSquare, WhatLiesBehindIsClampedToTheSides) {
  EXPECT_EQ(-1.0, planePointSquare({1, 0.3, -2}).x);
  EXPECT_EQ(1.0, planePointSquare({-1, 0.3, -2}).x);
}

}  // namespace
}  // namespace Lumivane::Test
