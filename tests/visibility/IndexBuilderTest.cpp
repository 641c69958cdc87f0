#include "visibility/IndexBuilder.h"
#include "visibility/Polygons.h"

#include <algorithm>
#include <limits>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

using Kernel::Vec3;
using Samples::Axes;
using Samples::Outline;
using Samples::PolygonBuilder;
using Samples::Random;
using Samples::square;

IndexState indexOf(const PolygonScene& scene, const IndexOptions& options = {}) {
  IndexState state;
  buildIndex(scene, options, state);
  return state;
}

IndexState indexOf(const Outline& outline) {
  PolygonBuilder builder;
  builder.add(outline);
  return indexOf(builder.scene);
}

std::size_t cornerCount(const IndexState& state, std::size_t polygon) {
  return static_cast<std::size_t>(state.cornerOffsets.at(polygon + 1) -
                                  state.cornerOffsets.at(polygon));
}

Vec3 cornerOf(const IndexState& state, std::size_t polygon, std::size_t k) {
  const auto c = static_cast<std::size_t>(state.cornerOffsets.at(polygon)) + k;
  return state.vertices.at(static_cast<std::size_t>(state.cornerVertices.at(c)));
}

// The vector area of a polygon, twice.
Vec3 areaOf(const IndexState& state, std::size_t polygon) {
  Vec3 sum;
  const std::size_t n = cornerCount(state, polygon);
  const Vec3 first = cornerOf(state, polygon, 0);
  for (std::size_t k = 1; k + 1 < n; ++k)
    sum = sum + Kernel::cross(cornerOf(state, polygon, k) - first,
                              cornerOf(state, polygon, k + 1) - first);
  return sum;
}

Outline dented(Random& random, int corners, double depth) {
  Outline outline;
  for (int i = 0; i < corners; ++i) {
    const double angle = 6.283185307179586 * i / corners;
    const double r = random.between(0.3, 1.0);
    outline.push_back({r * std::cos(angle), r * std::sin(angle), random.between(-depth, depth)});
  }
  return outline;
}

TEST(IndexBuilder, PointsWithEqualCoordinatesAreOneVertex) {
  PolygonBuilder builder;
  builder.add(square(0, 0, 0, 1));
  builder.add(square(1, 0, -0.0, 1));
  const IndexState state = indexOf(builder.scene);
  EXPECT_EQ(6U, state.vertices.size());
  EXPECT_EQ(7U, state.edgeVertices.size() / 2);
}

TEST(IndexBuilder, AnEdgeOfTwoPolygonsHasOneNumberAndItsVerticesInOrder) {
  PolygonBuilder builder;
  for (int i = 0; i < 20; ++i)
    for (int j = 0; j < 20; ++j) builder.add(square(i, j, 0.1 * i, 1));
  const IndexState state = indexOf(builder.scene);
  std::map<std::pair<int, int>, int> numbers;
  std::set<int> used;
  for (std::size_t i = 0; i < state.polygonCount(); ++i) {
    const std::size_t n = cornerCount(state, i);
    for (std::size_t k = 0; k < n; ++k) {
      const auto first = static_cast<std::size_t>(state.cornerOffsets[i]);
      const int a = state.cornerVertices[first + k];
      const int b = state.cornerVertices[first + (k + 1) % n];
      const int edge = state.cornerEdges[first + k];
      EXPECT_EQ(std::min(a, b), state.edgeVertices.at(2 * static_cast<std::size_t>(edge)));
      EXPECT_EQ(std::max(a, b), state.edgeVertices.at(2 * static_cast<std::size_t>(edge) + 1));
      const auto [found, isNew] = numbers.insert({{std::min(a, b), std::max(a, b)}, edge});
      EXPECT_EQ(found->second, edge);
      EXPECT_EQ(isNew, used.insert(edge).second);
    }
  }
  EXPECT_EQ(numbers.size(), state.edgeVertices.size() / 2);
}

TEST(IndexBuilder, RepeatedCornersAreLeftOut) {
  const IndexState state =
      indexOf({{0, 0, 0}, {0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 1, 0}, {1, 0, 0}, {0, 0, 0}});
  EXPECT_EQ(4U, cornerCount(state, 0));
}

