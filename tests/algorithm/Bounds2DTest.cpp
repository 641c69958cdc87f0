#include "support/Thrown.h"
#include "support/Vectors.h"

#include <lumivane/algorithm/Bounds2D.h>

#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Algorithm::Bounds2D;
using Vector = std::vector<double>;

constexpr double Largest = 1.7976931348623157e308;
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

Vector valuesOf(const Bounds2D& b) { return {b.getXMin(), b.getXMax(), b.getYMin(), b.getYMax()}; }

Bounds2D boundsFrom(const Vector& v) { return {v.at(0), v.at(1), v.at(2), v.at(3)}; }

Vector boundsOfPoints(const std::vector<Vector>& points) {
  const std::unique_ptr<Bounds2D> bounds(Bounds2D::getBounds(points));
  return valuesOf(*bounds);
}

const VectorTests BoundsUnionVectors("boundsUnion", [](const VectorCase& c) {
  checkedRun(c, [&] {
    std::vector<Bounds2D> bounds;
    for (const Vector& values : toVectors(c.in.at("bounds"))) bounds.push_back(boundsFrom(values));
    EXPECT_TRUE(sameBits(toVector(c.out), valuesOf(Bounds2D(bounds))));
  });
});

const VectorTests GetBoundsVectors("getBounds", [](const VectorCase& c) {
  checkedRun(c, [&] {
    const Vector values = boundsOfPoints(toVectors(c.in.at("points")));
    EXPECT_TRUE(sameBits(toVector(c.out), values));
  });
});

const VectorTests IsBoundsIntersectedVectors("isBoundsIntersected", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_EQ(c.out.get<bool>(), Bounds2D::isBoundsIntersected(boundsFrom(toVector(c.in.at("a"))),
                                                               boundsFrom(toVector(c.in.at("b")))));
  });
});

const VectorTests IsDefaultBoundsVectors("isDefaultBounds", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_EQ(c.out.get<bool>(),
              Bounds2D::isDefaultBounds(boundsFrom(toVector(c.in.at("bounds")))));
  });
});

TEST(Bounds2D, DefaultIsTheEmptyUnion) {
  EXPECT_EQ((Vector{Largest, -Largest, Largest, -Largest}), valuesOf(Bounds2D()));
  EXPECT_EQ(valuesOf(Bounds2D()), valuesOf(Bounds2D(std::vector<Bounds2D>{})));
  EXPECT_TRUE(Bounds2D::isDefaultBounds(Bounds2D()));
}

TEST(Bounds2D, ConstructorTakesXBeforeYAndMinimumBeforeMaximum) {
  const Bounds2D bounds(1, 2, 3, 4);
  EXPECT_EQ(1, bounds.getXMin());
  EXPECT_EQ(2, bounds.getXMax());
  EXPECT_EQ(3, bounds.getYMin());
  EXPECT_EQ(4, bounds.getYMax());
}

TEST(Bounds2D, SettersWriteTheirOwnField) {
  Bounds2D bounds;
  bounds.setXMin(1);
  bounds.setXMax(2);
  bounds.setYMin(3);
  bounds.setYMax(4);
  const Bounds2D copy(bounds);
  EXPECT_EQ((Vector{1, 2, 3, 4}), valuesOf(copy));
}

TEST(Bounds2D, OneFieldOffMakesABoundNoDefault) {
  for (int field = 0; field < 4; ++field) {
    Bounds2D bounds;
    if (field == 0) bounds.setXMin(0);
    if (field == 1) bounds.setXMax(0);
    if (field == 2) bounds.setYMin(0);
    if (field == 3) bounds.setYMax(0);
    EXPECT_FALSE(Bounds2D::isDefaultBounds(bounds)) << field;
  }
}

TEST(Bounds2D, BoundsOfOnePointHaveNoExtent) {
  EXPECT_EQ((Vector{2, 2, -3, -3}), boundsOfPoints({{2, -3}}));
}

TEST(Bounds2D, FurtherCoordinatesOfAPointAreIgnored) {
  EXPECT_EQ((Vector{1, 3, 0, 2}), boundsOfPoints({{1, 2, 99}, {3, 0, -99, 7}}));
}

TEST(Bounds2D, BoundsOfNoPointsAreTheDefault) {
  EXPECT_EQ(valuesOf(Bounds2D()), boundsOfPoints({}));
}

TEST(Bounds2D, PointWithOneCoordinateThrows) {
  EXPECT_EQ("invalid vector subscript", thrownText<std::out_of_range>([] {
              boundsOfPoints({{1, 2}, {1}});
            }));
}

TEST(Bounds2D, WhatIsNotANumberIsNeverTakenIn) {
  EXPECT_EQ((Vector{1, 1, 5, 5}), boundsOfPoints({{NotANumber, 5}, {1, NotANumber}}));
}

TEST(Bounds2D, BoundsThatShareOnlyACornerIntersect) {
  EXPECT_TRUE(Bounds2D::isBoundsIntersected({0, 1, 0, 1}, {1, 2, 1, 2}));
  EXPECT_TRUE(Bounds2D::isBoundsIntersected({0, 1, 0, 1}, {-1, 0, 1, 2}));
}

TEST(Bounds2D, BoundsApartByTheLeastStepDoNotIntersect) {
  const double next = std::nextafter(1.0, 2.0);
  EXPECT_FALSE(Bounds2D::isBoundsIntersected({0, 1, 0, 1}, {next, 2, 0, 1}));
  EXPECT_FALSE(Bounds2D::isBoundsIntersected({0, 1, 0, 1}, {0, 1, next, 2}));
}

TEST(Bounds2D, DefaultMeetsNothingFinite) {
  EXPECT_FALSE(Bounds2D::isBoundsIntersected(Bounds2D(), {-1, 1, -1, 1}));
  EXPECT_FALSE(Bounds2D::isBoundsIntersected(Bounds2D(), Bounds2D()));
}

TEST(Bounds2DProperty, SwappingTheBoundsKeepsTheResult) {
  std::mt19937_64 random(20240701);
  std::uniform_int_distribution<int> any(-3, 3);
  for (int i = 0; i < 5000; ++i) {
    const Bounds2D a(any(random), any(random), any(random), any(random));
    const Bounds2D b(any(random), any(random), any(random), any(random));
    ASSERT_EQ(Bounds2D::isBoundsIntersected(a, b), Bounds2D::isBoundsIntersected(b, a)) << i;
  }
}

}  // namespace
}  // namespace Lumivane::Test
