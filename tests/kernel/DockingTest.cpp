#include "kernel/Docking.h"

#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::dockingEdges;
using Kernel::DockingSegment;
using Kernel::dockingSegment;
using Kernel::isDrawnFrom;
using Kernel::Vec2;
using Numbers = std::vector<std::vector<int>>;
using Polygons = std::vector<std::vector<Vec2>>;

constexpr double Precision = 1e-07;

const std::vector<DockingSegment> AlongX = {dockingSegment({0, 0, 0}, {4, 0, 0})};

TEST(IsDrawnFrom, WithoutSegmentsEveryEdgeIsDrawn) {
  EXPECT_TRUE(isDrawnFrom({1, 2, 3}, {}, Precision));
}

TEST(IsDrawnFrom, StartAndInsideOfASegmentAreNotDrawn) {
  EXPECT_FALSE(isDrawnFrom({0, 0, 0}, AlongX, Precision));
  EXPECT_FALSE(isDrawnFrom({0.5, 0, 0}, AlongX, Precision));
  EXPECT_FALSE(isDrawnFrom({3.999, 0, 0}, AlongX, Precision));
}

TEST(IsDrawnFrom, EndOfASegmentIsDrawnUnlessAnotherStartsThere) {
  EXPECT_TRUE(isDrawnFrom({4, 0, 0}, AlongX, Precision));
  const std::vector<DockingSegment> corner = {AlongX[0], dockingSegment({4, 0, 0}, {4, 4, 0})};
  EXPECT_FALSE(isDrawnFrom({4, 0, 0}, corner, Precision));
}

TEST(IsDrawnFrom, BesideASegmentIsDrawn) {
  EXPECT_TRUE(isDrawnFrom({2, 0.01, 0}, AlongX, Precision));
  EXPECT_TRUE(isDrawnFrom({-1, 0, 0}, AlongX, Precision));
  EXPECT_TRUE(isDrawnFrom({5, 0, 0}, AlongX, Precision));
}

TEST(IsDrawnFrom, TheDetourCountsStrictly) {
  // The detour over a point at the height h above the middle of a side of 4 is about h * h / 2.
  EXPECT_FALSE(isDrawnFrom({2, 0.0004, 0}, AlongX, Precision));
  EXPECT_TRUE(isDrawnFrom({2, 0.0005, 0}, AlongX, Precision));
}

TEST(DockingEdges, OnePolygonHasNone) {
  EXPECT_EQ((Numbers{{}}), dockingEdges({{{0, 0}, {1, 0}, {0, 1}}}, Precision));
}

TEST(DockingEdges, EmptyPolygonMatchesNothingAndKeepsItsPlace) {
  const Polygons polygons = {{{0, 0}, {1, 0}, {0, 1}}, {}, {{1, 0}, {1, 1}, {0, 1}}};
  EXPECT_EQ((Numbers{{2}, {}, {3}}), dockingEdges(polygons, Precision));
}

TEST(DockingEdges, BothDirectionsMatch) {
  const std::vector<Vec2> first = {{0, 0}, {1, 0}, {0, 1}};
  EXPECT_EQ((Numbers{{1}, {2}}), dockingEdges({first, {{2, 2}, {0, 0}, {1, 0}}}, Precision));
  EXPECT_EQ((Numbers{{1}, {2}}), dockingEdges({first, {{2, 2}, {1, 0}, {0, 0}}}, Precision));
}

TEST(DockingEdges, EdgeMetByTwoPolygonsIsThereTwice) {
  const std::vector<Vec2> triangle = {{0, 0}, {1, 0}, {0, 1}};
  EXPECT_EQ(
      (Numbers{{1, 1}, {1, 1}, {1, 1}}),
      dockingEdges({triangle, {{1, 0}, {0, 0}, {5, 5}}, {{0, 0}, {1, 0}, {6, 7}}}, Precision));
}

TEST(DockingEdges, EdgeMetTwiceByOnePolygonIsThereTwice) {
  EXPECT_EQ((Numbers{{1, 1}, {1, 2}}),
            dockingEdges({{{0, 0}, {1, 0}, {0, 1}}, {{0, 0}, {1, 0}}}, Precision));
}

TEST(DockingEdges, OrderIsByOtherPolygonFirst) {
  const Polygons polygons = {{{0, 0}, {1, 0}, {0, 1}},
                             {{1, 0}, {1, 1}, {0, 1}},    // at edge 2 of the first
                             {{0, 0}, {1, 0}, {1, -1}}};  // at edge 1 of the first
  EXPECT_EQ((std::vector<int>{2, 1}), dockingEdges(polygons, Precision)[0]);
}

TEST(DockingEdges, OverlapWithOtherEndsIsNone) {
  EXPECT_EQ((Numbers{{}, {}}),
            dockingEdges({{{0, 0}, {2, 0}, {0, 1}}, {{0, 0}, {1, 0}, {0, -1}}}, Precision));
}

TEST(DockingEdges, SinglePointMatchesAnEdgeWithoutLengthOnly) {
  EXPECT_EQ((Numbers{{1}, {1}}), dockingEdges({{{1, 0}}, {{1, 0}, {1, 0}, {0, 1}}}, Precision));
  EXPECT_EQ((Numbers{{}, {}}), dockingEdges({{{1, 0}}, {{1, 0}, {2, 0}, {0, 1}}}, Precision));
}

TEST(DockingEdges, ToleranceIsStrictPerCoordinate) {
  const std::vector<Vec2> triangle = {{0, 0}, {1, 0}, {0, 1}};
  EXPECT_EQ((Numbers{{1}, {1}}),
            dockingEdges({triangle, {{0.99e-7, 0.99e-7}, {1, 0}, {5, 5}}}, Precision));
  EXPECT_EQ((Numbers{{}, {}}), dockingEdges({triangle, {{1e-7, 0}, {1, 0}, {5, 5}}}, Precision));
}

}  // namespace
}  // namespace Lumivane::Test
