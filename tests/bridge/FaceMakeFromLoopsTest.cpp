#include "kernel/Outline.h"
#include "kernel/Vec.h"
#include "support/Capture.h"
#include "support/ShotScene.h"
#include "support/Thrown.h"
#include "support/Vectors.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Geometry::Face;
using Geometry::Point3d;
using Kernel::Vec3;
using Loop = std::vector<Point3d>;
using Loops = std::vector<Loop>;

Loop loopOf(const PolygonPoints& points) {
  Loop loop;
  for (const Coordinates& point : points) loop.emplace_back(point[0], point[1], point[2]);
  return loop;
}

// A scene with one object, whose face is made.
class Made {
 public:
  explicit Made(const Loops& loops, int brushNumber = 1) : object(s.addObject()) {
    face = Face::makeFromLoops(&s.scene, &object, loops, brushNumber);
  }

  const std::vector<Geometry::Region*>& regions() const {
    return *object.getRegions()->getRegions();
  }
  std::size_t pointCount() const { return s.scene.getPoints()->getPoints()->size(); }

  PolygonPoints pointsOf(const Geometry::Region& region) const {
    PolygonPoints points;
    for (const int number : *region.getPoints()) {
      points.push_back(s.scene.getPoints()->getPoint(number - 1)->toVector());
    }
    return points;
  }

  ShotScene s;
  Scene::Object& object;
  Face* face;
};

const VectorTests vectors("makeFromLoops", [](const VectorCase& c) {
  Loops loops;
  for (const Json& loop : c.in["loops"]) loops.push_back(loopOf(toVectors(loop)));
  const Made made(loops);
  ASSERT_EQ(c.out.size(), made.regions().size());
  for (std::size_t i = 0; i < made.regions().size(); ++i) {
    const Geometry::Region& region = *made.regions()[i];
    EXPECT_TRUE(sameBits(toVectors(c.out[i][0]), made.pointsOf(region))) << "region " << i;
    EXPECT_EQ(c.out[i][1].get<std::vector<int>>(), *region.getDockingEdges()) << "region " << i;
  }
});

const PolygonPoints Square = {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}};
const PolygonPoints Hole = {{1, 1, 0}, {1, 3, 0}, {3, 3, 0}, {3, 1, 0}};
const PolygonPoints Island = {{6, 0, 0}, {9, 0, 0}, {9, 2, 0}};

PolygonPoints star() {
  PolygonPoints points;
  for (int i = 0; i < 10; ++i) {
    const double angle = i * 3.141592653589793 / 5;
    const double radius = i % 2 == 0 ? 3.0 : 1.25;
    points.push_back({radius * std::cos(angle), radius * std::sin(angle), 0});
  }
  return points;
}

PolygonPoints closedByRepeating(PolygonPoints points) {
  points.push_back(points.front());
  return points;
}

// The plane z = 0 turned about two axes and moved.
PolygonPoints tilted(PolygonPoints points) {
  for (Coordinates& point : points) {
    const double y = 0.8 * point[1] - 0.6 * point[2];
    const double z = 0.6 * point[1] + 0.8 * point[2];
    point = {0.28 * point[0] + 0.96 * z + 5, y - 1, -0.96 * point[0] + 0.28 * z + 2};
  }
  return points;
}

// Twice the area of a closed polygon, by the surveyor's formula about its first point.
Vec3 doubleArea(const PolygonPoints& points) {
  const auto at = [&](std::size_t i) { return Vec3{points[i][0], points[i][1], points[i][2]}; };
  Vec3 sum;
  for (std::size_t i = 1; i + 1 < points.size(); ++i) {
    sum = sum + Kernel::cross(at(i) - at(0), at(i + 1) - at(0));
  }
  return sum;
}

double trianglesArea(const Made& made) {
  double sum = 0.0;
  for (std::size_t i = 0; i < made.regions().size(); i += 2) {
    sum += Kernel::length3(doubleArea(made.pointsOf(*made.regions()[i]))) / 2;
  }
  return sum;
}

