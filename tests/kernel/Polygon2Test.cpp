#include "kernel/Polygon2.h"
#include "plain/DepthSort.h"
#include "support/Extremes.h"
#include "utils/Shapes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::Meeting;
using Kernel::Vec2;
using Utils::toVector;
using Utils::toVectors;
using Ring = std::vector<Vec2>;

const Ring UnitSquare{{0, 0}, {1, 0}, {1, 1}, {0, 1}};

TEST(Turn, IsPositiveCounterClockwiseAndZeroOnALine) {
  EXPECT_EQ(1.0, Kernel::rotate({0, 0}, {1, 0}, {1, 1}));
  EXPECT_EQ(-1.0, Kernel::rotate({0, 0}, {1, 0}, {1, -1}));
  EXPECT_EQ(0.0, Kernel::rotate({0, 0}, {1, 1}, {3, 3}));
}

TEST(SegmentsCross, ProperCrossingIsSeen) {
  EXPECT_TRUE(Kernel::segmentsCross({0, 0}, {2, 2}, {0, 2}, {2, 0}));
}

TEST(SegmentsCross, EndPointOnTheOtherSegmentIsNoCrossing) {
  EXPECT_FALSE(Kernel::segmentsCross({0, 0}, {2, 0}, {1, 0}, {1, 1}));
  EXPECT_FALSE(Kernel::segmentsCross({1, 0}, {1, 1}, {0, 0}, {2, 0}));
}

TEST(SegmentsCross, CollinearOverlapIsNoCrossing) {
  EXPECT_FALSE(Kernel::segmentsCross({0, 0}, {2, 0}, {1, 0}, {3, 0}));
}

TEST(SegmentsCross, LinesThatMeetOutsideASegmentAreNoCrossing) {
  EXPECT_FALSE(Kernel::segmentsCross({0, 0}, {1, 1}, {0, 6}, {6, 0}));
  EXPECT_FALSE(Kernel::segmentsCross({0, 6}, {6, 0}, {0, 0}, {1, 1}));
}

TEST(SegmentsCross, ProductThatUnderflowsIsNoCrossing) {
  EXPECT_FALSE(Kernel::segmentsCross({0, 0}, {1e-200, 0}, {5e-201, -1e-200}, {5e-201, 1e-200}));
}

TEST(ContainsPoint, NothingLiesInAnEmptyPolygon) {
  EXPECT_FALSE(Kernel::containsPoint({}, {0, 0}));
}

TEST(ContainsPoint, LeftEdgeIsInsideAndRightEdgeOutside) {
  EXPECT_TRUE(Kernel::containsPoint(UnitSquare, {0, 0.5}));
  EXPECT_FALSE(Kernel::containsPoint(UnitSquare, {1, 0.5}));
}

TEST(ContainsPoint, LowerEndOfAnEdgeCountsAndUpperEndDoesNot) {
  EXPECT_TRUE(Kernel::containsPoint(UnitSquare, {0.5, 0}));
  EXPECT_FALSE(Kernel::containsPoint(UnitSquare, {0.5, 1}));
}

TEST(ContainsPoint, VertexOnTheRayCountsForOneOfItsEdges) {
  const Ring diamond{{0, -1}, {1, 0}, {0, 1}, {-1, 0}};
  EXPECT_TRUE(Kernel::containsPoint(diamond, {0, 0}));
  EXPECT_FALSE(Kernel::containsPoint(diamond, {2, 0}));
  EXPECT_FALSE(Kernel::containsPoint(diamond, {2, 1}));
  EXPECT_FALSE(Kernel::containsPoint(diamond, {2, -1}));
}

TEST(MeetingOf, SquaresSharingAnEdgeDoNotMeet) {
  const Ring right{{1, 0}, {2, 0}, {2, 1}, {1, 1}};
  EXPECT_EQ(Meeting::None, Kernel::meetingOf(UnitSquare, right));
  EXPECT_EQ(Meeting::None, Kernel::meetingOf(right, UnitSquare));
}

TEST(MeetingOf, IdenticalSquaresDoNotMeet) {
  EXPECT_FALSE(Kernel::containsPoint(UnitSquare, {1, 0}));
  EXPECT_EQ(Meeting::None, Kernel::meetingOf(UnitSquare, UnitSquare));
}

