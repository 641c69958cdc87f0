// View factors between faces: against closed forms, against factors from a point that are
// integrated here, and against their own laws.

#include "measure/FactorScenes.h"

#include <lumivane/measure/FaceFactors.h>
#include <lumivane/measure/FactorText.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Measure {
namespace {

using namespace FactorScenes;

// ---- an integral of Lambert's sum that shares no code with the library

double fromPoint(const Vector& p, const Vector& normal, const Outline& receiver) {
  double sum = 0.0;
  for (std::size_t i = 0; i < receiver.size(); ++i) {
    Vector a = receiver[i] - p;
    Vector b = receiver[(i + 1) % receiver.size()] - p;
    const Vector n = cross(a, b);
    const double angle = std::acos(std::clamp(dot(a, b) / length(a) / length(b), -1.0, 1.0));
    if (length(n) > 0.0) sum += angle * dot(n, normal) / length(n);
  }
  return std::abs(sum) / (2.0 * Pi);
}

// A rule on 0 to 1 that crowds at both ends: x = t^3 (10 - 15 t + 6 t^2) at midpoints of t.
std::vector<std::pair<double, double>> crowdedRule(int count) {
  std::vector<std::pair<double, double>> rule;
  for (int i = 0; i < count; ++i) {
    const double t = (i + 0.5) / count;
    rule.emplace_back(t * t * t * (10.0 - 15.0 * t + 6.0 * t * t),
                      30.0 * t * t * (1.0 - t) * (1.0 - t) / count);
  }
  return rule;
}

double referenceFactor(const Outline& emitter, const Outline& receiver, int count = 120) {
  const Vector vector = areaVector(emitter);
  const double area = length(vector);
  const Vector normal = {vector[0] / area, vector[1] / area, vector[2] / area};
  const Vector middle = meanOf(emitter);
  const std::vector<std::pair<double, double>> rule = crowdedRule(count);
  double sum = 0.0;
  for (std::size_t i = 0; i < emitter.size(); ++i) {
    const Vector a = emitter[i] - middle;
    const Vector b = emitter[(i + 1) % emitter.size()] - middle;
    const double twice = length(cross(a, b));
    for (const auto& [r, weightR] : rule)
      for (const auto& [s, weightS] : rule) {
        Vector p{};
        for (std::size_t k = 0; k < 3; ++k) p[k] = middle[k] + r * ((1.0 - s) * a[k] + s * b[k]);
        sum += twice * r * weightR * weightS * fromPoint(p, normal, receiver);
      }
  }
  return sum / area;
}

// ---- closed forms

TEST(FaceFactors, FacesOfACubeHaveTheFactorsOfTheClosedForm) {
  const FaceFactors factors{SceneIndex(inside(boxOutlines({0, 0, 0}, {1, 1, 1})).scene)};
  for (std::size_t i = 0; i < 6; ++i) {
    const FactorRow row = factors.row(i);
    for (std::size_t j = 0; j < 6; ++j) {
      const double expected = i == j ? 0.0 : i / 2 == j / 2 ? 0.199824896 : 0.200043776;
      EXPECT_NEAR(expected, entry(row, j), 1e-9) << i << " " << j;
    }
    EXPECT_NEAR(0.0, row.sky, 1e-8);
  }
}

TEST(FaceFactors, FacesOfARegularTetrahedronSeeAThirdOfEachOther) {
  const FaceFactors factors{SceneIndex(inside(tetrahedronOutlines()).scene)};
  const FactorRow row = factors.row(0);
  ASSERT_EQ(3U, row.entries.size());
  for (const FactorEntry& e : row.entries) EXPECT_NEAR(1.0 / 3.0, e.factor, 1e-8);
}

TEST(FaceFactors, TwoPlatesHaveTheFactorsOfTheClosedForms) {
  Faces opposite;
  opposite.add({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0.5, 0.5, 1});
  opposite.add({{0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}}, {0.5, 0.5, 0});
  const FactorRow row = FaceFactors{SceneIndex(opposite.scene)}.row(0);
  EXPECT_NEAR(0.199824896, entry(row, 1), 1e-9);
  EXPECT_NEAR(1.0 - 0.199824896, row.sky, 1e-9);

  Faces adjacent;
  adjacent.add({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0.5, 0.5, 1});
  adjacent.add({{0, 0, 0}, {1, 0, 0}, {1, 0, 1}, {0, 0, 1}}, {0.5, 1, 0.5});
  EXPECT_NEAR(0.200043776, entry(FaceFactors{SceneIndex(adjacent.scene)}.row(0), 1), 1e-9);
}

// What the opaque square leaves is a difference of rectangles, integrated over the quarters of the
// lower plate, on which it is smooth.
TEST(FaceFactors, ASquareHalfwayBetweenTwoPlatesTakesWhatTheIntegralSays) {
  constexpr double Obstructed = 0.099506294599;
  Faces faces;
  faces.add({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0.5, 0.5, 1});
  faces.add({{0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}}, {0.5, 0.5, 0});
  const Outline middle = {
      {0.25, 0.25, 0.5}, {0.75, 0.25, 0.5}, {0.75, 0.75, 0.5}, {0.25, 0.75, 0.5}};
  faces.add(middle, {0.5, 0.5, 1});
  faces.add(middle, {0.5, 0.5, 0});
  const FaceFactors factors{SceneIndex(faces.scene)};
  for (const std::size_t i : {0U, 1U}) {
    const FactorRow row = factors.row(i);
    EXPECT_NEAR(Obstructed, entry(row, 1 - i), 1e-4 * Obstructed);
    EXPECT_LE(std::abs(entry(row, 1 - i) - Obstructed), estimate(row, 1 - i));
    EXPECT_TRUE(row.isWithinTolerance);
    EXPECT_NEAR(1.0, sumOf(row), 1e-12);
  }
}

// A small plate and a large one behind it, both centred over a small face: differences of the
// closed form of a parallel rectangle over its centre.
TEST(FaceFactors, ASmallFaceSeesAPlateAndWhatItLeavesOfTheOneBehind) {
  const auto square = [](double half, double z) {
    return Outline{{-half, -half, z}, {half, -half, z}, {half, half, z}, {-half, half, z}};
  };
  Faces faces;
  faces.add(square(5e-5, 0.0), {0, 0, 1});
  faces.add(square(0.4, 0.8), {0, 0, 0});
  faces.add(square(2.0, 2.0), {0, 0, 0});
  const FactorRow row = FaceFactors{SceneIndex(faces.scene)}.row(0);
  EXPECT_NEAR(0.239456470461, entry(row, 1), 1e-8);
  EXPECT_NEAR(0.314669953519, entry(row, 2), 1e-8);
  EXPECT_NEAR(1.0 - 0.239456470461 - 0.314669953519, row.sky, 1e-8);
}

struct Enclosure {
  const char* name;
  std::vector<Outline> outlines;
};

// Convex enclosures of our own choice, of which no closed form is at hand for most pairs.
TEST(FaceFactors, ConvexEnclosuresAgreeWithIntegralsOfTheFactorFromAPoint) {
  const Enclosure enclosures[] = {{"cube", boxOutlines({0, 0, 0}, {1, 1, 1})},
                                  {"box", boxOutlines({0, 0, 0}, {1, 2, 3})},
                                  {"tetrahedron", tetrahedronOutlines()},
                                  {"octahedron", octahedronOutlines()},
                                  {"triangular prism", prismOutlines(3, 1.0, 1.5)},
                                  {"hexagonal prism", prismOutlines(6, 1.0, 0.7)}};
  for (const Enclosure& enclosure : enclosures) {
    SCOPED_TRACE(enclosure.name);
    const Faces faces = inside(enclosure.outlines);
    const FaceFactors factors{SceneIndex(faces.scene)};
    for (const std::size_t i : {std::size_t{0}, faces.outlines.size() - 1}) {
      const FactorRow row = factors.row(i);
      EXPECT_NEAR(1.0, sumOf(row), 1e-12);
      EXPECT_NEAR(0.0, row.residual, 1e-7);
      for (std::size_t j = 0; j < faces.outlines.size(); ++j) {
        if (j == i) continue;
        const double expected = referenceFactor(faces.outlines[i], faces.outlines[j]);
        EXPECT_NEAR(expected, entry(row, j), 1e-4 * expected) << i << " " << j;
      }
    }
  }
}

// What docs/view-factors.md has of these enclosures. Of convex bodies every row adds up to 1, so a
// row checks itself.
TEST(FaceFactors, ConvexEnclosuresHaveTheFactorsOfTheTable) {
  using Numbers = std::vector<double>;  // of the first face, greatest first
  const std::pair<Enclosure, Numbers> expected[] = {
      {{"cube", boxOutlines({0, 0, 0}, {1, 1, 1})},
       {0.200043776, 0.200043776, 0.200043776, 0.200043776, 0.199824896}},
      {{"box", boxOutlines({0, 0, 0}, {1, 2, 3})},
       {0.308140293, 0.308140293, 0.161694014, 0.161694014, 0.060331385}},
      {{"tetrahedron", tetrahedronOutlines()}, {1.0 / 3.0, 1.0 / 3.0, 1.0 / 3.0}},
      {{"octahedron", octahedronOutlines()},
       {0.148941118, 0.148941118, 0.148941118, 0.142613727, 0.136854306, 0.136854306, 0.136854306}},
      {{"triangular prism", prismOutlines(3, 1.0, 1.5)},
       {0.289522662, 0.289522662, 0.289522662, 0.131432015}},
      {{"hexagonal prism", prismOutlines(6, 1.0, 0.7)},
       {0.469605839, 0.088399027, 0.088399027, 0.088399027, 0.088399027, 0.088399027,
        0.088399027}}};
  for (const auto& [enclosure, numbers] : expected) {
    SCOPED_TRACE(enclosure.name);
    const FactorRow row = FaceFactors{SceneIndex(inside(enclosure.outlines).scene)}.row(0);
    Numbers factors;
    for (const FactorEntry& e : row.entries) factors.push_back(e.factor);
    std::sort(factors.rbegin(), factors.rend());
    ASSERT_EQ(numbers.size(), factors.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) EXPECT_NEAR(numbers[i], factors[i], 1e-8);
    EXPECT_NEAR(1.0, std::accumulate(numbers.begin(), numbers.end(), 0.0), 2e-8);
  }
}

// ---- what stands between

TEST(FaceFactors, EstimatesAreAtLeastTheErrorInNearlyAllEntries) {
  const SceneIndex index(furnishedRoom().scene);
  const FaceFactors rough(index, tolerance(1e-2));
  const FaceFactors fine(index, tolerance(2e-4));
  std::size_t count = 0;
  std::size_t honest = 0;
  for (std::size_t i = 0; i < rough.elements().size(); ++i) {
    const FactorRow row = rough.row(i);
    const FactorRow truth = fine.row(i);
    for (const FactorEntry& e : row.entries) {
      ++count;
      honest +=
          std::abs(e.factor - entry(truth, e.element)) <= e.estimate + estimate(truth, e.element)
              ? 1
              : 0;
    }
  }
  EXPECT_GE(static_cast<double>(honest), 0.95 * static_cast<double>(count))
      << honest << " of " << count;
}

// A table in a room: its legs are small, and little of what is around them is seen from one point.
Faces roomWithTable() {
  Faces faces = inside(boxOutlines({0, 0, 0}, {5, 4, 2.6}));
  addOutside(faces, boxOutlines({1.5, 1.2, 0.7}, {3.1, 2.2, 0.74}));
  for (const double x : {1.55, 3.0})
    for (const double y : {1.25, 2.1})
      addOutside(faces, boxOutlines({x, y, 0.0}, {x + 0.06, y + 0.06, 0.7}));
  return faces;
}

// Triangles of all directions, both sides of each, that may run through each other.
Faces roomOfTriangles() {
  Faces faces = inside(boxOutlines({0, 0, 0}, {3, 3, 3}));
  std::mt19937 random(5);
  const auto number = [&random](double low, double high) {
    return low + (high - low) * static_cast<double>(random()) / 4294967296.0;
  };
  for (int i = 0; i < 8; ++i) {
    const Vector middle = {number(0.7, 2.3), number(0.7, 2.3), number(0.7, 2.3)};
    Outline triangle;
    for (int k = 0; k < 3; ++k)
      triangle.push_back({middle[0] + number(-0.6, 0.6), middle[1] + number(-0.6, 0.6),
                          middle[2] + number(-0.6, 0.6)});
    const Vector normal = areaVector(triangle);
    const Vector mean = meanOf(triangle);
    faces.add(triangle, {mean[0] + normal[0], mean[1] + normal[1], mean[2] + normal[2]});
    faces.add(triangle, mean - normal);
  }
  return faces;
}

struct Honesty {
  std::size_t count = 0;
  std::size_t honest = 0;
};

// At the default tolerance; the truth is taken from many times as many points. Rows of very many
// points are left out, since theirs would take long: they are the ones that are best known.
void addHonesty(const Faces& faces, std::size_t step, Honesty& sum) {
  const SceneIndex index(faces.scene);
  const FaceFactors factors(index);
  FactorOptions best = tolerance(1e-9);
  best.mostPoints = 600;
  const FaceFactors truth(index, best);
  for (std::size_t i = 0; i < factors.elements().size(); i += step) {
    const FactorRow row = factors.row(i);
    if (row.looks > best.mostPoints / 6) continue;
    const FactorRow expected = truth.row(i);
    for (const FactorEntry& e : row.entries) {
      ++sum.count;
      sum.honest += std::abs(e.factor - entry(expected, e.element)) <= e.estimate ? 1 : 0;
    }
  }
}

TEST(FaceFactors, EstimatesOfRowsOfFewPointsAreAtLeastTheErrorInNearlyAllEntries) {
  Honesty sum;
  addHonesty(furnishedRoom(), 1, sum);
  addHonesty(roomWithTable(), 3, sum);
  addHonesty(roomOfTriangles(), 3, sum);
  EXPECT_GT(sum.count, 120U);
  EXPECT_GE(static_cast<double>(sum.honest), 0.95 * static_cast<double>(sum.count))
      << sum.honest << " of " << sum.count;
}

TEST(FaceFactors, BothDirectionsAgreeInAClosedRoomWithinTheirEstimates) {
  const FaceFactors factors{SceneIndex(furnishedRoom().scene), tolerance(1e-3)};
  const std::vector<FactorRow> rows = factorRows(factors);
  const std::vector<FactorElement>& elements = factors.elements();
  for (const FactorRow& row : rows) {
    EXPECT_NEAR(1.0, sumOf(row), 1e-12);
    EXPECT_NEAR(0.0, row.sky, 1e-6);
    for (const FactorEntry& e : row.entries) {
      const double here = elements[row.element].area * e.factor;
      const double there = elements[e.element].area * entry(rows[e.element], row.element);
      EXPECT_NEAR(here, there, 1e-3 * factors.area());
    }
  }
}

// The box has no floor: the ground in it belongs to it, and what is seen changes at its walls at
// once.
TEST(FaceFactors, GroundIsDividedWhereWallsStandOnIt) {
  Faces faces;
  faces.add({{-2, -2, 0}, {2, -2, 0}, {2, 2, 0}, {-2, 2, 0}}, {0, 0, 1});
  std::vector<Outline> walls = boxOutlines({-0.9, -0.8, 0}, {0.4, 0.7, 1.1});
  walls.erase(walls.begin());
  addOutside(faces, walls);
  FactorOptions options = tolerance(1e-3);
  options.twoSided = true;
  const FaceFactors factors{SceneIndex(faces.scene), options};
  const FactorRow row = factors.row(0);
  EXPECT_TRUE(row.isWithinTolerance);
  EXPECT_LT(row.looks, 3000U);
  // Of what the backs of the walls and of the top get, the ground in the box sends out all.
  double inBox = 0.0;
  for (std::size_t j = 3; j < factors.elements().size(); j += 2) inBox += entry(row, j);
  EXPECT_NEAR(1.3 * 1.5 / 16.0, inBox, 1e-3);
}

// ---- laws

TEST(FaceFactors, TheOwnFaceAndThoseInItsPlaneAreNotSeen) {
  Faces faces;
  faces.add({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0.5, 0.5, 1});
  faces.add({{1, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}}, {1.5, 0.5, 1});
  faces.add({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0.5, 0.5, -1});
  const FaceFactors factors{SceneIndex(faces.scene)};
  for (std::size_t i = 0; i < 3; ++i) {
    const FactorRow row = factors.row(i);
    EXPECT_TRUE(row.entries.empty());
    EXPECT_EQ(1.0, row.sky);
  }
}

TEST(FaceFactors, AFaceThatIsNotFlatSeesItself) {
  Faces faces;
  // A sheet that is folded along a diagonal by a right angle, seen from its hollow side.
  faces.add({{0, 0, 0}, {1, -1, 0}, {1, 0, 1.414}, {0, 1, 0}}, {0.1, 0, 3});
  const FaceFactors factors{SceneIndex(faces.scene)};
  ASSERT_EQ(1U, factors.elements().size());
  const FactorRow row = factors.row(0);
  const double self = entry(row, 0);
  Faces turned = faces;
  std::reverse(turned.scene.corners.begin(), turned.scene.corners.end());
  const double other = entry(FaceFactors{SceneIndex(turned.scene)}.row(0), 0);
  EXPECT_GT(std::max(self, other), 0.02);
  EXPECT_EQ(0.0, std::min(self, other));  // from the other side it is a ridge
  EXPECT_NEAR(1.0, sumOf(row), 1e-12);
}

TEST(FaceFactors, TwoSidedFacesHaveABackThatSeesTheOtherWay) {
  Faces faces;
  faces.add({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0.5, 0.5, 1});
  faces.add({{0, 0, -1}, {1, 0, -1}, {1, 1, -1}, {0, 1, -1}}, {0.5, 0.5, -2});
  FactorOptions options;
  options.twoSided = true;
  const FaceFactors factors{SceneIndex(faces.scene), options};
  ASSERT_EQ(4U, factors.elements().size());
  EXPECT_FALSE(factors.elements()[2].isBack);
  EXPECT_TRUE(factors.elements()[3].isBack);
  EXPECT_EQ(-factors.elements()[2].normal[2], factors.elements()[3].normal[2]);
  EXPECT_TRUE(factors.row(0).entries.empty());
  const FactorRow back = factors.row(1);
  ASSERT_EQ(1U, back.entries.size());
  EXPECT_EQ(3U, back.entries[0].element);
  EXPECT_NEAR(0.199824896, back.entries[0].factor, 1e-9);
  EXPECT_EQ(1U, factors.row(3).entries[0].element);
}

TEST(FaceFactors, RowsDoNotDependOnThreadsOrOnRowsThatAreKnown) {
  const FaceFactors factors{SceneIndex(furnishedRoom().scene), tolerance(1e-2)};
  const std::vector<FactorRow> rows = factorRows(factors);
  FactorRun run;
  run.threads = 3;
  run.known = {rows[2], rows[5]};
  std::size_t made = 0;
  double last = 0.0;
  run.made = [&made](const FactorRow&) { ++made; };
  run.progress = [&last](double part) {
    EXPECT_GE(part, last);
    last = part;
  };
  const std::vector<FactorRow> again = factorRows(factors, run);
  EXPECT_EQ(rows.size() - 2, made);
  EXPECT_EQ(1.0, last);
  ASSERT_EQ(rows.size(), again.size());
  for (std::size_t i = 0; i < rows.size(); ++i)
    EXPECT_EQ(FactorText::rowText(rows[i]), FactorText::rowText(again[i]));
}

TEST(FaceFactors, ARangeOfRowsIsWhatItIsInTheWhole) {
  const FaceFactors factors{SceneIndex(furnishedRoom().scene), tolerance(1e-2)};
  FactorRun run;
  run.first = 3;
  run.count = 2;
  const std::vector<FactorRow> rows = factorRows(factors, run);
  ASSERT_EQ(2U, rows.size());
  EXPECT_EQ(FactorText::rowText(factors.row(3)), FactorText::rowText(rows[0]));
  EXPECT_EQ(4U, rows[1].element);
  run.first = 99;
  EXPECT_THROW(factorRows(factors, run), std::invalid_argument);
}

TEST(FaceFactors, ACancelledRowThrows) {
  const std::atomic<bool> cancelled{true};
  FactorOptions options;
  options.cancelled = &cancelled;
  const FaceFactors factors{SceneIndex(furnishedRoom().scene), options};
  EXPECT_THROW(factors.row(0), Visibility::Cancelled);
}

TEST(FaceFactors, FewPointsAreReportedAsNotWithinTheTolerance) {
  FactorOptions options = tolerance(1e-6);
  options.mostPoints = 10;
  const FaceFactors factors{SceneIndex(furnishedRoom().scene), options};
  EXPECT_FALSE(factors.row(0).isWithinTolerance);
}

TEST(FaceFactors, NoRowIsSaidToBeWithinWhatCannotBeKnown) {
  const SceneIndex index(inside(prismOutlines(3, 1.0, 1.5)).scene);
  EXPECT_TRUE(FaceFactors(index, tolerance(1e-7)).row(0).isWithinTolerance);
  EXPECT_FALSE(FaceFactors(index, tolerance(9e-8)).row(0).isWithinTolerance);
  for (const FactorEntry& each : FaceFactors(index, tolerance(1e-12)).row(0).entries)
    EXPECT_NEAR(1e-7 * each.factor, each.estimate, 1e-10 * each.factor);
}

TEST(FaceFactors, OptionsThatMeanNothingAreRefused) {
  const SceneIndex index(furnishedRoom().scene);
  EXPECT_THROW(FaceFactors(index, tolerance(0.0)), std::invalid_argument);
  FactorOptions none;
  none.mostPoints = 0;
  EXPECT_THROW(FaceFactors(index, none), std::invalid_argument);
  EXPECT_THROW(FaceFactors(index).row(99), std::out_of_range);
}

// ---- reciprocity

TEST(FactorMatrix, IsReciprocalAndClosedAfterwards) {
  const FaceFactors factors{SceneIndex(furnishedRoom().scene), tolerance(1e-2)};
  std::vector<FactorRow> rows = factorRows(factors);
  const Reciprocity before = reciprocityOf(factors.elements(), rows);
  EXPECT_GT(before.greatest, 1e-6);
  EXPECT_GE(before.greatest, before.meanSquare);
  const std::vector<FactorRow> first = rows;
  makeReciprocal(factors.elements(), rows);
  EXPECT_LT(reciprocityOf(factors.elements(), rows).greatest, 1e-14);
  for (const FactorRow& row : rows) {
    EXPECT_NEAR(1.0, sumOf(row), 1e-9);
    for (const FactorEntry& e : row.entries) {
      EXPECT_GE(e.factor, 0.0);
      EXPECT_NEAR(e.factor, entry(first[row.element], e.element), 0.05);
    }
  }
}

TEST(FactorMatrix, PairsThatAreSureStayWhatTheyAre) {
  const FaceFactors factors{SceneIndex(inside(boxOutlines({0, 0, 0}, {1, 1, 1})).scene)};
  std::vector<FactorRow> rows = factorRows(factors);
  makeReciprocal(factors.elements(), rows);
  EXPECT_NEAR(0.199824896, entry(rows[0], 1), 1e-8);
  EXPECT_NEAR(0.200043776, entry(rows[0], 2), 1e-8);
}

TEST(FactorMatrix, RefusesRowsThatAreNoMatrix) {
  const FaceFactors factors{SceneIndex(inside(boxOutlines({0, 0, 0}, {1, 1, 1})).scene)};
  std::vector<FactorRow> rows = factorRows(factors);
  rows.pop_back();
  EXPECT_THROW(reciprocityOf(factors.elements(), rows), std::invalid_argument);
  rows.push_back(rows[0]);
  EXPECT_THROW(makeReciprocal(factors.elements(), rows), std::invalid_argument);
}

// ---- text

FactorTable smallTable() {
  FactorTable table;
  table.objectIds = {"a,b", "=c"};
  table.classNames = {"roof"};
  table.elements.resize(2);
  table.elements[0].label = {1, 1, 1};
  table.elements[0].classNumber = 0;
  table.elements[0].area = 2.0;
  table.elements[1].label = {2, 1, 1};
  table.elements[1].area = 1.0;
  FactorRow row;
  row.element = 0;
  row.entries = {{1, 0.25, 1e-5}};
  row.sky = 0.75;
  row.skyEstimate = 2e-5;
  row.looks = 3;
  table.rows = {row};
  return table;
}

TEST(FactorText, TheTableHasEachEntryAndTheSky) {
  EXPECT_EQ("i,j,view_factor,estimate\n1,2,0.25,1e-05\n1,0,0.75,2e-05\n",
            FactorText::csv(smallTable()));
}

TEST(FactorText, ElementsAreListedWithAndWithoutTheirRows) {
  EXPECT_EQ(
      "number,object,id,face,region,side,class,area,x,y,z,nx,ny,nz,sky,residual,points,"
      "within_tolerance\n"
      "1,1,\"a,b\",1,1,front,roof,2,0,0,0,0,0,0,0.75,0,3,1\n"
      "2,2,'=c,1,1,front,,1,0,0,0,0,0,0,,,,\n",
      FactorText::elementsCsv(smallTable(), true));
}

TEST(FactorText, ARowReadsBackAndATornOneDoesNot) {
  const FactorRow row = smallTable().rows[0];
  const std::string text = FactorText::rowText(row);
  const auto back = FactorText::readRowText(text);
  ASSERT_TRUE(back);
  EXPECT_EQ(text, FactorText::rowText(*back));
  EXPECT_EQ(0.25, back->entries.at(0).factor);
  for (std::size_t i = 0; i + 4 < text.size(); ++i)
    EXPECT_FALSE(FactorText::readRowText(text.substr(0, i))) << i;
  EXPECT_FALSE(FactorText::readRowText(text + " 1"));
  EXPECT_FALSE(FactorText::readRowText("x"));
}

TEST(FactorText, AnArchiveIsAZipOfArrays) {
  if (!FactorText::hasNpz()) GTEST_SKIP() << "built without libarchive";
  const std::string bytes = FactorText::npz(smallTable());
  EXPECT_EQ("PK", bytes.substr(0, 2));
  for (const char* const name : {"data.npy", "indices.npy", "indptr.npy", "format.npy", "sky.npy"})
    EXPECT_NE(std::string::npos, bytes.find(name)) << name;
  EXPECT_NE(std::string::npos, bytes.find("\x93NUMPY"));
  EXPECT_EQ(bytes, FactorText::npz(smallTable()));
}

}  // namespace
}  // namespace Lumivane::Measure
