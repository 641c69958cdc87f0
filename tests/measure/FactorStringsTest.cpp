// View factors in long ducts, where H. C. Hottel's crossed strings are exact, and in an L-shaped
// room: what hides a part of one face from the other is not convex here.

#include "measure/FactorScenes.h"

#include <lumivane/measure/FaceFactors.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Measure {
namespace {

using namespace FactorScenes;

constexpr double Relative = 1e-4;
// The ends of a duct take about one part in its length.
constexpr double Length = 1e5;

// In the section of a duct.
struct Flat {
  double x = 0.0;
  double y = 0.0;
};

double distance(const Flat& a, const Flat& b) { return std::hypot(a.x - b.x, a.y - b.y); }

// Which side of the line from a to b a point is on: positive on the left.
double side(const Flat& a, const Flat& b, const Flat& p) {
  return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

// The string from a to b that keeps `peg` on its right side, or on its left one.
double around(const Flat& a, const Flat& b, const Flat& peg, bool isPegRight) {
  const double at = side(a, b, peg);
  const bool isFree = isPegRight ? at <= 0.0 : at >= 0.0;
  return isFree ? distance(a, b) : distance(a, peg) + distance(peg, b);
}

struct Segment {
  Flat a;
  Flat b;
};

// A wall of the duct, seen from the side of a point of the section.
void addWall(Faces& faces, const Segment& wall, const Flat& towards) {
  faces.add({{wall.a.x, wall.a.y, 0},
             {wall.b.x, wall.b.y, 0},
             {wall.b.x, wall.b.y, Length},
             {wall.a.x, wall.a.y, Length}},
            {towards.x, towards.y, 0.5 * Length});
}

void expectFactor(double expected, const FactorRow& row, std::size_t element,
                  const std::string& what) {
  EXPECT_NEAR(expected, entry(row, element), Relative * expected) << what;
}

TEST(FactorStrings, WedgesOfAnyAngle) {
  for (const double degrees : {20.0, 60.0, 90.0, 140.0})
    for (const double width : {0.5, 1.0, 3.0}) {
      const double angle = degrees * Pi / 180.0;
      const Flat end = {width * std::cos(angle), width * std::sin(angle)};
      const Flat middle = {0.5 * (1.0 + end.x), 0.5 * end.y};
      Faces faces;
      addWall(faces, {{0, 0}, {1, 0}}, middle);
      addWall(faces, {{0, 0}, end}, middle);
      const double opening = distance({1, 0}, end);
      const FaceFactors factors{SceneIndex(faces.scene)};
      const std::string what = std::to_string(degrees) + " by " + std::to_string(width);
      expectFactor(0.5 * (1.0 + width - opening), factors.row(0), 1, what);
      expectFactor(0.5 * (1.0 + width - opening) / width, factors.row(1), 0, what + ", back");
    }
}

TEST(FactorStrings, TriangularDuctsAreClosed) {
  const Flat corners[] = {{0, 0}, {3, 0}, {0.8, 1.7}};
  const Flat middle = {1.2, 0.6};
  Faces faces;
  for (std::size_t i = 0; i < 3; ++i) addWall(faces, {corners[i], corners[(i + 1) % 3]}, middle);
  const FaceFactors factors{SceneIndex(faces.scene)};
  const auto width = [&](std::size_t i) { return distance(corners[i % 3], corners[(i + 1) % 3]); };
  for (std::size_t i = 0; i < 3; ++i) {
    const FactorRow row = factors.row(i);
    for (const std::size_t j : {(i + 1) % 3, (i + 2) % 3}) {
      const std::size_t k = 3 - i - j;
      expectFactor((width(i) + width(j) - width(k)) / (2.0 * width(i)), row, j, std::to_string(i));
    }
    EXPECT_NEAR(0.0, row.sky, 1e-4);
  }
}

// What passes a strip between two plates on its left and on its right.
TEST(FactorStrings, AStripBetweenLongPlatesTakesWhatItsStringsSay) {
  const Flat low[] = {{0, 0}, {2, 0}};
  const Flat high[] = {{-0.3, 1}, {1.6, 1}};
  const Flat strip[] = {{0.5, 0.4}, {0.9, 0.55}};
  Faces faces;
  addWall(faces, {low[0], low[1]}, {1, 1});
  addWall(faces, {high[0], high[1]}, {1, 0});
  addWall(faces, {strip[0], strip[1]}, {0.7, 10});
  addWall(faces, {strip[0], strip[1]}, {0.7, -10});
  double passing = 0.0;
  for (const bool isLeft : {true, false}) {
    const Flat& peg = strip[isLeft ? 0 : 1];
    const auto string = [&](std::size_t i, std::size_t k) {
      return around(low[i], high[k], peg, isLeft);
    };
    passing += 0.5 * (string(0, 1) + string(1, 0) - string(0, 0) - string(1, 1));
  }
  const FaceFactors factors{SceneIndex(faces.scene)};
  expectFactor(passing / distance(low[0], low[1]), factors.row(0), 1, "up");
  expectFactor(passing / distance(high[0], high[1]), factors.row(1), 0, "down");
}

// A duct with one corner that points inwards, around which the shortest way between others goes.
// `string` gives its length.
template <class String>
void expectStrings(const std::vector<Flat>& corners, const std::vector<Flat>& inside,
                   const String& string) {
  const std::size_t count = corners.size();
  Faces faces;
  for (std::size_t i = 0; i < count; ++i)
    addWall(faces, {corners[i], corners[(i + 1) % count]}, inside[i]);
  const FaceFactors factors{SceneIndex(faces.scene)};
  for (std::size_t i = 0; i < count; ++i) {
    const FactorRow row = factors.row(i);
    const Flat& a = corners[i];
    const Flat& b = corners[(i + 1) % count];
    double sum = 0.0;
    for (std::size_t j = 0; j < count; ++j) {
      if (i == j) continue;
      const Flat& c = corners[j];
      const Flat& d = corners[(j + 1) % count];
      const double crossed = string(a, c) + string(b, d);
      const double apart = string(b, c) + string(a, d);
      const double expected = 0.5 * (crossed - apart) / distance(a, b);
      sum += expected;
      const std::string what = std::to_string(i) + " to " + std::to_string(j);
      if (expected > 1e-12)
        expectFactor(expected, row, j, what);
      else
        EXPECT_EQ(0.0, entry(row, j)) << what;
    }
    EXPECT_NEAR(1.0, sum, 1e-12);  // the strings themselves
    EXPECT_NEAR(0.0, row.sky, 1e-4);
  }
}

// Two squares and one around the corner.
TEST(FactorStrings, WallsOfAnLShapedDuctSeeEachOtherPastItsCorner) {
  const Flat peg = {1, 1};
  expectStrings({{0, 0}, {2, 0}, {2, 1}, peg, {1, 2}, {0, 2}},
                {{1, 0.5}, {1.5, 0.5}, {1.5, 0.5}, {0.5, 1.5}, {0.5, 1.5}, {0.5, 1}},
                [&](const Flat& a, const Flat& b) {
                  if (a.x > 1.0 && b.y > 1.0) return around(a, b, peg, true);
                  if (b.x > 1.0 && a.y > 1.0) return around(b, a, peg, true);
                  return distance(a, b);
                });
}

// From the middle of the floor all of the duct is seen, but not from near its sides.
TEST(FactorStrings, ACeilingThatDipsHidesWhatTheMiddleOfTheFloorSees) {
  const Flat peg = {1, 0.5};
  expectStrings({{0, 0}, {2, 0}, {2, 2}, peg, {0, 2}},
                {{1, 0.2}, {1, 0.2}, {1.5, 0.2}, {0.5, 0.2}, {1, 0.2}},
                [&](const Flat& a, const Flat& b) {
                  if (a.x < 1.0 && b.x > 1.0) return around(a, b, peg, false);
                  if (b.x < 1.0 && a.x > 1.0) return around(b, a, peg, false);
                  return distance(a, b);
                });
}

}  // namespace
}  // namespace Lumivane::Measure