// The corner of some loop that a point is.
std::pair<std::size_t, std::size_t> cornerOf(const Coordinates& point,
                                             const std::vector<PolygonPoints>& loops) {
  for (std::size_t l = 0; l < loops.size(); ++l)
    for (std::size_t i = 0; i < loops[l].size(); ++i)
      if (std::abs(point[0] - loops[l][i][0]) < 1e-5 &&
          std::abs(point[1] - loops[l][i][1]) < 1e-5 && std::abs(point[2] - loops[l][i][2]) < 1e-5)
        return {l, i};
  ADD_FAILURE() << "a corner on no loop";
  return {0, 0};
}

bool isLoopEdge(const Coordinates& a, const Coordinates& b,
                const std::vector<PolygonPoints>& loops) {
  const auto [loopA, i] = cornerOf(a, loops);
  const auto [loopB, j] = cornerOf(b, loops);
  const std::size_t count = loops[loopA].size();
  return loopA == loopB && ((i + 1) % count == j || (j + 1) % count == i);
}

// A docking edge of a triangle is exactly an edge on no loop.
void expectDockingEdgesOffLoops(const Made& made, const std::vector<PolygonPoints>& loops) {
  for (const Geometry::Region* region : made.regions()) {
    const PolygonPoints points = made.pointsOf(*region);
    std::vector<int> expected;
    for (std::size_t k = 0; k < 3; ++k) {
      if (!isLoopEdge(points[k], points[(k + 1) % 3], loops)) {
        expected.push_back(static_cast<int>(k) + 1);
      }
    }
    EXPECT_EQ(expected, *region->getDockingEdges());
  }
}

struct Outline {
  std::string name;
  std::vector<PolygonPoints> loops;
  double area;
  std::size_t triangles;
};

std::vector<Outline> outlines() {
  PolygonPoints clockwise(Square.rbegin(), Square.rend());
  return {{"Square", {Square}, 16.0, 2},
          {"ClockwiseSquare", {clockwise}, 16.0, 2},
          {"SquareWithAHole", {Square, Hole}, 12.0, 8},
          {"TwoIslands", {Square, Island}, 19.0, 3},
          {"Star", {star()}, Kernel::length3(doubleArea(star())) / 2, 8}};
}

class Outlines : public ::testing::TestWithParam<Outline> {};

TEST_P(Outlines, AreFilledAndTheirInnerEdgesAreDockingInEveryForm) {
  for (const bool isTilted : {false, true}) {
    for (const bool isRepeated : {false, true}) {
      std::vector<PolygonPoints> corners = GetParam().loops;
      Loops loops;
      for (PolygonPoints& loop : corners) {
        if (isTilted) loop = tilted(loop);
        loops.push_back(loopOf(isRepeated ? closedByRepeating(loop) : loop));
      }
      const Made made(loops);
      const std::string form = std::string(isTilted ? "tilted" : "flat") +
                               (isRepeated ? ", closed by repeating" : ", open");
      EXPECT_EQ(2 * GetParam().triangles, made.regions().size()) << form;
      EXPECT_NEAR(GetParam().area, trianglesArea(made), 1e-5) << form;
      expectDockingEdgesOffLoops(made, corners);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(MakeFromLoops, Outlines, ::testing::ValuesIn(outlines()),
                         [](const auto& outline) { return outline.param.name; });

TEST(MakeFromLoops, NoLoopsMakeAFaceWithoutRegions) {
  const Made made({});
  ASSERT_NE(nullptr, made.face);
  EXPECT_EQ(made.face, made.object.getFaces()->getFace(0));
  EXPECT_TRUE(made.face->getRegions()->empty());
  EXPECT_EQ((Coordinates{0, 0, 1}), made.face->getNormal()->toVector());
  EXPECT_EQ(0u, made.pointCount());
}

TEST(MakeFromLoops, ClosedSquareGivesTwoTrianglesWithOneDockingEdgeEach) {
  const Made made({loopOf(closedByRepeating(Square))}, 7);
  ASSERT_EQ(4u, made.regions().size());
  EXPECT_EQ(12u, made.pointCount());
  for (const Geometry::Region* region : made.regions()) {
    EXPECT_EQ(1u, region->getDockingEdges()->size());
    EXPECT_EQ(7, region->getBrushNumber());
    EXPECT_EQ(1, region->getFaceNumber());
  }
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4}), *made.face->getRegions());
}

