#include "visibility/Polygons.h"

#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <map>
#include <optional>
#include <stdexcept>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

using namespace Samples;

double lengthOf(const SceneCrossing& crossing) { return length(minus(crossing.to, crossing.from)); }

double lengthOf(const std::vector<SceneCrossing>& crossings) {
  double sum = 0.0;
  for (const SceneCrossing& crossing : crossings) sum += lengthOf(crossing);
  return sum;
}

TEST(Crossings, ABeamThatLeavesABoxCrossesItsFaceInASquare) {
  for (const std::uint64_t seed : {1U, 2U, 3U}) {
    Random random(seed);
    const Axes axes = seed == 1 ? Axes() : Axes(random);
    PolygonBuilder builder;
    addBox(builder, 1, {0, 0, 0}, {2, 2, 2}, axes);
    addBox(builder, 2, {1, 0.5, 0.5}, {3, 1.5, 1.5}, axes);
    const std::vector<SceneCrossing> crossings = SceneIndex(builder.scene).crossings();
    ASSERT_EQ(4U, crossings.size());
    for (const SceneCrossing& crossing : crossings) {
      EXPECT_NEAR(1.0, lengthOf(crossing), 1e-12);
      EXPECT_NEAR(2.0, dot(crossing.from, axes.axes[0]), 1e-12);
      EXPECT_NEAR(2.0, dot(crossing.to, axes.axes[0]), 1e-12);
      EXPECT_EQ(1, crossing.regions[0]);  // the high side along the first axis
      EXPECT_LE(6, crossing.regions[1]);
    }
  }
}

// Where the straight line between two points goes through a triangle.
std::optional<Vector> pierced(const Vector& from, const Vector& to, const Vector* triangle) {
  const Vector normal = cross(minus(triangle[1], triangle[0]), minus(triangle[2], triangle[0]));
  const double before = dot(normal, minus(from, triangle[0]));
  const double after = dot(normal, minus(to, triangle[0]));
  if ((before < 0.0) == (after < 0.0)) return {};
  const Vector p = plus(from, times(before / (before - after), minus(to, from)));
  for (std::size_t i = 0; i < 3; ++i) {
    const Vector& a = triangle[i];
    const Vector side = cross(minus(triangle[(i + 1) % 3], a), minus(p, a));
    if (dot(side, normal) < 0.0) return {};
  }
  return p;
}

TEST(Crossings, OfTrianglesEndWhereAnEdgeOfOneGoesThroughTheOther) {
  Random random(7);
  PolygonBuilder builder;
  constexpr int Count = 250;
  for (int i = 0; i < Count; ++i) {
    const Vector middle = random.vector(3.0);
    builder.add({plus(middle, random.vector(1.0)), plus(middle, random.vector(1.0)),
                 plus(middle, random.vector(1.0))},
                i + 1);
  }
  std::map<std::pair<int, int>, std::vector<Vector>> expected;
  const std::vector<Vector>& points = builder.scene.points;
  for (int a = 0; a < Count; ++a)
    for (int b = 0; b < Count; ++b)
      for (std::size_t i = 0; a != b && i < 3; ++i) {
        const Vector* const one = &points[3 * static_cast<std::size_t>(a)];
        const Vector* const other = &points[3 * static_cast<std::size_t>(b)];
        if (const auto p = pierced(one[i], one[(i + 1) % 3], other))
          expected[{std::min(a, b), std::max(a, b)}].push_back(*p);
      }
  const std::vector<SceneCrossing> crossings = SceneIndex(builder.scene).crossings();
  EXPECT_LT(100U, expected.size());
  EXPECT_EQ(expected.size(), crossings.size());
  for (const SceneCrossing& crossing : crossings) {
    const auto& ends = expected[{crossing.regions[0], crossing.regions[1]}];
    ASSERT_EQ(2U, ends.size());
    for (const Vector& end : {crossing.from, crossing.to})
      EXPECT_GT(1e-12, std::min(length(minus(end, ends[0])), length(minus(end, ends[1]))));
  }
}

