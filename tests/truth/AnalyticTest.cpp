// View factors with closed forms: J. R. Howell, A Catalog of Radiation Heat Transfer Configuration
// Factors (section B); J. H. Lambert, Photometria (1760), for the contour sums.

#include "truth/Builder.h"
#include "truth/Invariants.h"
#include "truth/LongVector.h"

#include <lumivane/visibility/SceneIndex.h>

#include <cmath>

#include <gtest/gtest.h>

namespace Lumivane::Truth {
namespace {

using Visibility::LookOptions;
using Visibility::SceneIndex;
using Visibility::Vector;
using Visibility::VisibleMap;

constexpr double Free = 1e-12;     ///< of what nothing stands in front of
constexpr double Hidden = 1e-9;    ///< of what lies behind others
constexpr double Printed = 1e-12;  ///< of values with twelve digits
constexpr Vector Origin{0, 0, 0};

VisibleMap lookUp(const SceneBuilder& builder, const Vector& forward = {0, 0, 1}) {
  LookOptions options;
  options.forward = forward;
  options.up = {1, 0, 0};
  const VisibleMap map = SceneIndex(builder.scene()).look(Origin, options);
  EXPECT_EQ(faultText(map), "");
  return map;
}

double factorOf(const VisibleMap& map, int object, int region = 0) {
  Real sum = 0.0L;
  for (const VisibleMap::Cell& cell : map.cells)
    if (cell.label.object == object && (region == 0 || cell.label.region == region))
      sum += cell.viewFactor;
  return static_cast<double>(sum);
}

/// Lambert's sum over an outline in front of an element at the origin.
double contourSum(const Outline& outline, const Vector& forward = {0, 0, 1}) {
  Real sum = 0.0L;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const LongVector a = wide(outline[i]);
    const LongVector b = wide(outline[(i + 1) % outline.size()]);
    sum += angleBetween(a, b) * dot(unit(cross(a, b)), unit(wide(forward)));
  }
  return static_cast<double>(std::fabs(sum) / (2.0L * Pi));
}

Real cornerFactor(Real x, Real y) {
  const Real rootX = std::sqrt(1.0L + x * x);
  const Real rootY = std::sqrt(1.0L + y * y);
  return (x / rootX * std::atan(y / rootX) + y / rootY * std::atan(x / rootY)) / (2.0L * Pi);
}

Real sideFactor(Real x, Real y) {
  const Real root = std::sqrt(1.0L + y * y);
  return (std::atan(x) - std::atan(x / root) / root) / (2.0L * Pi);
}

Outline rectangle(double halfWidth, double halfDepth, double height) {
  return {{-halfWidth, -halfDepth, height},
          {halfWidth, -halfDepth, height},
          {halfWidth, halfDepth, height},
          {-halfWidth, halfDepth, height}};
}

SceneBuilder only(const Outline& outline) {
  return SceneBuilder().object().addFacing(outline, Origin);
}

TEST(ClosedForm, AParallelRectangleOverItsCorner) {
  const VisibleMap map = lookUp(only({{0, 0, 3}, {2, 0, 3}, {2, 1.5, 3}, {0, 1.5, 3}}));
  EXPECT_NEAR(factorOf(map, 1), static_cast<double>(cornerFactor(2.0L / 3.0L, 0.5L)), Free);
  EXPECT_NEAR(factorOf(map, 1), 0.073075465806, Printed);
}

TEST(ClosedForm, AParallelRectangleOverItsCentre) {
  const VisibleMap map = lookUp(only(rectangle(1, 1, 1)));
  EXPECT_NEAR(factorOf(map, 1), static_cast<double>(4.0L * cornerFactor(1.0L, 1.0L)), Free);
  EXPECT_NEAR(factorOf(map, 1), 0.554126423980, Printed);
}

TEST(ClosedForm, ARectangleAtRightAnglesWithItsFootInThePlaneOfTheElement) {
  const VisibleMap map = lookUp(only({{0, 1.5, 0}, {2, 1.5, 0}, {2, 1.5, 3}, {0, 1.5, 3}}));
  EXPECT_NEAR(factorOf(map, 1), static_cast<double>(sideFactor(2.0L / 1.5L, 2.0L)), Free);
  EXPECT_NEAR(factorOf(map, 1), 0.109313337673, Printed);
}

TEST(ClosedForm, AParallelDiscOnTheAxis) {
  const Outline disc = regularPolygon({0, 0, 2}, {0, 0, 1}, 1.25, 720);
  const VisibleMap map = lookUp(only(disc));
  EXPECT_NEAR(factorOf(map, 1), contourSum(disc), Free);
  EXPECT_NEAR(factorOf(map, 1), 1.25 * 1.25 / (1.25 * 1.25 + 4.0), 3e-6) << "the round disc";
}

TEST(ClosedForm, ADiscForATiltedElement) {
  const double tilt = 40.0 * static_cast<double>(Pi) / 180.0;
  const Vector forward{std::sin(tilt), 0, std::cos(tilt)};
  const Outline disc = regularPolygon({0, 0, 2}, {0, 0, 1}, 1.25, 720);
  const VisibleMap map = lookUp(only(disc), forward);
  EXPECT_NEAR(factorOf(map, 1), contourSum(disc, forward), Free);
  EXPECT_NEAR(factorOf(map, 1), std::cos(tilt) * 1.25 * 1.25 / (1.25 * 1.25 + 4.0), 3e-6)
      << "the round disc";
}

TEST(ClosedForm, ADiscBesideTheAxis) {
  // A corner lies on the axis that leads away from the element.
  Outline disc;
  for (int i = 0; i < 720; ++i) {
    const Real angle = 2.0L * Pi * i / 720.0L;
    disc.push_back(narrow({1.5L + std::cos(angle), std::sin(angle), 1.0L}));
  }
  const VisibleMap map = lookUp(only(disc));
  EXPECT_NEAR(factorOf(map, 1), contourSum(disc), Free);
  EXPECT_NEAR(factorOf(map, 1), 0.126295340658, 3e-6) << "the round disc";
}

TEST(ClosedForm, ALongStrip) {
  const Outline strip{{-500, 1, 0.5}, {500, 1, 0.5}, {500, 3, 2.5}, {-500, 3, 2.5}};
  const VisibleMap map = lookUp(only(strip));
  EXPECT_NEAR(factorOf(map, 1), contourSum(strip), Free);
  EXPECT_NEAR(factorOf(map, 1), 0.063102953155, Printed);
}

TEST(ClosedForm, ATriangle) {
  const Outline triangle{{1, 0, 1}, {0, 1, 1.5}, {-0.7, -0.6, 2}};
  const VisibleMap map = lookUp(only(triangle));
  EXPECT_NEAR(factorOf(map, 1), contourSum(triangle), Free);
  EXPECT_NEAR(factorOf(map, 1), 0.143644695741, Printed);
}

TEST(ClosedForm, APlateInFrontOfALargerOne) {
  const VisibleMap map = lookUp(SceneBuilder()
                                    .object()
                                    .addFacing(rectangle(2, 2, 2), Origin)
                                    .object()
                                    .addFacing(rectangle(0.4, 0.4, 0.8), Origin));
  EXPECT_NEAR(factorOf(map, 2), static_cast<double>(4.0L * cornerFactor(0.5L, 0.5L)), Free);
  EXPECT_NEAR(factorOf(map, 1),
              static_cast<double>(4.0L * (cornerFactor(1.0L, 1.0L) - cornerFactor(0.5L, 0.5L))),
              Hidden);
  EXPECT_NEAR(factorOf(map, 2), 0.239456470461, Printed);
  EXPECT_NEAR(factorOf(map, 1), 0.314669953519, Hidden);
}

TEST(ClosedForm, ACubeFromItsCentre) {
  SceneBuilder builder;
  for (const auto& [axis, side] : std::vector<std::pair<std::size_t, double>>{
           {2, 1.0}, {0, 1.0}, {0, -1.0}, {1, 1.0}, {1, -1.0}, {2, -1.0}}) {
    Outline outline;
    for (const Vector& corner : rectangle(1, 1, 1)) {
      Vector place{};
      place[axis] = side;
      place[(axis + 1) % 3] = corner[0];
      place[(axis + 2) % 3] = corner[1];
      outline.push_back(place);
    }
    builder.object().addFacing(outline, Origin);
  }
  const VisibleMap map = lookUp(builder);
  const Real top = 4.0L * cornerFactor(1.0L, 1.0L);
  EXPECT_NEAR(factorOf(map, 1), static_cast<double>(top), Free);
  for (int side = 2; side <= 5; ++side)
    EXPECT_NEAR(factorOf(map, side), static_cast<double>((1.0L - top) / 4.0L), Free);
  EXPECT_NEAR(factorOf(map, 2), 0.111468394005, Printed);
  EXPECT_EQ(factorOf(map, 6), 0.0);
  EXPECT_EQ(factorOf(map, 0), 0.0);
}

struct Canyon {
  double ratio;  ///< height by width
  double sky;    ///< four digits
};

class CanyonFactor : public ::testing::TestWithParam<Canyon> {};

/// Two walls over a floor, seen from the middle of the floor.
double skyOf(double ratio, double halfLength) {
  SceneBuilder builder;
  const double half = 1.0;
  const double height = 2.0 * ratio;
  builder.object().addFacing({{-halfLength, -half, 0},
                              {halfLength, -half, 0},
                              {halfLength, half, 0},
                              {-halfLength, half, 0}},
                             {0, 0, 1});
  for (const double side : {-half, half})
    builder.object().addFacing({{-halfLength, side, 0},
                                {halfLength, side, 0},
                                {halfLength, side, height},
                                {-halfLength, side, height}},
                               Origin);
  return factorOf(lookUp(builder), 0);
}

TEST_P(CanyonFactor, OfTheSkyIsTheCosineOfTheWallsElevation) {
  const double sky = std::cos(std::atan(2.0 * GetParam().ratio));
  EXPECT_NEAR(sky, GetParam().sky, 5e-5);
  // What the open ends add falls with the cube of the length.
  EXPECT_NEAR(skyOf(GetParam().ratio, 1e4), sky, 1e-9);
}

TEST_P(CanyonFactor, OfAShortCanyonLacksItsEnds) {
  const Real walls = 4.0L * sideFactor(30.0L, 2.0L * GetParam().ratio);
  EXPECT_NEAR(skyOf(GetParam().ratio, 30.0), static_cast<double>(1.0L - walls), Free);
}

INSTANTIATE_TEST_SUITE_P(Ratios, CanyonFactor,
                         ::testing::Values(Canyon{0.25, 0.8944}, Canyon{0.5, 0.7071},
                                           Canyon{1.0, 0.4472}, Canyon{2.0, 0.2425},
                                           Canyon{3.0, 0.1644}));

}  // namespace
}  // namespace Lumivane::Truth
