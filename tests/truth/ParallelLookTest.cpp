#include "truth/Builder.h"
#include "truth/HardScenes.h"
#include "truth/Judge.h"

#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

#include <gtest/gtest.h>

namespace Lumivane::Truth {
namespace {

using Visibility::Label;
using Visibility::ParallelMap;
using Visibility::ParallelOptions;
using Visibility::SceneIndex;
using Visibility::Vector;
using Point = ParallelMap::Point;

double dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

const Point& pointOf(const ParallelMap& map, int vertex) {
  return map.points[static_cast<std::size_t>(vertex)];
}

bool contains(const ParallelMap& map, const ParallelMap::Cell& cell, const Point& p) {
  bool inside = false;
  for (std::size_t r = cell.firstRing; r < cell.firstRing + cell.ringCount; ++r) {
    const std::size_t from = map.ringOffsets[r];
    const std::size_t to = map.ringOffsets[r + 1];
    for (std::size_t i = from; i < to; ++i) {
      const Point& a = pointOf(map, map.ringVertices[i]);
      const Point& b = pointOf(map, map.ringVertices[i + 1 == to ? from : i + 1]);
      if ((a[1] > p[1]) == (b[1] > p[1])) continue;
      const double x = a[0] + (p[1] - a[1]) / (b[1] - a[1]) * (b[0] - a[0]);
      if (x > p[0]) inside = !inside;
    }
  }
  return inside;
}

// What a map shows at a point: what lies around all counts where no other cell does.
Label shownAt(const ParallelMap& map, const Point& p, int& cells) {
  Label label;
  cells = 0;
  for (const ParallelMap::Cell& cell : map.cells)
    if (cell.label.object != 0 && contains(map, cell, p)) {
      label = cell.label;
      ++cells;
    }
  return label;
}

double distanceToEdges(const ParallelMap& map, const Point& p) {
  double nearest = std::numeric_limits<double>::max();
  for (const auto& edge : map.edges) {
    const Point& a = pointOf(map, edge.from);
    const Point& b = pointOf(map, edge.to);
    const double dx = b[0] - a[0];
    const double dy = b[1] - a[1];
    const double square = dx * dx + dy * dy;
    double t = square > 0.0 ? ((p[0] - a[0]) * dx + (p[1] - a[1]) * dy) / square : 0.0;
    t = std::clamp(t, 0.0, 1.0);
    nearest = std::min(nearest, std::hypot(p[0] - a[0] - t * dx, p[1] - a[1] - t * dy));
  }
  return nearest;
}

struct Extent {
  Point low{1e300, 1e300};
  Point high{-1e300, -1e300};
  double front = 1e300;  // the least depth along the lines of sight
  double size = 0.0;