TEST(Crossings, FacesThatMeetInEdgesAndCornersHaveNone) {
  PolygonBuilder builder;  // points that neighbours share, at a place where rounding shows
  Random random(3);
  const Axes axes(random);
  const auto place = [&](double x, double y) {
    return plus({8e4, 4e5, 10},
                axes({x, y, 0.3 * std::sin(x) * std::cos(1.7 * y) + 0.1 * std::floor(x / 3)}));
  };
  for (int x = 0; x < 12; ++x)
    for (int y = 0; y < 12; ++y) {
      builder.add({place(x, y), place(x, y + 1), place(x + 1, y)}, 1);
      builder.add({place(x + 1, y), place(x, y + 1), place(x + 1, y + 1)}, 1);
    }
  EXPECT_TRUE(SceneIndex(builder.scene).crossings().empty());
}

TEST(Crossings, AnOutlineWithANotchIsCrossedOnBothSidesOfIt) {
  PolygonBuilder builder;
  builder.add(
      {{0, 0, 0}, {0, 3, 0}, {1, 3, 0}, {1, 1, 0}, {2, 1, 0}, {2, 3, 0}, {3, 3, 0}, {3, 0, 0}}, 1);
  builder.add({{-1, 2, -1}, {-1, 2, 1}, {4, 2, 1}, {4, 2, -1}}, 2);
  const std::vector<SceneCrossing> crossings = SceneIndex(builder.scene).crossings();
  ASSERT_EQ(2U, crossings.size());
  EXPECT_NEAR(1.0, lengthOf(crossings[0]), 1e-12);
  EXPECT_NEAR(1.0, lengthOf(crossings[1]), 1e-12);
}

TEST(Crossings, AWallThatIsCutWhereItPassesAFloorRunsThroughItOnce) {
  PolygonBuilder builder;
  builder.add(square(0, 0, 0, 4), 1);
  builder.add({{1, 2, -1}, {1, 2, 0}, {3, 2, 0}, {3, 2, -1}}, 2);
  builder.add({{1, 2, 0}, {1, 2, 1}, {3, 2, 1}, {3, 2, 0}}, 2);
  EXPECT_NEAR(2.0, lengthOf(SceneIndex(builder.scene).crossings()), 1e-12);
}

TEST(Crossings, LayersOfOnePlaneHaveNone) {
  PolygonBuilder builder;
  builder.add(square(0, 0, 0, 2), 1);
  builder.add(square(1, 1, 0, 2), 2);
  EXPECT_TRUE(SceneIndex(builder.scene).crossings().empty());
}

TEST(Crossings, AreTheSameFromAnyNumberOfThreads) {
  Random random(5);
  PolygonBuilder builder;
  for (int i = 0; i < 400; ++i) {
    const Vector low = random.vector(10.0);
    addBox(builder, i + 1, low, plus(low, {1, 2, 1.5}), Axes(random));
  }
  const SceneIndex index(builder.scene);
  const std::vector<SceneCrossing> one = index.crossings(1);
  const std::vector<SceneCrossing> three = index.crossings(3);
  ASSERT_LT(100U, one.size());
  ASSERT_EQ(one.size(), three.size());
  for (std::size_t i = 0; i < one.size(); ++i) {
    EXPECT_EQ(one[i].from, three[i].from);
    EXPECT_EQ(one[i].to, three[i].to);
    EXPECT_EQ(one[i].regions, three[i].regions);
  }
}

TEST(Crossings, CanBeCancelledAndRefuseANegativeNumberOfThreads) {
  PolygonBuilder builder;
  builder.add(square(0, 0, 0, 2), 1);
  const SceneIndex index(builder.scene);
  const std::atomic<bool> cancelled{true};
  EXPECT_THROW(index.crossings(1, &cancelled), Cancelled);
  EXPECT_THROW(index.crossings(-1), std::invalid_argument);
  EXPECT_TRUE(SceneIndex(PolygonBuilder().scene).crossings().empty());
}

}  // namespace
}  // namespace Lumivane::Visibility
