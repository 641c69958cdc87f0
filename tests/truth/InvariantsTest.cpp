#include "truth/HandMadeMaps.h"
#include "truth/Invariants.h"

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Lumivane::Truth {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Visibility::VisibleMap;

constexpr double Sixth = 4.0 * 3.14159265358979323846 / 6.0;

TEST(Invariants, ASoundMapHasNoFault) {
  EXPECT_EQ(faultText(cubeMap()), "");
  EXPECT_EQ(faultText(windowMap()), "");
  EXPECT_EQ(faultText(handMadeMap(Visibility::Field::Sphere, {}, {{{0, 0, 0}, {}}})), "");
}

TEST(Invariants, TheSidesOfACubeTakeASixthEach) {
  const VisibleMap map = cubeMap();
  for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(solidAngleOf(map, i), Sixth, 1e-15);
  EXPECT_NEAR(areaError(map), 0.0, 1e-14);
}

TEST(Invariants, ViewFactorsAreLamberts) {
  // Case 2 of the closed forms: a square of 2 by 2 at a distance of 2, X = Y = 0.5.
  const double x = 0.5;
  const double root = std::sqrt(1.0 + x * x);
  const double factor = 4.0 / (2.0 * 3.14159265358979323846) * 2.0 * x / root * std::atan(x / root);
  EXPECT_NEAR(viewFactorOf(windowMap(), 0), factor, 1e-15);
  EXPECT_NEAR(viewFactorOf(windowMap(), 1), 1.0 - factor, 1e-15);
}

TEST(Invariants, AWrongMeasureIsAFault) {
  VisibleMap map = cubeMap();
  map.cells[2].solidAngle += 2e-9;
  EXPECT_THAT(faultsOf(map),
              ElementsAre(HasSubstr("cell whose rings have another solid angle, e.g. 2:"),
                          HasSubstr("solid angles do not add up")));
}

TEST(Invariants, ACellThatIsPassedToItsNeighbourIsAFault) {
  VisibleMap map = cubeMap();
  std::swap(map.edges[0].left, map.edges[0].right);
  EXPECT_THAT(faultText(map), HasSubstr("edge that is in no ring"));
  EXPECT_THAT(faultText(map), HasSubstr("ring's edge that is no edge"));
}

TEST(Invariants, AMissingEdgeIsAFault) {
  VisibleMap map = cubeMap();
  map.edges.pop_back();
  EXPECT_THAT(faultText(map), HasSubstr("Euler's formula"));
}

TEST(Invariants, TwoCellsOfOneLabelThatTouchAreAFault) {
  VisibleMap map = cubeMap();
  map.cells[5].label = map.cells[4].label;
  EXPECT_EQ(faultText(map), "") << "opposite sides of a cube do not touch";
  map.cells[5].label = map.cells[3].label;
  EXPECT_THAT(faultText(map), HasSubstr("cells of one label that touch"));
}

TEST(Invariants, ARingThatRunsTheOtherWayIsAFault) {
  VisibleMap map = windowMap();
  std::reverse(map.ringVertices.begin(), map.ringVertices.begin() + 4);
  EXPECT_THAT(faultText(map), HasSubstr("cell whose rings have another solid angle"));
}

TEST(Invariants, DistancesOutOfOrderAreAFault) {
  VisibleMap map = windowMap();
  map.cells[0].minDistance = 3.0;
  map.cells[1].maxDistance = 1.0;
  map.cells[1].minDistance = 1.0;
  EXPECT_THAT(faultsOf(map),
              ElementsAre(HasSubstr("distances out of order"), HasSubstr("sky with a distance")));
}

TEST(Invariants, AHoleThatStandsFirstIsAFault) {
  VisibleMap map = windowMap();
  std::rotate(map.ringVertices.begin() + 4, map.ringVertices.begin() + 8, map.ringVertices.end());
  EXPECT_THAT(faultText(map), HasSubstr("ring in the wrong place or turned"));
}

TEST(Invariants, AVertexOffTheSphereIsAFault) {
  VisibleMap map = cubeMap();
  map.vertices[3] = {0.6, 0.6, 0.6};
  EXPECT_THAT(faultText(map), HasSubstr("vertex that is no unit vector"));
}

}  // namespace
}  // namespace Lumivane::Truth
