#include "support/Capture.h"
#include "visibility/CubeFaces.h"
#include "visibility/Polygons.h"

#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

using Samples::Axes;
using Samples::Outline;
using Samples::PolygonBuilder;
using Samples::Random;
using Kind = VisibleMap::EdgeKind;

constexpr double Pi = 3.141592653589793;

// The six sides of a box, each an object of its own, seen from within.
PolygonScene room(double low, double high) {
  PolygonBuilder builder;
  int object = 0;
  for (int axis = 0; axis < 3; ++axis)
    for (const double at : {low, high}) {
      const auto u = static_cast<size_t>((axis + 1) % 3);
      const auto v = static_cast<size_t>((axis + 2) % 3);
      Outline outline(4, Vector{at, at, at});
      outline[0][u] = outline[3][u] = low;
      outline[1][u] = outline[2][u] = high;
      outline[0][v] = outline[1][v] = low;
      outline[2][v] = outline[3][v] = high;
      if (at == low) std::reverse(outline.begin(), outline.end());
      builder.add(outline, ++object);
    }
  return builder.scene;
}

PolygonScene triangles(Random& random, int count) {
  PolygonBuilder builder;
  for (int i = 0; i < count; ++i) {
    const Vector middle = random.vector(3.0);
    Outline outline;
    for (int k = 0; k < 3; ++k) outline.push_back(Samples::plus(middle, random.vector(2.0)));
    builder.add(outline, i + 1);
  }
  return builder.scene;
}

double solidAngles(const VisibleMap& map) {
  double sum = 0.0;
  for (const VisibleMap::Cell& cell : map.cells) sum += cell.solidAngle;
  return sum;
}

LookOptions wholeSphere() {
  LookOptions options;
  options.field = Field::Sphere;
  return options;
}

// Squares beside each other at two heights by turns, each an object of its own, seen from above.
PolygonScene field(int side) {
  PolygonBuilder builder;
  for (int i = 0; i < side * side; ++i) {
    const double x = i % side - 0.5 * side;
    const double y = i / side - 0.5 * side;
    const double z = (i % side + i / side) % 2 == 0 ? 0.0 : -0.25;
    builder.add({{x, y, z}, {x, y + 0.9, z}, {x + 0.9, y + 0.9, z}, {x + 0.9, y, z}}, i + 1);
  }
  return builder.scene;
}

// More polygons than a look keeps at a time, and more pieces than fit into one block of a list.
TEST(Look, OfManyThousandsSeenEachIsThereOnce) {
  constexpr int Side = 210;
  const SceneIndex index(field(Side));
  LookOptions options;
  options.forward = {0.01, 0.02, -1.0};
  options.threads = 1;
  const Vector eye{3.3, -2.1, 200.0};
  const VisibleMap map = index.look(eye, options);
  ASSERT_EQ(map.cells.size(), static_cast<std::size_t>(Side) * Side + 1);
  std::size_t wrong = 0;
  for (std::size_t i = 0; i + 1 < map.cells.size(); ++i) {
    const VisibleMap::Cell& cell = map.cells[i];
    if (cell.label.object != static_cast<int>(i) + 1 || cell.ringCount != 1) ++wrong;
  }
  EXPECT_EQ(wrong, 0u);
  const auto ends = std::count_if(map.edges.begin(), map.edges.end(),
                                  [](const auto& edge) { return edge.kind == Kind::Field; });
  EXPECT_GT(map.edges.size(), 4u * Side * Side);
  EXPECT_EQ(map.ringVertices.size() + static_cast<std::size_t>(ends), 2 * map.edges.size());
  EXPECT_NEAR(solidAngles(map), 2.0 * Pi, 1e-9);
  options.threads = 3;
  const VisibleMap other = index.look(eye, options);
  EXPECT_EQ(map.vertices, other.vertices);
  EXPECT_EQ(map.ringVertices, other.ringVertices);
  EXPECT_EQ(map.ringOffsets, other.ringOffsets);
}