TEST(MakeFromLoops, BackFollowsFrontInTheOppositeOrder) {
  const Made made({loopOf(Square)});
  for (std::size_t i = 0; i < made.regions().size(); i += 2) {
    EXPECT_EQ(reversed(made.pointsOf(*made.regions()[i])), made.pointsOf(*made.regions()[i + 1]));
    // Edges 1 and 2 change places, edge 3 stays.
    std::vector<int> expected;
    for (const int edge : *made.regions()[i]->getDockingEdges()) {
      expected.push_back(edge == 3 ? 3 : 3 - edge);
    }
    EXPECT_EQ(expected, *made.regions()[i + 1]->getDockingEdges());
  }
}

TEST(MakeFromLoops, EveryTriangleHasPointsOfItsOwn) {
  const Made made({loopOf(star())});
  std::set<int> numbers;
  for (const Geometry::Region* region : made.regions()) {
    numbers.insert(region->getPoints()->begin(), region->getPoints()->end());
  }
  EXPECT_EQ(3 * made.regions().size(), numbers.size());
  EXPECT_EQ(1, *numbers.begin());
}

TEST(MakeFromLoops, LoopsOfOnePointOrNoneAddNothing) {
  EXPECT_TRUE(Made({loopOf({{1, 2, 3}})}).regions().empty());
  EXPECT_TRUE(Made(Loops(1)).regions().empty());
  EXPECT_TRUE(Made(Loops(2)).regions().empty());
  EXPECT_EQ(4u, Made({loopOf(Square), {}}).regions().size());
  EXPECT_EQ(4u, Made({{}, loopOf(Square), loopOf({{20, 20, 0}})}).regions().size());
}

TEST(MakeFromLoops, OutlineThatCannotBeFilledGivesAFaceAllTheSame) {
  const Made made({loopOf({{0, 0, 0}, {1, 0, 0}})});
  EXPECT_NE(nullptr, made.face);
  EXPECT_TRUE(made.regions().empty());
}

// Single precision moves the corners; up to the precision they still are those of the loop.
TEST(MakeFromLoops, CornersLessThanThePrecisionApartAreOne) {
  const double offset = 32768.0;
  const auto squareAt = [&](double shift) {
    PolygonPoints points = Square;
    for (Coordinates& point : points) point[2] += offset + shift;
    return loopOf(points);
  };
  // The next single-precision numbers are 1/256 apart; 0.0009 from one of them is near enough.
  const Made near({squareAt(0.0009)});
  for (const Geometry::Region* region : near.regions()) {
    EXPECT_EQ(1u, region->getDockingEdges()->size());
  }
  const double atPrecision = std::nextafter(offset + 0.001, offset + 1) - offset;
  const Made apart({squareAt(atPrecision)});
  for (const Geometry::Region* region : apart.regions()) {
    EXPECT_EQ(3u, region->getDockingEdges()->size());
  }
}

TEST(MakeFromLoops, PrecisionIsReadAtRunTime) {
  const double precision = Point3d::Precision;
  Point3d::Precision = 100.0;
  const Made made({loopOf(Square)});
  Point3d::Precision = precision;
  for (const Geometry::Region* region : made.regions()) {
    EXPECT_TRUE(region->getDockingEdges()->empty());
  }
}

TEST(MakeFromLoops, SecondCallContinuesTheNumbers) {
  Made made({loopOf(Square)});
  Face* second = Face::makeFromLoops(&made.s.scene, &made.object, {loopOf(Island)}, 2);
  EXPECT_EQ(second, made.object.getFaces()->getFace(1));
  EXPECT_EQ((std::vector<int>{5, 6}), *second->getRegions());
  EXPECT_EQ(2, made.regions()[4]->getFaceNumber());
  EXPECT_EQ((std::vector<int>{13, 14, 15}), *made.regions()[4]->getPoints());
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4}), *made.face->getRegions());
}