TEST(MeetingOf, BarsOfAPlusSignCross) {
  const Ring flat{{-3, -1}, {3, -1}, {3, 1}, {-3, 1}};
  const Ring tall{{-1, -3}, {1, -3}, {1, 3}, {-1, 3}};
  EXPECT_EQ(Meeting::EdgesCrossing, Kernel::meetingOf(flat, tall));
}

TEST(MeetingOf, SmallSquareLiesInALargeOne) {
  const Ring large{{-5, -5}, {5, -5}, {5, 5}, {-5, 5}};
  EXPECT_EQ(Meeting::SecondInFirst, Kernel::meetingOf(large, UnitSquare));
  EXPECT_EQ(Meeting::FirstInSecond, Kernel::meetingOf(UnitSquare, large));
}

TEST(MeetingOf, TrianglesFarApartDoNotMeet) {
  EXPECT_EQ(Meeting::None, Kernel::meetingOf({{0, 0}, {1, 0}, {0, 1}}, {{9, 9}, {8, 9}, {9, 8}}));
}

TEST(MeetingOf, EmptyPolygonLiesInAnyOther) {
  EXPECT_EQ(Meeting::FirstInSecond, Kernel::meetingOf({}, UnitSquare));
  EXPECT_EQ(Meeting::SecondInFirst, Kernel::meetingOf(UnitSquare, {}));
  EXPECT_EQ(Meeting::FirstInSecond, Kernel::meetingOf({}, {}));
}

// The spike crosses only the edge from point 2 to point 3 of the other polygon, which has one point
// more than the spike.
TEST(MeetingOf, EdgeBehindThePointCountOfTheOtherPolygonCrosses) {
  const Ring longer{{0, 0}, {4, 0}, {2, 1}, {2, 3}};
  const Ring spike{{1.9, 2}, {2.1, 2.1}, {1.9, 2.1}};
  EXPECT_EQ(Meeting::EdgesCrossing, Kernel::meetingOf(spike, longer));
  EXPECT_EQ(Meeting::EdgesCrossing, Kernel::meetingOf(longer, spike));
}

// The triangle lies across the line from point 3 to point 1 of the square, which is no edge.
TEST(MeetingOf, ChordOfALongerPolygonIsNoEdge) {
  const Ring square{{0, 0}, {8, 0}, {8, 8}, {0, 8}};
  const Ring onTheChord{{3.5, 4}, {4.5, 4}, {4.5, 4.1}};
  EXPECT_EQ(Meeting::FirstInSecond, Kernel::meetingOf(onTheChord, square));
  EXPECT_EQ(Meeting::SecondInFirst, Kernel::meetingOf(square, onTheChord));
}

// The triangle crosses only the left side of the pentagon, from its last point to its first.
TEST(MeetingOf, LastEdgeOfALongerSecondEndsAtItsFirstPoint) {
  const Ring pentagon{{0, 0}, {4, 0}, {6, 2}, {4, 4}, {0, 4}};
  const Ring acrossTheLeftSide{{-1, 2}, {1, 1.9}, {1, 2.1}};
  EXPECT_EQ(Meeting::EdgesCrossing, Kernel::meetingOf(acrossTheLeftSide, pentagon));
  EXPECT_EQ(Meeting::EdgesCrossing, Kernel::meetingOf(pentagon, acrossTheLeftSide));
}

TEST(MeetingOf, LastEdgeOfASmallerSecondEndsAtItsFirstPoint) {
  const Ring triangle{{0, 0}, {4, 0}, {2, 3}};
  const Ring onTheLastEdge{{0.9, 1.4}, {1.1, 1.4}, {1.2, 1.5}, {1.1, 1.6}, {0.9, 1.6}};
  EXPECT_EQ(Meeting::EdgesCrossing, Kernel::meetingOf(onTheLastEdge, triangle));
}

TEST(MeetingOf, PointThatIsNoNumberCrossesAndContainsNothing) {
  constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(Meeting::None, Kernel::meetingOf(UnitSquare, {{notANumber, 0}, {9, 9}, {9, 8}}));
}

// --- Against the plain scan, bit for bit ---

using Source = Vec2 (*)(std::mt19937_64&);