TEST(Look, ARoomSeenFromItsMiddleIsSixEqualCells) {
  const VisibleMap map = SceneIndex(room(-1.0, 1.0)).look({0, 0, 0}, wholeSphere());
  ASSERT_EQ(6U, map.cells.size());
  EXPECT_EQ(12U, map.edges.size());
  EXPECT_EQ(8U, map.vertices.size());
  for (const VisibleMap::Cell& cell : map.cells) {
    EXPECT_NEAR(4.0 * Pi / 6.0, cell.solidAngle, 1e-14);
    EXPECT_NEAR(1.0, cell.minDistance, 1e-14);
    EXPECT_NEAR(std::sqrt(3.0), cell.maxDistance, 1e-14);
    EXPECT_EQ(1U, cell.ringCount);
  }
}

TEST(Look, EdgesThatTwoRegionsShareAreCreasesWherePointsAreTheSame) {
  const VisibleMap map = SceneIndex(room(-1.0, 1.0)).look({0.2, 0.1, 0}, wholeSphere());
  for (const VisibleMap::Edge& edge : map.edges) EXPECT_EQ(Kind::Crease, edge.kind);
}

TEST(Look, WithoutPolygonsAllIsSky) {
  const VisibleMap sphere = SceneIndex(PolygonScene{}).look({1, 2, 3}, wholeSphere());
  ASSERT_EQ(1U, sphere.cells.size());
  EXPECT_EQ((Label{0, 0, 0}), sphere.cells[0].label);
  EXPECT_DOUBLE_EQ(4.0 * Pi, sphere.cells[0].solidAngle);
  EXPECT_EQ(0U, sphere.cells[0].ringCount);
  const VisibleMap half = SceneIndex(PolygonScene{}).look({1, 2, 3});
  ASSERT_EQ(1U, half.cells.size());
  EXPECT_NEAR(2.0 * Pi, half.cells[0].solidAngle, 1e-14);
  EXPECT_NEAR(1.0, half.cells[0].viewFactor, 1e-14);
  for (const VisibleMap::Edge& edge : half.edges) EXPECT_EQ(Kind::Field, edge.kind);
}

TEST(Look, TwoSquaresThatRunThroughEachOtherMeetInACrossing) {
  PolygonBuilder builder;
  builder.add({{2, -1, -1}, {4, -1, 1}, {4, 1, 1}, {2, 1, -1}}, 1);
  builder.add({{2, -1, 1}, {4, -1, -1}, {4, 1, -1}, {2, 1, 1}}, 2);
  LookOptions options = wholeSphere();
  options.twoSided = true;
  const VisibleMap map = SceneIndex(builder.scene).look({0, 0, 0}, options);
  int crossings = 0;
  for (const VisibleMap::Edge& edge : map.edges) {
    if (edge.kind != Kind::Crossing) continue;
    ++crossings;
    // They meet where x is 3 and z is 0.
    EXPECT_NEAR(0.0, map.vertices[static_cast<size_t>(edge.from)][2], 1e-14);
  }
  EXPECT_EQ(1, crossings);
  EXPECT_NEAR(4.0 * Pi, solidAngles(map), 1e-13);
}

TEST(Look, ACellAroundAnotherHasItsHoleAfterItsOuterRing) {
  PolygonBuilder builder;
  builder.add({{4, -3, -3}, {4, -3, 3}, {4, 3, 3}, {4, 3, -3}}, 1);
  builder.add({{2, -0.5, -0.5}, {2, -0.5, 0.5}, {2, 0.5, 0.5}, {2, 0.5, -0.5}}, 2);
  LookOptions options;
  options.twoSided = true;
  const VisibleMap map = SceneIndex(builder.scene).look({0, 0, 0}, options);
  ASSERT_EQ(3U, map.cells.size());
  ASSERT_EQ(2U, map.cells[0].ringCount);
  const auto reach = [&](const std::vector<int>& ring) {
    double greatest = 0.0;
    for (const int v : ring)
      greatest = std::max(greatest, std::acos(map.vertices[static_cast<size_t>(v)][0]));
    return greatest;
  };
  EXPECT_GT(reach(map.rings(0)[0]), reach(map.rings(0)[1]));
  EXPECT_NEAR(4.0, map.cells[0].minDistance, 4.0 * 0.05);  // its middle is hidden
  EXPECT_GT(map.cells[0].minDistance, 4.0);
  EXPECT_DOUBLE_EQ(2.0, map.cells[1].minDistance);
}