TEST(IndexBuilder, AMarkStaysWithTheEdgeThatLeavesTheLastOfRepeatedCorners) {
  PolygonBuilder builder;
  builder.add({{0, 0, 0}, {0, 0, 0}, {0, 1, 0}, {1, 0, 0}});
  builder.scene.docking = {0, 1, 0, 0};
  const IndexState state = indexOf(builder.scene);
  for (std::size_t c = 0; c < 3; ++c) {
    const Vec3 from = state.vertices[static_cast<std::size_t>(state.cornerVertices[c])];
    EXPECT_EQ(from == Vec3{} ? 1 : 0, state.cornerInner[c]);
  }
}

TEST(IndexBuilder, OutlinesWithoutANormalAreDroppedAndCounted) {
  PolygonBuilder builder;
  builder.add({});
  builder.add({{0, 0, 0}, {1, 0, 0}});
  builder.add({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}, {0.5, 0.5, 0.5}});
  builder.add({{0, 0, 0}, {1, 1, 0}, {1, 0, 0}, {0, 1, 0}});
  builder.add(square(0, 0, 0, 1));
  const IndexState state = indexOf(builder.scene);
  EXPECT_EQ(4U, state.droppedRegions);
  ASSERT_EQ(1U, state.polygonCount());
  EXPECT_EQ(4, state.regions[0]);
  EXPECT_EQ((Label{1, -1, 5}), state.names->regions[4]);
}

TEST(IndexBuilder, TheSideFromWhichCornersRunClockwiseIsMinusTheNormal) {
  const IndexState state = indexOf(square(0, 0, 0, 2));  // clockwise from above
  EXPECT_EQ((Vec3{0, 0, -1}), state.planes[0].normal);
  EXPECT_EQ((Vec3{1, 1, 0}), state.planes[0].point);
  EXPECT_DOUBLE_EQ(std::sqrt(8.0), state.sizes[0]);
}

TEST(IndexBuilder, ARegionIsCutOnlyIfACornerIsFartherOffThanFlatnessAllows) {
  // The mean plane is off by a quarter of the height at every corner.
  const double diagonal = std::sqrt(2.0);
  const auto lifted = [&](double part) {
    return indexOf({{0, 0, 0}, {0, 1, 0}, {1, 1, 4.0 * part * 1e-4 * diagonal}, {1, 0, 0}});
  };
  EXPECT_EQ(0U, lifted(0.99).triangulatedRegions);
  EXPECT_EQ(1U, lifted(0.99).polygonCount());
  EXPECT_EQ(1U, lifted(1.01).triangulatedRegions);
  EXPECT_EQ(2U, lifted(1.01).polygonCount());
}

TEST(IndexBuilder, DiagonalsAreInnerAndOutlinesKeepTheirMarks) {
  PolygonBuilder builder;
  builder.add({{0, 0, 0}, {0, 1, 0}, {1, 1, 0.5}, {1, 0, 0}});
  builder.scene.docking = {0, 1, 0, 0};
  const IndexState state = indexOf(builder.scene);
  ASSERT_EQ(2U, state.polygonCount());
  EXPECT_EQ(3, std::count(state.cornerInner.begin(), state.cornerInner.end(), 1));
  EXPECT_EQ(5U, state.edgeVertices.size() / 2);
  EXPECT_EQ(state.regions[0], state.regions[1]);
}

TEST(IndexBuilder, EachTriangleHasAPlaneOfItsOwn) {
  const IndexState state = indexOf({{0, 0, 0}, {0, 1, 0}, {1, 1, 0.5}, {1, 0, 0}});
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_LT(state.planes[i].normal.z, 0.0);
    for (std::size_t k = 0; k < 3; ++k)
      EXPECT_NEAR(
          0.0, Kernel::dot(state.planes[i].normal, cornerOf(state, i, k) - state.planes[i].point),
          1e-15);
  }
  EXPECT_NE(state.planes[0].normal, state.planes[1].normal);
}

TEST(IndexBuilder, ARegionThatIsNotFlatAndCrossesItselfIsCutTooSoThatAllIsFlat) {
  const IndexState state = indexOf({{0, 0, 0}, {2, 2, 0.1}, {2, 0, 0}, {0, 3, 0.3}});
  EXPECT_EQ(1U, state.triangulatedRegions);
  ASSERT_EQ(2U, state.polygonCount());
  EXPECT_EQ(3U, cornerCount(state, 0));
}