TEST(MakeFromLoops, MissingListsAreMade) {
  Scene::Scene3D scene;
  Scene::Object object;
  Face* face = Face::makeFromLoops(&scene, &object, {loopOf(Square)}, 1);
  ASSERT_NE(nullptr, object.getFaces());
  EXPECT_EQ(face, object.getFaces()->getFace(0));
  EXPECT_EQ(4u, object.getRegions()->getRegions()->size());
  EXPECT_EQ(12u, scene.getPoints()->getPoints()->size());
}

TEST(MakeFromLoops, MissingSceneOrObjectIsRefused) {
  Scene::Scene3D scene;
  Scene::Object object;
  EXPECT_NE("nothing thrown", thrownText<std::invalid_argument>(
                                  [&] { Face::makeFromLoops(nullptr, &object, {}, 1); }));
  EXPECT_NE("nothing thrown", thrownText<std::invalid_argument>(
                                  [&] { Face::makeFromLoops(&scene, nullptr, {}, 1); }));
  EXPECT_EQ(nullptr, object.getFaces());
}

TEST(MakeFromLoops, CoordinatesThatAreNoNumbersEnd) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double value : {nan, infinity, -infinity, 1e300}) {
    PolygonPoints points = Square;
    points[2][0] = value;
    EXPECT_NE(nullptr, Made({loopOf(points)}).face);
  }
}

// Looking for the loop around a hole once went on for ever.
TEST(MakeFromLoops, HolesOfAnOutlineThatIsNotFiniteEnd) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double value : {nan, infinity, -infinity, 1e39, -1e300}) {
    PolygonPoints points = Square;
    points[2][1] = value;
    const Made made({loopOf(points), loopOf(Hole)});
    EXPECT_NE(nullptr, made.face);
    EXPECT_TRUE(made.regions().empty());
  }
}

// The drawn edges of a shot's regions, as pieces between points on the plane.
std::vector<std::pair<Coordinates, Coordinates>> drawnEdges(Shot::Shot2d& shot) {
  std::vector<std::pair<Coordinates, Coordinates>> edges;
  const auto pointAt = [&](int number) {
    return shot.getPoints()->getPoint(number - 1)->toVector();
  };
  for (const Geometry::Region2d* region : *shot.getRegions()->getRegions()) {
    const std::vector<int>& numbers = *region->getPoints();
    for (const Kernel::Chain& chain :
         Kernel::outlineChains(numbers.size(), *region->getDockingEdges())) {
      for (std::size_t i = 0; i + 1 < chain.size(); ++i) {
        edges.emplace_back(pointAt(numbers[chain[i]]), pointAt(numbers[chain[i + 1]]));
      }
    }
  }
  return edges;
}

// A square with a square hole, seen straight on: every drawn piece lies on one of the two outlines.
TEST(MakeFromLoops, OutlineOfItsShotHasNoInnerLine) {
  const PolygonPoints outer = {{4, -2, -2}, {4, 2, -2}, {4, 2, 2}, {4, -2, 2}};
  const PolygonPoints inner = {{4, -1, -1}, {4, -1, 1}, {4, 1, 1}, {4, 1, -1}};
  const auto isOnOutline = [](const Coordinates& point) {
    // Back from the disc onto the wall at the distance 4.
    const double depth = std::sqrt(1 - point[0] * point[0] - point[1] * point[1]);
    const double side = 4 * std::max(std::abs(point[0]), std::abs(point[1])) / depth;
    return std::abs(side - 2) < 0.01 || std::abs(side - 1) < 0.01;
  };
  for (const bool isRepeated : {false, true}) {
    Made made({loopOf(isRepeated ? closedByRepeating(outer) : outer),
               loopOf(isRepeated ? closedByRepeating(inner) : inner)});
    capturedStdout([&] {
      const SharingShot shot = made.s.makeShot();
      ASSERT_NE(nullptr, shot);
      const auto edges = drawnEdges(*shot);
      // Four sides of two outlines in six pieces each.
      EXPECT_GE(edges.size(), 48u);
      for (const auto& [start, end] : edges) {
        EXPECT_TRUE(isOnOutline(start));
        EXPECT_TRUE(isOnOutline({(start[0] + end[0]) / 2, (start[1] + end[1]) / 2}));
      }
    });
  }
}

}  // namespace
}  // namespace Lumivane::Test