TEST(Look, AnObjectAloneIsMeasuredAsIfNothingStoodInFront) {
  PolygonBuilder builder;
  builder.add({{4, -1, -1}, {4, -1, 1}, {4, 1, 1}, {4, 1, -1}}, 1);
  builder.add({{2, -3, -3}, {2, -3, 3}, {2, 3, 3}, {2, 3, -3}}, 2);
  LookOptions options;
  options.twoSided = true;
  options.alone = true;
  const VisibleMap both = SceneIndex(builder.scene).look({0, 0, 0}, options);
  PolygonBuilder first;
  first.add({{4, -1, -1}, {4, -1, 1}, {4, 1, 1}, {4, 1, -1}}, 1);
  options.alone = false;
  const VisibleMap one = SceneIndex(first.scene).look({0, 0, 0}, options);
  ASSERT_EQ(2U, both.alone.size());
  EXPECT_NEAR(one.cells[0].solidAngle, both.alone[0], 1e-14);
  const MapShares shares(both);
  EXPECT_EQ(0.0, shares.visibleFractions()[0]);
  EXPECT_NEAR(1.0, shares.visibleFractions()[1], 1e-12);
}

bool sameBytes(const VisibleMap& a, const VisibleMap& b) {
  const auto equal = [](const auto& s, const auto& t) {
    return s.size() == t.size() &&
           (s.empty() || std::memcmp(s.data(), t.data(), s.size() * sizeof(s[0])) == 0);
  };
  bool cells = a.cells.size() == b.cells.size();
  for (size_t i = 0; cells && i < a.cells.size(); ++i)
    cells = a.cells[i].label == b.cells[i].label &&
            a.cells[i].solidAngle == b.cells[i].solidAngle &&
            a.cells[i].viewFactor == b.cells[i].viewFactor &&
            a.cells[i].minDistance == b.cells[i].minDistance &&
            a.cells[i].maxDistance == b.cells[i].maxDistance;
  return cells && equal(a.vertices, b.vertices) && equal(a.ringOffsets, b.ringOffsets) &&
         equal(a.ringVertices, b.ringVertices) && equal(a.edges, b.edges);
}

TEST(LookProperty, AnyNumberOfThreadsGivesTheSameBytes) {
  Random random(11);
  const SceneIndex index(triangles(random, 400));
  LookOptions options = wholeSphere();
  options.twoSided = true;
  const VisibleMap one = index.look({0.1, 0.2, 0.3}, options);
  for (const int threads : {2, 8, 0}) {
    options.threads = threads;
    EXPECT_TRUE(sameBytes(one, index.look({0.1, 0.2, 0.3}, options)));
  }
}

TEST(LookProperty, AnyNumberOfThreadsGivesTheSameBytesOfAMapOfThousandsOfCells) {
  Samples::PolygonBuilder builder;
  Random random(12);
  constexpr int Rows = 60;
  for (int i = 0; i < Rows * Rows; ++i)
    builder.add(Samples::square(i % Rows - Rows / 2, i / Rows - Rows / 2,
                                -10.0 - random.between(0.0, 3.0), 0.9),
                i + 1);
  const SceneIndex index(builder.scene);
  LookOptions options;
  options.forward = {0, 0, -1};
  options.twoSided = true;
  const VisibleMap one = index.look({0.1, 0.2, 0.3}, options);
  EXPECT_GT(one.cells.size(), size_t{Rows * Rows});
  for (const int threads : {2, 3, 8}) {
    options.threads = threads;
    EXPECT_TRUE(sameBytes(one, index.look({0.1, 0.2, 0.3}, options)));
  }
}

