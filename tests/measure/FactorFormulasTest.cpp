// View factors between faces at the default tolerance against closed forms: rectangles apart and
// with a common edge, canyons, rooms that a wall divides, L-shaped ones, and a cube inside a cube.

#include "measure/FactorScenes.h"

#include <lumivane/measure/FaceFactors.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Measure {
namespace {

using namespace FactorScenes;

constexpr double Relative = 1e-4;

// From `low` to `high` on two axes.
struct Rectangle {
  double low[2];
  double high[2];
  double area() const { return (high[0] - low[0]) * (high[1] - low[1]); }
  double at(int axis, int end) const { return end == 0 ? low[axis] : high[axis]; }
};

// Sums a primitive over the corners of both rectangles, with alternating signs.
template <class Primitive>
double cornerSum(const Rectangle& a, const Rectangle& b, const Primitive& primitive) {
  double sum = 0.0;
  for (int corner = 0; corner < 16; ++corner) {
    const int ends[4] = {corner & 1, corner >> 1 & 1, corner >> 2 & 1, corner >> 3 & 1};
    const double sign = (ends[0] + ends[1] + ends[2] + ends[3]) % 2 == 0 ? 1.0 : -1.0;
    sum += sign * primitive(a.at(0, ends[0]), a.at(1, ends[1]), b.at(0, ends[2]), b.at(1, ends[3]));
  }
  return sum / (2.0 * Pi) / a.area();
}

// From a rectangle at z = 0, on x and y, to one at the height z (J. R. Howell, A Catalog of
// Radiation Heat Transfer Configuration Factors, C-13).
double parallelFactor(const Rectangle& a, const Rectangle& b, double z) {
  return cornerSum(a, b, [z](double x, double y, double xi, double eta) {
    const double u = x - xi;
    const double v = y - eta;
    const double p = std::hypot(u, z);
    const double q = std::hypot(v, z);
    return v * p * std::atan(v / p) + u * q * std::atan(u / q) -
           0.5 * z * z * std::log(u * u + v * v + z * z);
  });
}

// From a rectangle at z = 0, on x and y, to one at x = 0, on z and y (C-15).
double perpendicularFactor(const Rectangle& a, const Rectangle& b) {
  return cornerSum(a, b, [](double x, double y, double z, double eta) {
    const double v = y - eta;
    const double r = x * x + z * z;
    const double edge = r > 0.0 ? v * std::sqrt(r) * std::atan(v / std::sqrt(r)) : 0.0;
    return edge - (r + v * v > 0.0 ? 0.25 * (r - v * v) * std::log(r + v * v) : 0.0);
  });
}

Outline level(const Rectangle& r, double z) {
  return {{r.low[0], r.low[1], z},
          {r.high[0], r.low[1], z},
          {r.high[0], r.high[1], z},
          {r.low[0], r.high[1], z}};
}

// At a value of x, on z and y.
Outline upright(const Rectangle& r, double x) {
  return {{x, r.low[1], r.low[0]},
          {x, r.low[1], r.high[0]},
          {x, r.high[1], r.high[0]},
          {x, r.high[1], r.low[0]}};
}

void expectFactor(double expected, const FactorRow& row, std::size_t element,
                  const std::string& what) {
  const double error = std::abs(entry(row, element) - expected);
  EXPECT_LE(error, Relative * expected) << what << ": " << entry(row, element);
  // Beside rounding, which is that of the formula as well.
  EXPECT_LE(error, estimate(row, element) + 1e-12) << what << ": " << entry(row, element);
}

TEST(FactorFormulas, TheFormulasAreRightOfACube) {
  const Rectangle unit = {{0, 0}, {1, 1}};
  EXPECT_NEAR(0.199824896, parallelFactor(unit, unit, 1.0), 5e-10);
  EXPECT_NEAR(0.200043776, perpendicularFactor(unit, unit), 5e-10);
}

TEST(FactorFormulas, ParallelRectanglesOfAnySizeAndPlace) {
  const Rectangle from = {{0, 0}, {1, 2}};
  const Rectangle to[] = {{{0, 0}, {1, 2}},      {{-3, -1}, {4, 5}}, {{0.25, 0.5}, {0.5, 1}},
                          {{3, 1}, {5, 4}},      {{1, 2}, {2, 3}},   {{-0.5, 0.1}, {0.3, 7}},
                          {{0.9, 1.9}, {40, 50}}};
  for (const Rectangle& other : to)
    for (const double z : {0.05, 0.4, 1.5, 20.0}) {
      Faces faces;
      faces.add(level(from, 0.0), {0.5, 1.0, 1e3});
      faces.add(level(other, z), {0.0, 0.0, -1e3});
      const FaceFactors factors{SceneIndex(faces.scene)};
      const std::string what = std::to_string(other.low[0]) + " at " + std::to_string(z);
      expectFactor(parallelFactor(from, other, z), factors.row(0), 1, what);
      expectFactor(parallelFactor(other, from, z), factors.row(1), 0, what + ", back");
    }
}

TEST(FactorFormulas, PerpendicularRectanglesWithAndWithoutACommonEdge) {
  const Rectangle from[] = {{{0, 0}, {1, 1}}, {{0, 0}, {2, 5}}, {{0.5, 0}, {2, 1}}};
  const Rectangle to[] = {
      {{0, 0}, {1, 1}}, {{0, 0}, {0.1, 3}}, {{0.25, 2}, {1, 3}}, {{0, 4}, {6, 9}}};
  for (const Rectangle& floor : from)
    for (const Rectangle& wall : to) {
      Faces faces;
      faces.add(level(floor, 0.0), {1.0, 0.0, 1e3});
      faces.add(upright(wall, 0.0), {1e3, 0.0, 0.0});
      const FaceFactors factors{SceneIndex(faces.scene)};
      const std::string what = std::to_string(floor.low[0]) + " to " + std::to_string(wall.low[0]) +
                               ", " + std::to_string(wall.low[1]);
      expectFactor(perpendicularFactor(floor, wall), factors.row(0), 1, what);
      expectFactor(perpendicularFactor(floor, wall) * floor.area() / wall.area(), factors.row(1), 0,
                   what + ", back");
    }
}

// Open above and at both ends: the sky is what the walls leave. Without end the factor to a wall is
// that of H. C. Hottel's crossed strings.
TEST(FactorFormulas, FloorsAndWallsOfCanyonsOfAnyLength) {
  for (const double length : {1.0, 20.0, 1e5})
    for (const double height : {0.25, 0.5, 1.0, 2.0, 3.0}) {
      const Rectangle floor = {{0, 0}, {1, length}};
      const Rectangle wall = {{0, 0}, {height, length}};
      Faces faces;
      faces.add(level(floor, 0.0), {0.5, 0.5 * length, 1.0});
      faces.add(upright(wall, 0.0), {0.5, 0.5 * length, 0.5 * height});
      faces.add(upright(wall, 1.0), {0.5, 0.5 * length, 0.5 * height});
      const FaceFactors factors{SceneIndex(faces.scene)};
      const FactorRow fromFloor = factors.row(0);
      const FactorRow fromWall = factors.row(1);
      const double toWall = perpendicularFactor(floor, wall);
      if (length > 1e4) {
        EXPECT_NEAR(0.5 * (1.0 + height - std::hypot(1.0, height)), toWall, 1e-5);
      }
      const std::string what = std::to_string(length) + " by " + std::to_string(height);
      expectFactor(toWall, fromFloor, 1, what + ", floor to wall");
      expectFactor(toWall, fromFloor, 2, what + ", floor to wall");
      EXPECT_NEAR(1.0 - 2.0 * toWall, fromFloor.sky, Relative * (1.0 - 2.0 * toWall)) << what;
      const double toFloor = toWall / height;
      const double across = parallelFactor(wall, wall, 1.0);
      expectFactor(toFloor, fromWall, 0, what + ", wall to floor");
      expectFactor(across, fromWall, 2, what + ", wall to wall");
      EXPECT_NEAR(1.0 - toFloor - across, fromWall.sky, Relative * (1.0 - toFloor - across))
          << what;
    }
}

// A wall up to the ceiling makes two rooms of one, but the floor stays one face.
TEST(FactorFormulas, AFloorUnderAWallHasTheFactorsOfBothRooms) {
  constexpr double Wall = 1.25;
  Faces faces = inside(boxOutlines({0, 0, 0}, {4, 3, 2}));
  const Outline wall = upright({{0, 0}, {2, 3}}, Wall);
  faces.add(wall, {0, 1, 1});
  faces.add(wall, {4, 1, 1});
  const FaceFactors factors{SceneIndex(faces.scene)};
  const FactorRow floor = factors.row(0);
  const Rectangle small = {{0, 0}, {Wall, 3}};
  const Rectangle large = {{0, 0}, {4 - Wall, 3}};
  const Rectangle side = {{0, 0}, {2, 3}};
  const double ofSmall = small.area() / 12.0;
  const double ofLarge = large.area() / 12.0;
  expectFactor(
      ofSmall * parallelFactor(small, small, 2) + ofLarge * parallelFactor(large, large, 2), floor,
      1, "ceiling");
  expectFactor(ofSmall * perpendicularFactor(small, side), floor, 4, "wall at the low end");
  expectFactor(ofLarge * perpendicularFactor(large, side), floor, 5, "wall at the high end");
  expectFactor(ofSmall * perpendicularFactor(small, side), floor, 6, "wall to the low end");
  expectFactor(ofLarge * perpendicularFactor(large, side), floor, 7, "wall to the high end");
  EXPECT_NEAR(0.0, floor.sky, 1e-6);
}

// What is seen from inside the outer cube: of the inner one by reciprocity, and of the outer one
// what that leaves.
TEST(FactorFormulas, ACubeInTheMiddleOfACubeTakesItsShare) {
  constexpr double Half = 0.4;
  Faces faces = inside(boxOutlines({-1, -1, -1}, {1, 1, 1}));
  addOutside(faces, boxOutlines({-Half, -Half, -Half}, {Half, Half, Half}));
  const FaceFactors factors{SceneIndex(faces.scene)};
  const Rectangle inner = {{-Half, -Half}, {Half, Half}};
  const Rectangle outer = {{-1, -1}, {1, 1}};
  const double facing = parallelFactor(inner, outer, 1.0 - Half);
  const double beside = 0.25 * (1.0 - facing);
  const double share = inner.area() / outer.area();
  const FactorRow fromInner = factors.row(6);
  const FactorRow fromOuter = factors.row(0);
  EXPECT_EQ(0.0, entry(fromInner, 1));
  EXPECT_EQ(0.0, entry(fromOuter, 7));
  expectFactor(facing, fromInner, 0, "inner to facing");
  expectFactor(share * facing, fromOuter, 6, "outer to facing");
  double toOuter = 0.0;
  for (std::size_t i = 1; i < 6; ++i) toOuter += entry(fromOuter, i);
  for (std::size_t i = 2; i < 6; ++i) {
    expectFactor(beside, fromInner, i, "inner to beside");
    expectFactor(share * beside, fromOuter, 6 + i, "outer to beside");
  }
  EXPECT_NEAR(1.0 - share, toOuter, Relative * (1.0 - share));
  EXPECT_NEAR(0.0, fromOuter.sky, 1e-6);
}

// Floor and ceiling are concave. The walls at the inner corner see one leg each, and nothing stands
// in it; the two long walls see each other up to the line through the corner.
TEST(FactorFormulas, AnLShapedRoomIsClosedAndReciprocalAndHasTheFactorsOfItsLegs) {
  constexpr double Height = 0.8;
  const double corners[6][2] = {{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
  Faces faces;
  Outline floor;
  Outline ceiling;
  for (const auto& corner : corners) {
    floor.push_back({corner[0], corner[1], 0.0});
    ceiling.push_back({corner[0], corner[1], Height});
  }
  faces.add(floor, {0.5, 0.5, 10.0});
  faces.add(ceiling, {0.5, 0.5, -10.0});
  const Vector before[6] = {{1, 0.5, 0.4},   {1.5, 0.5, 0.4}, {1.5, 0.5, 0.4},
                            {0.5, 1.5, 0.4}, {0.5, 1.5, 0.4}, {0.5, 1, 0.4}};
  for (std::size_t i = 0; i < 6; ++i) {
    const std::size_t next = (i + 1) % 6;
    faces.add({floor[i], floor[next], ceiling[next], ceiling[i]}, before[i]);
  }
  const FaceFactors factors{SceneIndex(faces.scene)};
  const std::vector<FactorRow> rows = factorRows(factors);
  const std::vector<FactorElement>& elements = factors.elements();
  for (const FactorRow& row : rows) {
    EXPECT_NEAR(1.0, sumOf(row), 1e-12);
    EXPECT_NEAR(0.0, row.sky, 1e-5);
    EXPECT_NEAR(0.0, row.residual, 5e-5);
  }
  EXPECT_LT(reciprocityOf(elements, rows).greatest, 1e-4);
  // Walls stand on the edges of the floor in their order, from the element 2 on.
  ASSERT_EQ(8U, elements.size());
  const FactorRow& inner = rows[5];
  const Rectangle wall = {{0, 1}, {Height, 2}};
  const Rectangle leg = {{0, 0}, {1, 2}};
  const Rectangle square = {{0, 0}, {1, Height}};
  const double toFloor = perpendicularFactor(leg, wall) * leg.area() / wall.area();
  expectFactor(toFloor, inner, 0, "to the floor");
  expectFactor(toFloor, inner, 1, "to the ceiling");
  expectFactor(perpendicularFactor(square, {{1, 0}, {2, Height}}), inner, 2, "to the far end");
  expectFactor(perpendicularFactor(square, square), inner, 6, "to the near end");
  expectFactor(parallelFactor(wall, {{0, 0}, {Height, 2}}, 1.0), inner, 7, "across");
  EXPECT_EQ(0.0, entry(inner, 3));
  EXPECT_EQ(0.0, entry(inner, 4));
  const Rectangle whole = {{0, 0}, {2, Height}};
  expectFactor(perpendicularFactor(whole, whole), rows[7], 2, "past the corner");
}

}  // namespace
}  // namespace Lumivane::Measure
