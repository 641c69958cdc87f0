#include "measure/AreaOutlines.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Measure {
namespace {

using Kernel::Vec2;
using Ring = std::vector<Vec2>;
using Pieces = std::vector<BorderPiece>;

// As the sweep has it, no piece is level.
Vec2 turned(Vec2 p) { return {0.9 * p.x - 0.43 * p.y, 0.43 * p.x + 0.9 * p.y}; }
constexpr double Scale = 0.9 * 0.9 + 0.43 * 0.43;

void addRing(Pieces& pieces, const Ring& ring) {
  for (size_t i = 0; i < ring.size(); ++i)
    pieces.push_back({turned(ring[i]), turned(ring[(i + 1) % ring.size()])});
}

Ring square(double x, double y, double half) {
  return {{x - half, y - half}, {x + half, y - half}, {x + half, y + half}, {x - half, y + half}};
}

Ring hole(double x, double y, double half) {
  Ring ring = square(x, y, half);
  std::reverse(ring.begin(), ring.end());
  return ring;
}

std::vector<OutlinedArea> bySize(std::vector<OutlinedArea> areas) {
  std::sort(areas.begin(), areas.end(),
            [](const OutlinedArea& a, const OutlinedArea& b) { return a.area < b.area; });
  return areas;
}

TEST(AreaOutlines, OfNothingThereAreNone) { EXPECT_TRUE(outlinedAreas({}).empty()); }

TEST(AreaOutlines, PiecesInAnyOrderAreJoinedToTheirLine) {
  Pieces pieces;
  addRing(pieces, square(0.1, 0.2, 0.5));
  std::mt19937 random(3);
  for (int i = 0; i < 20; ++i) {
    std::shuffle(pieces.begin(), pieces.end(), random);
    const std::vector<OutlinedArea> areas = outlinedAreas(pieces);
    ASSERT_EQ(1u, areas.size());
    ASSERT_EQ(1u, areas[0].rings.size());
    EXPECT_EQ(4u, areas[0].rings[0].size());
    EXPECT_NEAR(Scale, areas[0].area, 1e-15);
  }
}

TEST(AreaOutlines, AHoleBelongsToTheSmallestAreaAroundIt) {
  Pieces pieces;
  addRing(pieces, square(0, 0, 0.9));
  addRing(pieces, hole(0, 0, 0.7));
  addRing(pieces, square(0, 0, 0.5));
  addRing(pieces, hole(0.1, 0, 0.3));
  addRing(pieces, square(2, 2, 0.1));
  const std::vector<OutlinedArea> areas = bySize(outlinedAreas(pieces));
  ASSERT_EQ(3u, areas.size());
  EXPECT_NEAR(Scale * 0.04, areas[0].area, 1e-14);
  EXPECT_EQ(1u, areas[0].rings.size());
  EXPECT_NEAR(Scale * (1.0 - 0.36), areas[1].area, 1e-14);
  EXPECT_EQ(2u, areas[1].rings.size());
  EXPECT_NEAR(Scale * (3.24 - 1.96), areas[2].area, 1e-14);
  EXPECT_EQ(2u, areas[2].rings.size());
}

TEST(AreaOutlines, AreasThatTouchInACornerKeepTheirArea) {
  Pieces pieces;
  addRing(pieces, square(-0.5, -0.5, 0.5));
  addRing(pieces, square(0.5, 0.5, 0.5));
  double sum = 0.0;
  for (const OutlinedArea& area : outlinedAreas(pieces)) sum += area.area;
  EXPECT_NEAR(2.0 * Scale, sum, 1e-14);
}

TEST(AreaOutlines, PiecesOfOneLineMeetAtOneHeightThoughRoundingMovesTheirEnds) {
  Pieces pieces;
  addRing(pieces, square(0, 0, 0.5));
  for (size_t i = 0; i < pieces.size(); ++i) pieces[i].to.x += (i % 2 == 0 ? 1e-14 : -1e-14);
  const std::vector<OutlinedArea> areas = outlinedAreas(pieces);
  ASSERT_EQ(1u, areas.size());
  EXPECT_NEAR(Scale, areas[0].area, 1e-13);
  EXPECT_EQ(4u, areas[0].rings[0].size());
}

TEST(AreaOutlines, EndsThatMissEachOthersHeightByRoundingAreJoinedAllTheSame) {
  Pieces pieces;
  addRing(pieces, square(0, 0, 0.5));
  addRing(pieces, hole(0, 0, 0.2));
  pieces[1].to.y = std::nextafter(pieces[1].to.y, 2.0);
  pieces[5].to.y = std::nextafter(pieces[5].to.y, -2.0);
  const std::vector<OutlinedArea> areas = outlinedAreas(pieces);
  ASSERT_EQ(1u, areas.size());
  EXPECT_EQ(2u, areas[0].rings.size());
  EXPECT_NEAR(Scale * (1.0 - 0.16), areas[0].area, 1e-14);
}

TEST(AreaOutlines, LinesAroundNothingButRoundingAreLeftOut) {
  Pieces pieces;
  addRing(pieces, square(0, 0, 0.5));
  addRing(pieces, {{2, 2}, {2.5, 2.1}, {2.5, 2.1 + 1e-16}});
  addRing(pieces, {{3, 3}, {3.1, 3.2}});
  EXPECT_EQ(1u, outlinedAreas(pieces).size());
  Pieces strip;  // around which another one is cut out, but for rounding
  addRing(strip, {{0, 0}, {0.5, 0.1}, {0.6, 0.2}});
  addRing(strip, {{0.6, 0.2}, {0.5, 0.1}, {0, 0}});
  EXPECT_TRUE(outlinedAreas(strip).empty());
}

}  // namespace
}  // namespace Lumivane::Measure