// The label that a map has in a direction: that of the side from which the nearest edge on a walk
// along a great circle is reached. -1 where no edge is met.
int cellAt(const VisibleMap& map, const Vector& d, double& nearest) {
  using Samples::cross;
  using Samples::dot;
  using Samples::unit;
  const Vector helper = std::abs(d[0]) < 0.6 ? Vector{1, 0.1, 0.07} : Vector{0.05, 1, 0.03};
  const Vector pole = unit(cross(d, helper));
  const Vector ahead = cross(pole, d);
  double least = 1e9;
  int cell = -1;
  nearest = 1e9;
  for (const VisibleMap::Edge& edge : map.edges) {
    const Vector& a = map.vertices[static_cast<size_t>(edge.from)];
    const Vector& b = map.vertices[static_cast<size_t>(edge.to)];
    const Vector normal = cross(a, b);
    const bool beside = dot(cross(normal, a), d) > 0 && dot(cross(b, normal), d) > 0;
    nearest =
        std::min(nearest, beside ? std::abs(std::asin(dot(normal, d) / Samples::length(normal)))
                                 : std::min(std::acos(std::min(1.0, dot(a, d))),
                                            std::acos(std::min(1.0, dot(b, d)))));
    const double atA = dot(pole, a);
    const double atB = dot(pole, b);
    if ((atA >= 0) == (atB >= 0)) continue;
    const double sign = atA >= 0 ? 1.0 : -1.0;
    const Vector meeting =
        Samples::times(sign, Samples::minus(Samples::times(atA, b), Samples::times(atB, a)));
    double angle = std::atan2(dot(meeting, ahead), dot(meeting, d));
    if (angle < 0) angle += 2 * Pi;
    if (angle >= least) continue;
    least = angle;
    const Vector onwards =
        Samples::minus(Samples::times(std::cos(angle), ahead), Samples::times(std::sin(angle), d));
    cell = dot(normal, onwards) > 0 ? edge.left : edge.right;
  }
  return cell;
}

TEST(LookProperty, CellsHaveTheLabelsOfSingleDirections) {
  Random random(12);
  for (int scene = 0; scene < 30; ++scene) {
    const SceneIndex index(triangles(random, 5 + 3 * scene));
    LookOptions options = scene % 2 == 0 ? wholeSphere() : LookOptions{};
    options.twoSided = scene % 3 != 0;
    options.forward = random.direction();
    const Vector eye = random.vector(0.5);
    const VisibleMap map = index.look(eye, options);
    EXPECT_NEAR(map.fieldSolidAngle(), solidAngles(map), 1e-11);
    std::vector<Vector> directions;
    for (int i = 0; i < 200; ++i) {
      Vector d = random.direction();
      if (map.field == Field::Hemisphere && Samples::dot(d, map.forward) < 0)
        d = Samples::times(-1.0, d);
      directions.push_back(d);
    }
    const std::vector<Seen> seen = index.seenIn(eye, directions, options.twoSided);
    for (size_t i = 0; i < directions.size(); ++i) {
      double nearest = 0.0;
      const int cell = cellAt(map, directions[i], nearest);
      if (nearest < 1e-9 || cell < 0) continue;
      EXPECT_EQ(seen[i].label, map.cells[static_cast<size_t>(cell)].label);
    }
  }
}

TEST(Look, UpAlongForwardIsReplacedByTheAxisFarthestFromIt) {
  LookOptions options;
  options.forward = {0, 0, 2};
  options.up = {0, 0, -5};
  const VisibleMap map = SceneIndex(PolygonScene{}).look({0, 0, 0}, options);
  EXPECT_EQ((Vector{0, 0, 1}), map.forward);
  EXPECT_EQ((Vector{0, 1, 0}), map.up);
  options.forward = {1, 0, 0};
  options.up = {0, 0, 0};
  EXPECT_EQ((Vector{0, 0, 1}), SceneIndex(PolygonScene{}).look({0, 0, 0}, options).up);
}

TEST(Look, BadEyesAndDirectionsAreRefused) {
  const SceneIndex index{PolygonScene{}};
  const double nan = std::numeric_limits<double>::quiet_NaN();
  LookOptions options;
  EXPECT_THROW(index.look({0, nan, 0}), std::invalid_argument);
  options.forward = {0, 0, 0};
  EXPECT_THROW(index.look({0, 0, 0}, options), std::invalid_argument);
  options = {};
  options.up = {nan, 0, 0};
  EXPECT_THROW(index.look({0, 0, 0}, options), std::invalid_argument);
  options = {};
  options.threads = -1;
  EXPECT_THROW(index.look({0, 0, 0}, options), std::invalid_argument);
}

TEST(Look, DirectionsMayHaveAnyLength) {
  const SceneIndex index(room(-1.0, 1.0));
  LookOptions options;
  options.forward = {1e300, 1e300, 0};
  const double large = index.look({0, 0, 0}, options).forward[0];
  options.forward = {1e-300, 1e-300, 0};
  EXPECT_DOUBLE_EQ(std::sqrt(0.5), large);
  EXPECT_DOUBLE_EQ(std::sqrt(0.5), index.look({0, 0, 0}, options).forward[0]);
}

