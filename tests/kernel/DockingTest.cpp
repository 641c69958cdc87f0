#include "kernel/Docking.h"
#include "plain/Docking.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <random>
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

// Coordinates on a small grid, some moved by about the tolerance and some far out or no number, so
// that edges coincide often, both ways, repeatedly and only just.
double anyCoordinate(std::mt19937_64& random, double precision) {
  const double steps[] = {0.0, 0.0, 0.0, 0.5, -0.5, 0.999, -1.0, 1.0};
  const double onGrid = static_cast<double>(random() % 4) + steps[random() % 8] * precision;
  switch (random() % 60) {
    case 0:
      return onGrid * 1e9 * precision;
    case 1:
      return std::numeric_limits<double>::quiet_NaN();
    case 2:
      return std::numeric_limits<double>::infinity();
    default:
      return onGrid;
  }
}

TEST(DockingEdgesProperty, AreThoseOfEveryEdgeAgainstEveryOther) {
  std::mt19937_64 random(20261122);
  for (int run = 0; run < 4000; ++run) {
    const double precision = run % 2 == 0 ? Precision : 0.3;
    Polygons polygons(random() % 6);
    for (std::vector<Vec2>& polygon : polygons) {
      polygon.resize(random() % 9);
      for (Vec2& point : polygon)
        point = {anyCoordinate(random, precision), anyCoordinate(random, precision)};
    }
    ASSERT_EQ(Plain::dockingEdges(polygons, precision), dockingEdges(polygons, precision))
        << "run " << run;
  }
}

TEST(DockingEdgesProperty, PairsAndGridFindTheSame) {
  std::mt19937_64 random(7);
  for (int run = 0; run < 300; ++run) {
    // Outlines of several runs of edges that wander along shared ways, forth and back.
    std::vector<Vec2> way(200);
    for (std::size_t k = 0; k < way.size(); ++k)
      way[k] = {static_cast<double>(k) * 0.01, anyCoordinate(random, Precision)};
    Polygons polygons(2 + random() % 5);
    for (std::vector<Vec2>& polygon : polygons) {
      const std::size_t first = random() % way.size();
      polygon.assign(way.begin() + static_cast<std::ptrdiff_t>(first), way.end());
      if (random() % 2 == 0) std::reverse(polygon.begin(), polygon.end());
      polygon.push_back({anyCoordinate(random, Precision), -9});
    }
    std::vector<Kernel::ClosedOutline> outlines;
    for (const std::vector<Vec2>& polygon : polygons)
      outlines.push_back(Kernel::closedOutline(polygon));
    const Numbers expected = Plain::dockingEdges(polygons, Precision);
    ASSERT_EQ(expected, Kernel::dockingEdgesOfPairs(outlines, Precision)) << "run " << run;
    ASSERT_EQ(expected, Kernel::dockingEdgesByGrid(outlines, Precision)) << "run " << run;
  }
}

TEST(DockingEdgesProperty, NeighboursInAGridOfPiecesShareTheirSides) {
  Polygons polygons;
  for (int x = 0; x < 6; ++x) {
    for (int y = 0; y < 6; ++y) {
      std::vector<Vec2> piece;
      piece.reserve(16);
      for (int k = 0; k < 4; ++k) piece.push_back({x + k / 4.0, static_cast<double>(y)});
      for (int k = 0; k < 4; ++k) piece.push_back({x + 1.0, y + k / 4.0});
      for (int k = 0; k < 4; ++k) piece.push_back({x + 1.0 - k / 4.0, y + 1.0});
      for (int k = 0; k < 4; ++k) piece.push_back({static_cast<double>(x), y + 1.0 - k / 4.0});
      polygons.push_back(piece);
    }
  }
  const Numbers numbers = dockingEdges(polygons, Precision);
  EXPECT_EQ(Plain::dockingEdges(polygons, Precision), numbers);
  EXPECT_EQ(16u, numbers[7].size());  // a piece inside has a neighbour on every side
  EXPECT_EQ(8u, numbers[0].size());
}

}  // namespace
}  // namespace Lumivane::Test