Vec2 anyLatticePoint(std::mt19937_64& random) {
  const double x = static_cast<double>(random() % 6);
  return {x, static_cast<double>(random() % 6)};
}

// Points around one line, off it by a few last bits: the signs of their turns are noise.
Vec2 anyPointNearALine(std::mt19937_64& random) {
  const double x = static_cast<double>(random() % 9) / 7.0;
  double y = x * 1.1;
  for (std::uint64_t steps = random() % 4; steps > 0; --steps) y = std::nextafter(y, 9.0);
  return {x, y};
}

Vec2 anyTinyPoint(std::mt19937_64& random) {
  const Vec2 p = anyLatticePoint(random);
  return {p.x * 1e-160, p.y * 1e-160};
}

// Pieces of one line, far from each other: whether two of them cross is rounding alone.
Vec2 anyFarPointOnALine(std::mt19937_64& random) {
  const double x =
      static_cast<double>(random() % 7) * 1e3 / 3.0 + static_cast<double>(random() % 3);
  return {x, x * 0.7 + 0.1};
}

// Twice the same corners, each to the last bit or off it by one.
Vec2 anySharedCorner(std::mt19937_64& random) {
  const Vec2 p = anyLatticePoint(random);
  const double x = p.x / 7.0;
  return {random() % 4 == 0 ? std::nextafter(x, 9.0) : x, p.y / 3.0};
}

Vec2 anyHugePoint(std::mt19937_64& random) {
  const Vec2 p = anyLatticePoint(random);
  return {(p.x - 2.5) * 1e154, (p.y - 2.5) * 1e154};
}

Ring anyRing(std::mt19937_64& random, Source anyPoint) {
  Ring ring(random() % 16 == 0 ? random() % 40 : random() % 9);
  for (Vec2& point : ring) point = anyPoint(random);
  return ring;
}

// What the polygons are to each other when they are asked in the other order. Of two that lie in
// each other, such as two points in one place, the first is reported in the second both times.
int swapped(int meeting, const Ring& first, const Ring& second) {
  const auto liesIn = [](const Ring& inner, const Ring& outer) {
    return std::all_of(inner.begin(), inner.end(),
                       [&outer](Vec2 point) { return Kernel::containsPoint(outer, point); });
  };
  if (meeting == Meeting::SecondInFirst) return Meeting::FirstInSecond;
  if (meeting == Meeting::FirstInSecond && !liesIn(second, first)) return Meeting::SecondInFirst;
  return meeting;
}

// The rings of one case are tested with the scratch of all, so that nothing left in it by rings of
// other sizes goes unseen.
void expectPlainMeetings(std::uint64_t seed, Source anyPoint) {
  std::mt19937_64 random(seed);
  Kernel::RingScratch scratch(40);
  int counts[4] = {};
  for (int i = 0; i < 20000; ++i) {
    const Ring first = anyRing(random, anyPoint);
    const Ring second = random() % 32 == 0 ? first : anyRing(random, anyPoint);
    const int expected = Plain::intersectionType(toVectors(first), toVectors(second));
    Kernel::Rings rings;
    rings.add(first);
    rings.add(second);
    ASSERT_EQ(expected, Kernel::meetingOf(rings[0], rings[1], scratch))
        << "seed " << seed << ", case " << i;
    ASSERT_EQ(swapped(expected, first, second), Kernel::meetingOf(rings[1], rings[0], scratch))
        << "seed " << seed << ", case " << i << ", swapped";
    ++counts[expected];
  }
  EXPECT_GT(counts[Meeting::None], 0);
  EXPECT_GT(counts[Meeting::FirstInSecond], 0);
}

TEST(MeetingOfProperty, LatticeRingsMeetAsInThePlainScan) {
  expectPlainMeetings(20240711, anyLatticePoint);
}
TEST(MeetingOfProperty, NearlyCollinearRingsMeetAsInThePlainScan) {
  expectPlainMeetings(20240712, anyPointNearALine);
}
TEST(MeetingOfProperty, UnderflowingRingsMeetAsInThePlainScan) {
  expectPlainMeetings(20240713, anyTinyPoint);
}
TEST(MeetingOfProperty, PiecesOfOneLineMeetAsInThePlainScan) {
  expectPlainMeetings(20240718, anyFarPointOnALine);
}
TEST(MeetingOfProperty, RingsOfSharedCornersMeetAsInThePlainScan) {
  expectPlainMeetings(20240719, anySharedCorner);
}
TEST(MeetingOfProperty, OverflowingRingsMeetAsInThePlainScan) {
  expectPlainMeetings(20240720, anyHugePoint);
}
TEST(MeetingOfProperty, ExtremeRingsMeetAsInThePlainScan) {
  expectPlainMeetings(20240714, anyVec2);
}