TEST(Look, ACancelledLookThrowsAndTheIndexStaysUsable) {
  Random random(13);
  const SceneIndex index(triangles(random, 300));
  std::atomic<bool> cancelled{true};
  LookOptions options = wholeSphere();
  options.cancelled = &cancelled;
  EXPECT_THROW(index.look({0, 0, 0}, options), Cancelled);
  cancelled = false;
  EXPECT_NEAR(4.0 * Pi, solidAngles(index.look({0, 0, 0}, options)), 1e-11);
}

TEST(Look, ProgressRisesFromNothingToAllAndItsExceptionsComeThrough) {
  Random random(14);
  const SceneIndex index(triangles(random, 50));
  std::vector<double> parts;
  LookOptions options;
  options.progress = [&](double part) { parts.push_back(part); };
  index.look({0, 0, 0}, options);
  ASSERT_GE(parts.size(), 2U);
  EXPECT_EQ(0.0, parts.front());
  EXPECT_EQ(1.0, parts.back());
  EXPECT_TRUE(std::is_sorted(parts.begin(), parts.end()));
  options.progress = [](double) { throw std::runtime_error("no more"); };
  EXPECT_THROW(index.look({0, 0, 0}, options), std::runtime_error);
}

TEST(Look, NothingIsPrinted) {
  const auto work = [] {
    Random random(16);
    const SceneIndex index(triangles(random, 50));
    LookOptions options = wholeSphere();
    options.threads = 2;
    options.alone = true;
    index.look({0, 0, 0}, options);
    index.seenIn({0, 0, 0}, {{1, 0, 0}});
    EXPECT_THROW(index.seenIn({0, 0, 0}, {{0, 0, 0}}), std::invalid_argument);
  };
  using Lumivane::Test::capturedStderr;
  EXPECT_EQ("", Lumivane::Test::capturedStdout([&] { EXPECT_EQ("", capturedStderr(work)); }));
}

TEST(Look, TwoLooksAtATimeDoNotDisturbEachOther) {
  Random random(15);
  const SceneIndex index(triangles(random, 200));
  const VisibleMap alone = index.look({0, 0, 0}, wholeSphere());
  VisibleMap first;
  VisibleMap second;
  std::thread other([&] { first = index.look({0, 0, 0}, wholeSphere()); });
  second = index.look({0, 0, 0}, wholeSphere());
  other.join();
  EXPECT_TRUE(sameBytes(alone, first));
  EXPECT_TRUE(sameBytes(alone, second));
}

// A point in front of the eye at the origin, at a place of the plane x = 1.
Vector placed(double x, double y, double z) { return {x, x * y, x * z}; }

// A wall whose upper edge meets those of eight strips behind it at angles of half a thousandth.
void addFlatMeetings(PolygonBuilder& builder) {
  const auto wallTop = [](double y) { return 0.03 + 3e-4 * y; };
  builder.add({placed(10, -0.6, -0.3), placed(10, 0.6, -0.3), placed(10, 0.6, wallTop(0.6)),
               placed(10, -0.6, wallTop(-0.6))},
              1);
  for (int i = 0; i < 8; ++i) {
    const double middle = -0.3 + 0.08 * i;
    const double steeper = 5e-4 + 1e-4 * i;
    const auto top = [&](double y) { return wallTop(y) + steeper * (y - middle); };
    const double from = middle - 0.03;
    const double to = middle + 0.02;
    builder.add({placed(20, from, -0.2), placed(20, to, -0.2), placed(20, to, top(to)),
                 placed(20, from, top(from))},
                2 + i);
  }
}

