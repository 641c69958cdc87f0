#include "truth/Builder.h"
#include "truth/HandMadeMaps.h"
#include "truth/MapLocator.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

namespace Lumivane::Truth {
namespace {

using Visibility::Vector;
using Visibility::VisibleMap;

int sideOfCube(const Vector& d) {
  std::size_t axis = 0;
  for (std::size_t i = 1; i < 3; ++i)
    if (std::fabs(d[i]) > std::fabs(d[axis])) axis = i;
  return 2 * (2 - static_cast<int>(axis)) + (d[axis] > 0.0 ? 1 : 0);
}

TEST(MapLocator, FindsTheSideOfACubeInEveryDirection) {
  const VisibleMap map = cubeMap();
  const MapLocator locator(map);
  Random random(1);
  for (int i = 0; i < 20000; ++i) {
    const Vector d = random.direction();
    ASSERT_EQ(locator.cellOf(d), sideOfCube(d)) << d[0] << ' ' << d[1] << ' ' << d[2];
    if (i % 100 == 0) {
      ASSERT_EQ(locator.cellOfAll(d), sideOfCube(d));
    }
  }
}

TEST(MapLocator, KnowsWhatLiesInAHoleAndWhatOutsideTheField) {
  const VisibleMap map = windowMap();
  const MapLocator locator(map);
  Random random(2);
  for (int i = 0; i < 20000; ++i) {
    const Vector d = random.direction();
    const bool inWindow =
        d[0] > 0.0 && std::fabs(d[1]) < 0.5 * d[0] && std::fabs(d[2]) < 0.5 * d[0];
    ASSERT_EQ(locator.cellOf(d), d[0] < 0.0 ? -1 : inWindow ? 0 : 1);
  }
}

// A sliver between two cells, turned inside out where its vertices are rounded.
TEST(MapLocator, IsNotMisledByEdgesInTheWrongOrder) {
  for (const double beside : {-1e-13, 0.0, 1e-13}) {
    const std::vector<Vector> vertices{{1, 0, -1}, {1, 0, 1},      {1, 1, 0},
                                       {1, -1, 0}, {1, beside, 0}, {1, -beside, 0}};
    const VisibleMap map = handMadeMap(Visibility::Field::Sphere, vertices,
                                       {{{1, 1, 1}, {{0, 4, 1, 2}}},
                                        {{2, 1, 1}, {{0, 5, 1, 4}}},
                                        {{3, 1, 1}, {{0, 3, 1, 5}}},
                                        {{0, 0, 0}, {{0, 2, 1, 3}}}});
    const MapLocator locator(map);
    Random random(3);
    for (int i = 0; i < 2000; ++i) {
      const double side = random.between(-0.2, 0.2);
      const Vector d{1, side, random.between(-0.5, 0.5)};
      if (std::fabs(side) < 1e-6) continue;
      ASSERT_EQ(locator.cellOf(d), side > 0.0 ? 0 : 2) << beside << ' ' << side;
      ASSERT_EQ(locator.cellOfAll(d), side > 0.0 ? 0 : 2) << beside << ' ' << side;
    }
  }
}

TEST(MapLocator, AMapWithoutAnEdgeHasOneCell) {
  const VisibleMap map = handMadeMap(Visibility::Field::Sphere, {}, {{{0, 0, 0}, {}}});
  EXPECT_EQ(MapLocator(map).cellOf({1, 0, 0}), 0);
}

TEST(MapLocator, MeasuresTheAngleToTheNearestEdge) {
  const VisibleMap map = cubeMap();
  const MapLocator locator(map);
  EXPECT_NEAR(locator.angleToEdge({1, 0, 0}), std::atan(1.0), 1e-15);
  EXPECT_NEAR(locator.angleToEdge({1, 1.0 - 1e-7, 0}), 0.5e-7, 1e-14);
  EXPECT_NEAR(locator.angleToEdge({1, 1, 1}), 0.0, 1e-15);
}

/// Many cells: a fan of thin wedges about x.
TEST(MapLocator, FindsEachOfAThousandThinCells) {
  constexpr int Count = 1000;
  std::vector<Vector> vertices{{1, 0, 0}};
  std::vector<HandMadeCell> cells;
  for (int i = 0; i < Count; ++i) {
    const double turn = 2.0 * static_cast<double>(Pi) * i / Count;
    vertices.push_back({0, std::cos(turn), std::sin(turn)});
    cells.push_back({{1, i + 1, i + 1}, {{0, (i + 1) % Count + 1, i + 1}}});
  }
  const VisibleMap map = handMadeMap(Visibility::Field::Hemisphere, vertices, cells);
  const MapLocator locator(map);
  Random random(3);
  for (int i = 0; i < 20000; ++i) {
    Vector d = random.direction();
    d[0] = std::fabs(d[0]);
    double turn = std::atan2(d[2], d[1]) / (2.0 * static_cast<double>(Pi));
    if (turn < 0.0) turn += 1.0;
    const double place = turn * Count;
    if (std::fabs(place - std::round(place)) < 1e-9) continue;
    ASSERT_EQ(locator.cellOf(d), static_cast<int>(place));
  }
}

}  // namespace
}  // namespace Lumivane::Truth