// What a shot is made of: fine outlines, convex or curved, somewhere in the picture.
TEST(MeetingOfProperty, FineOutlinesMeetAsInThePlainScan) {
  std::mt19937_64 random(20240715);
  std::uniform_real_distribution<double> place(-0.6, 0.6);
  std::uniform_real_distribution<double> size(0.05, 0.9);
  const auto outline = [&] {
    const Vec2 centre{place(random), place(random)};
    const double width = size(random);
    const double height = size(random);
    Ring ring(3 + random() % 40);
    for (std::size_t k = 0; k < ring.size(); ++k) {
      const double angle =
          6.283185307179586 * static_cast<double>(k) / static_cast<double>(ring.size());
      ring[k] = {centre.x + width * std::cos(angle), centre.y + height * std::sin(angle)};
    }
    return ring;
  };
  int counts[4] = {};
  for (int i = 0; i < 2000; ++i) {
    const Ring first = outline();
    const Ring second = outline();
    const int expected = Plain::intersectionType(toVectors(first), toVectors(second));
    ASSERT_EQ(expected, Kernel::meetingOf(first, second)) << "case " << i;
    ++counts[expected];
  }
  for (const int count : counts) EXPECT_GT(count, 10);
}

// Random rings of unequal size: how they meet does not depend on which one is asked first.
TEST(MeetingOfProperty, RelationIsSymmetric) {
  std::mt19937_64 random(20261124);
  constexpr Source sources[] = {anyLatticePoint, anyPointNearALine, anySharedCorner, anyVec2};
  int unequal = 0;
  int counts[4] = {};
  for (int i = 0; i < 40000; ++i) {
    const Ring first = anyRing(random, sources[i % 4]);
    const Ring second = anyRing(random, sources[i % 4]);
    const int meeting = Kernel::meetingOf(first, second);
    ASSERT_EQ(swapped(meeting, first, second), Kernel::meetingOf(second, first)) << "case " << i;
    if (first.size() != second.size()) ++unequal;
    ++counts[meeting];
  }
  EXPECT_GT(unequal, 20000);
  for (const int count : counts) EXPECT_GT(count, 10);
}

TEST(BesideLineProperty, SegmentBesideTheBoxCrossesNothingInIt) {
  std::mt19937_64 random(20240716);
  constexpr Source sources[] = {anyLatticePoint,    anyPointNearALine, anyTinyPoint, anyVec2,
                                anyFarPointOnALine, anySharedCorner,   anyHugePoint};
  int beside = 0;
  for (int i = 0; i < 70000; ++i) {
    const Source source = sources[i % 7];
    const Ring ring{source(random), source(random), source(random)};
    const Kernel::Segment segment{source(random), source(random)};
    if (!Kernel::isBesideLine(Kernel::boxOf(ring), segment)) continue;
    ++beside;
    for (const Vec2 c : ring)
      for (const Vec2 d : ring)
        ASSERT_FALSE(0.0 > Kernel::rotate(segment.start, segment.end, c) *
                               Kernel::rotate(segment.start, segment.end, d))
            << i;
  }
  EXPECT_GT(beside, 1000);
}

TEST(ContainsPointProperty, AgreesWithThePlainWalk) {
  std::mt19937_64 random(20240717);
  constexpr Source sources[] = {anyLatticePoint, anyPointNearALine, anyTinyPoint, anyVec2};
  for (int i = 0; i < 40000; ++i) {
    const Source source = sources[i % 4];
    const Ring ring = anyRing(random, source);
    const Vec2 point = source(random);
    ASSERT_EQ(Plain::contains(toVectors(ring), toVector(point)), Kernel::containsPoint(ring, point))
        << i;
  }
}

}  // namespace
}  // namespace Lumivane::Test