TEST(Look, WhatIsHiddenMovesNoVertexWhereLinesMeetAtSmallAngles) {
  LookOptions options;
  options.forward = {1, 0, 0};
  options.twoSided = true;
  PolygonBuilder few;
  addFlatMeetings(few);
  const VisibleMap map = SceneIndex(few.scene).look({0, 0, 0}, options);
  for (const int row : {4, 9, 25}) {
    PolygonBuilder many;
    addFlatMeetings(many);
    for (int i = 0; i < 60 * row; ++i) {
      const double y = -0.5 + i / row / 60.0;
      const double z = 0.025 - 0.2 * (i % row) / row;
      many.add({placed(50, y, z), placed(50, y + 0.01, z), placed(50, y, z - 0.005)}, 10 + i);
    }
    const VisibleMap other = SceneIndex(many.scene).look({0, 0, 0}, options);
    ASSERT_EQ(map.cells.size(), other.cells.size());
    EXPECT_TRUE(map.vertices == other.vertices);
  }
}

// A wall behind all that the next tests look at, and behind it as many rows of small triangles.
PolygonScene withHidden(PolygonBuilder builder, int rows) {
  const int wall = builder.scene.labels.back().object + 1;
  builder.add(
      {placed(40, -1.5, -1.5), placed(40, 1.5, -1.5), placed(40, 1.5, 1.5), placed(40, -1.5, 1.5)},
      wall);
  for (int i = 0; i < 60 * rows; ++i) {
    const double y = -0.9 + i / rows * 0.03;
    const double z = 0.7 - 1.4 * (i % rows) / rows;
    builder.add({placed(50, y, z), placed(50, y + 0.02, z), placed(50, y, z - 0.01)}, wall + 1 + i);
  }
  return builder.scene;
}

// Strips behind each other of which all have an edge on one line, but for what they are apart.
void addStrips(PolygonBuilder& builder, Random& random, double apart) {
  constexpr int Strips = 60;
  for (int i = 0; i < Strips; ++i) {
    const double far = 1.0 + 0.01 * i;
    const auto off = [&] { return apart * random.between(-1.0, 1.0) * Strips / 8; };
    const double from = random.between(-1.0, 0.9);
    const double to = random.between(from, 1.0);
    const double height = random.between(0.1, 0.8) * (random.below(2) == 0 ? 1.0 : -1.0);
    const double start = off();
    const double end = off();
    const auto at = [&](double y, double z) { return placed(far, y, 0.13 + 0.31 * y + z); };
    builder.add({at(from, start), at(to, end), at(to, end + height), at(from, start + height)},
                i + 1);
  }
}

TEST(LookProperty, WhatIsHiddenHasNoPartInWhichOfLinesThatAllButCoincideIsSeen) {
  LookOptions options;
  options.forward = {1, 0, 0};
  options.twoSided = true;
  for (int scene = 0; scene < 24; ++scene) {
    Random random(static_cast<std::uint64_t>(scene));
    PolygonBuilder builder;
    addStrips(builder, random, std::pow(10.0, random.between(-15.0, -10.0)));
    const VisibleMap map = SceneIndex(withHidden(builder, 0)).look({0, 0, 0}, options);
    for (const int rows : {1, 12, 30}) {
      options.threads = 1 + rows % 2;
      EXPECT_TRUE(sameBytes(map, SceneIndex(withHidden(builder, rows)).look({0, 0, 0}, options)))
          << "scene " << scene << ", " << rows << " rows";
    }
  }
}

TEST(LookProperty, WhatIsHiddenHasNoPartEitherWhereLooksFindOtherRegionsThanTheOneBefore) {
  LookOptions options;
  options.forward = {1, 0, 0};
  options.twoSided = true;
  Random random(31);
  PolygonBuilder builder;
  // Of these the last needs more than two looks.
  for (int scene = 0; scene <= 220; ++scene) {
    builder = PolygonBuilder();
    addStrips(builder, random, std::pow(10.0, random.between(-15.0, -10.0)));
  }
  const VisibleMap map = SceneIndex(withHidden(builder, 0)).look({0, 0, 0}, options);
  for (const int rows : {12, 30})
    EXPECT_TRUE(sameBytes(map, SceneIndex(withHidden(builder, rows)).look({0, 0, 0}, options)));
}

// A point that an eye in the origin sees on the first face of its cube, 2^50 units wide on either
// side, so many of them from another place.
Vector onCube(double x, double y, double unitsAside) {
  const CubeFace& f = CubeFaces[0];
  FrameVector v{};
  v.c[f.axis] = f.sign;
  v.c[f.u] = x + unitsAside * 0x1p-50;
  v.c[f.v] = y;
  const Kernel::Vec3 p = toScene(v);
  return {p.x, p.y, p.z};
}