  Extent(const ParallelMap& map, const Visibility::PolygonScene& scene) {
    double back = -1e300;
    for (const int corner : scene.corners) {
      const Vector& v = scene.points[static_cast<std::size_t>(corner)];
      const Point p = {dot(v, map.right), dot(v, map.up)};
      for (std::size_t i : {0U, 1U}) {
        low[i] = std::min(low[i], p[i]);
        high[i] = std::max(high[i], p[i]);
      }
      front = std::min(front, dot(v, map.direction));
      back = std::max(back, dot(v, map.direction));
    }
    size = std::max({high[0] - low[0], high[1] - low[1], back - front});
  }
};

Vector eyeOf(const ParallelMap& map, const Point& p, double depth) {
  Vector eye{};
  for (std::size_t i = 0; i < 3; ++i)
    eye[i] = p[0] * map.right[i] + p[1] * map.up[i] + depth * map.direction[i];
  return eye;
}

// Compares a map with rays at random points, and says how many were wrong.
int wrongRays(const Visibility::PolygonScene& scene, const ParallelMap& map, int count,
              std::uint64_t seed, int& asked) {
  const Judge judge(scene);
  const Extent extent(map, scene);
  Random random(seed);
  int wrong = 0;
  for (int i = 0; i < count; ++i) {
    const Point p = {random.between(extent.low[0], extent.high[0]),
                     random.between(extent.low[1], extent.high[1])};
    if (distanceToEdges(map, p) < 1e-7 * extent.size) continue;
    ++asked;
    int cells = 0;
    const Label shown = shownAt(map, p, cells);
    const Vector eye = eyeOf(map, p, extent.front - 0.7 * extent.size);
    const Label seen = judge.seen(eye, map.direction, map.twoSided).label;
    if (cells > 1 || shown != seen) ++wrong;
  }
  return wrong;
}

TEST(ParallelLook, MapsOfHardScenesShowWhatRaysMeetInAnyDirection) {
  int asked = 0;
  for (std::size_t number = 0; number < 160; ++number) {
    const HardScene hard = hardScene(number);
    Random random(number);
    ParallelOptions options;
    options.direction = random.direction();
    options.twoSided = number % 2 == 0;
    const ParallelMap map = SceneIndex(hard.scene).lookAlong(options);
    EXPECT_EQ(0, wrongRays(hard.scene, map, 60, number, asked)) << hard.name;
  }
  EXPECT_LT(5000, asked);
}

Visibility::PolygonScene boxes(int count, std::uint64_t seed) {
  Random random(seed);
  SceneBuilder builder;
  for (int i = 0; i < count; ++i) {
    const Vector low = {std::floor(random.between(0, 10)), std::floor(random.between(0, 10)), 0};
    builder.object().addBox(
        low, {low[0] + 1 + random.below(2), low[1] + 1, 0.5 + 0.5 * random.below(5)});
  }
  return builder.scene();
}

TEST(ParallelLook, MapsAlongTheAxesShowWhatRaysMeetThoughWallsAreEdgeOn) {
  const Visibility::PolygonScene scene = boxes(40, 3);
  int asked = 0;
  for (const Vector direction :
       {Vector{0, 0, -1}, Vector{0, 0, 1}, Vector{1, 0, 0}, Vector{0, -1, 0}, Vector{-1, -1, -1},
        Vector{1, 1, 0}, Vector{0, 3, -1}}) {
    ParallelOptions options;
    options.direction = direction;
    const ParallelMap map = SceneIndex(scene).lookAlong(options);
    EXPECT_EQ(0, wrongRays(scene, map, 500, 7, asked)) << direction[0] << direction[1];
  }
  EXPECT_LT(3000, asked);
}

TEST(ParallelLook, ABoxFromAboveIsOneSquareOfItsOwnSize) {
  const Visibility::PolygonScene scene =
      SceneBuilder().object().addBox({1, 2, 0}, {4, 7, 9}).scene();
  const ParallelMap map = SceneIndex(scene).lookAlong();
  ASSERT_EQ(2U, map.cells.size());
  EXPECT_NEAR(15.0, map.cells[0].area, 1e-12);
  EXPECT_TRUE(std::isinf(map.cells[1].area));
  EXPECT_EQ((Vector{0, 1, 0}), map.up);
  EXPECT_EQ((Vector{1, 0, 0}), map.right);
  double least = 1e300;
  for (const Point& p : map.points) least = std::min(least, p[0] + p[1]);
  EXPECT_NEAR(3.0, least, 1e-12);
}

TEST(ParallelLook, VisiblePartsOfEdgesLieOnTheEdgesThatTheyName) {
  const SceneIndex index(boxes(30, 5));
  ParallelOptions options;
  options.direction = {1, 0.7, -0.6};
  const ParallelMap map = index.lookAlong(options);
  const std::vector<Visibility::SceneEdge> edges = index.edges();
  ASSERT_EQ(map.edges.size(), map.edgeSources.size());
  int named = 0;
  for (std::size_t i = 0; i < map.edges.size(); ++i) {
    if (map.edgeSources[i] < 0) continue;
    ++named;
    const auto& edge = edges.at(static_cast<std::size_t>(map.edgeSources[i]));
    const Point a = {dot(edge.from, map.right), dot(edge.from, map.up)};
    const Point b = {dot(edge.to, map.right), dot(edge.to, map.up)};
    const double length = std::hypot(b[0] - a[0], b[1] - a[1]);
    for (const int vertex : {map.edges[i].from, map.edges[i].to}) {
      const Point& p = pointOf(map, vertex);
      const double off = (b[0] - a[0]) * (p[1] - a[1]) - (b[1] - a[1]) * (p[0] - a[0]);
      EXPECT_LT(std::fabs(off), 1e-10 * length);
    }
  }
  EXPECT_LT(100, named);
}

TEST(ParallelLook, AMapDoesNotDependOnTheNumberOfThreads) {
  const SceneIndex index(boxes(120, 9));
  ParallelOptions options;
  options.direction = {1, 2, -1};
  const ParallelMap one = index.lookAlong(options);
  options.threads = 3;
  const ParallelMap three = index.lookAlong(options);
  EXPECT_EQ(one.points, three.points);
  EXPECT_EQ(one.ringVertices, three.ringVertices);
  EXPECT_EQ(one.edgeSources, three.edgeSources);
}

TEST(ParallelLook, ADirectionOfZeroIsRefused) {
  ParallelOptions options;
  options.direction = {0, 0, 0};
  EXPECT_THROW(SceneIndex(boxes(1, 1)).lookAlong(options), std::invalid_argument);
}

}  // namespace
}  // namespace Lumivane::Truth