TEST(IndexBuilder, ObjectsListTheirPolygonsAndThoseWithoutAnyListNone) {
  PolygonBuilder builder;
  builder.add(square(5, 0, 0, 1), 2);
  builder.add(square(0, 0, 0, 1), 2);
  builder.add(square(3, 0, 1, 1), 4);
  builder.scene.objectIds = {"a", "b", "c", "d", "e"};
  const IndexState state = indexOf(builder.scene);
  EXPECT_EQ((std::vector<std::int32_t>{0, 0, 2, 2, 3, 3}), state.objectOffsets);
  for (std::size_t i = 0; i < 3; ++i) {
    const auto polygon = static_cast<std::size_t>(state.objectPolygons[i]);
    const auto region = static_cast<std::size_t>(state.regions[polygon]);
    EXPECT_EQ(i < 2 ? 2 : 4, state.names->regions[region].object);
  }
  EXPECT_LT(state.objectPolygons[0], state.objectPolygons[1]);
}

TEST(IndexBuilder, RefusesOptionsThatAreNoPart) {
  const PolygonScene scene;
  IndexState state;
  EXPECT_THROW(buildIndex(scene, {-1.0, 1e-7}, state), std::invalid_argument);
  EXPECT_THROW(buildIndex(scene, {1e-4, std::numeric_limits<double>::quiet_NaN()}, state),
               std::invalid_argument);
  EXPECT_THROW(buildIndex(scene, {std::numeric_limits<double>::infinity(), 1e-7}, state),
               std::invalid_argument);
}

TEST(IndexBuilder, AnEmptySceneHasNothing) {
  const IndexState state = indexOf(PolygonScene{});
  EXPECT_EQ(0U, state.polygonCount());
  EXPECT_TRUE(state.nodes.empty());
}

TEST(IndexBuilderProperty, TrianglesOfARegionHaveItsVectorAreaAndOneLessThanItsCornersLessOne) {
  Random random(3);
  for (int i = 0; i < 60; ++i) {
    const Axes axes(random);
    const int corners = 4 + i;
    Outline outline = dented(random, corners, 0.05);
    for (Vector& p : outline) p = Samples::plus(axes(p), {1e3, -2e3, 5.0});
    const IndexState state = indexOf(outline);
    EXPECT_EQ(1U, state.triangulatedRegions);
    EXPECT_EQ(static_cast<std::size_t>(corners) - 2, state.polygonCount());
    Vec3 sum;
    for (std::size_t k = 0; k < state.polygonCount(); ++k) sum = sum + areaOf(state, k);
    Vec3 whole;
    for (std::size_t k = 0; k < outline.size(); ++k) {
      const Vector a = Samples::minus(outline[k], outline[0]);
      const Vector b = Samples::minus(outline[(k + 1) % outline.size()], outline[0]);
      const Vector c = Samples::cross(a, b);
      whole = whole + Vec3{c[0], c[1], c[2]};
    }
    EXPECT_NEAR(0.0, Kernel::length3(sum - whole), 1e-12);
    // Edges: the outline's and one diagonal less than triangles.
    EXPECT_EQ(static_cast<std::size_t>(2 * corners - 3), state.edgeVertices.size() / 2);
  }
}

TEST(IndexBuilderProperty, PolygonsStandInTheOrderOfTheLeavesWithinTheirBoxes) {
  Random random(7);
  PolygonBuilder builder;
  for (int i = 0; i < 500; ++i) {
    const Vector p = random.vector(50.0);
    builder.add({p, Samples::plus(p, random.vector(1.0)), Samples::plus(p, random.vector(1.0))});
  }
  const IndexState state = indexOf(builder.scene);
  std::size_t next = 0;
  for (const BoxNode& node : state.nodes) {
    if (!node.isLeaf()) continue;
    next += static_cast<std::size_t>(node.count);
    for (int i = node.first; i < node.first + node.count; ++i) {
      const auto polygon = static_cast<std::size_t>(i);
      for (std::size_t k = 0; k < 3; ++k) {
        const Vec3 c = cornerOf(state, polygon, k);
        EXPECT_TRUE(c.x >= node.low[0] && c.x <= node.high[0] && c.y >= node.low[1] &&
                    c.y <= node.high[1] && c.z >= node.low[2] && c.z <= node.high[2]);
      }
    }
  }
  EXPECT_EQ(state.polygonCount(), next);
}

}  // namespace
}  // namespace Lumivane::Visibility