TEST(Look, ACornerIsOneAlsoWhereAnotherLiesBesideItBeforeItsEdgesHaveParted) {
  for (const double units : {250.0, 350.0, 450.0, 550.0}) {
    PolygonBuilder builder;
    const Vector corner = onCube(0.1, 0.1, 0.0);
    builder.add({corner, onCube(0.5, 0.1, 0.0), onCube(0.5, 0.14, 0.0)}, 1);
    builder.add({onCube(0.1, -0.4, units), onCube(0.4, -0.4, 0.0), onCube(0.3, -0.2, 0.0)}, 2);
    LookOptions options = wholeSphere();
    options.twoSided = true;
    const VisibleMap map = SceneIndex(builder.scene).look({0, 0, 0}, options);
    ASSERT_EQ(6U, map.vertices.size());
    double nearest = 1.0;
    for (const Vector& vertex : map.vertices) {
      const Vector apart = Samples::minus(vertex, Samples::unit(corner));
      nearest = std::min(nearest, std::sqrt(Samples::dot(apart, apart)));
    }
    EXPECT_LE(nearest, 4e-16) << units;
  }
}

// Two walls of a tower from far below, and a far larger one in front, whose edges run along those
// of the tower: slivers arise between them and are dropped.
TEST(Look, AnEdgeIsWholeWhereOnlySliversHadEndedOnIt) {
  const Vector walls[3][4] = {{{-1.0786285241620563, -0.90664780269047707, -0.12062449477827303},
                               {-1.0135711481932406, -0.46162895905962575, 0.097837782618791641},
                               {-0.065057375968815723, -0.44501884363085131, -0.21846227739706467},
                               {-0.13011475193763145, -0.89003768726170263, -0.43692455479412934}},
                              {{-1.2087432760996877, -1.7966854899521798, -0.55754904957240237},
                               {-1.0135711481932406, -0.46162895905962575, 0.097837782618791641},
                               {-1.3023474893792877, -0.0060446975675476633, -0.74421400049903863},
                               {-1.4975196172857348, -1.3411012284601016, -1.3996008326902327}},
                              {{-7.1086696467840849, -12.260088577642996, 6.492845595056016},
                               {-4.7666041119067177, 3.760589793067652, 14.357487581350343},
                               {-9.9645782532555618, 11.961106499925057, -0.79944451477060108},
                               {-12.306643788132929, -4.0595718707855912, -8.6640865010649293}}};
  PolygonBuilder builder;
  for (int i = 0; i < 3; ++i) builder.add(Outline(std::begin(walls[i]), std::end(walls[i])), 1 + i);
  LookOptions options = wholeSphere();
  options.edgeSources = true;
  const VisibleMap map =
      SceneIndex(builder.scene)
          .look({2.3675665357024691, 0.0079368662779016885, 1.5675030160020413}, options);
  std::vector<std::vector<size_t>> edgesAt(map.vertices.size());
  for (size_t i = 0; i < map.edges.size(); ++i)
    for (const int vertex : {map.edges[i].from, map.edges[i].to})
      edgesAt[static_cast<size_t>(vertex)].push_back(i);
  for (const std::vector<size_t>& edges : edgesAt)
    EXPECT_FALSE(edges.size() == 2 && map.edgeSources[edges[0]] >= 0 &&
                 map.edgeSources[edges[0]] == map.edgeSources[edges[1]]);
}

TEST(Look, AnEyeInTheMiddleOfAWallSeesNothingOfIt) {
  PolygonBuilder builder;
  builder.add({{0, -1, -1}, {0, -1, 1}, {0, 1, 1}, {0, 1, -1}}, 1);
  LookOptions options = wholeSphere();
  options.twoSided = true;
  for (const Vector& eye : {Vector{0, 0, 0}, Vector{0, 1, 1}, Vector{0, 0, 1}, Vector{0, 5, 0}}) {
    const VisibleMap map = SceneIndex(builder.scene).look(eye, options);
    ASSERT_EQ(1U, map.cells.size());
    EXPECT_EQ(0, map.cells[0].label.object);
  }
}

}  // namespace
}  // namespace Lumivane::Visibility
