#include "kernel/Classify.h"
#include "plain/DepthSort.h"
#include "support/Vectors.h"
#include "utils/Shapes.h"

#include <cstddef>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::Cell;
using Plain::Matrix;

const std::string ZeroLength = "Zero-length vector cannot be normalized\n";

Kernel::Box boxOf(const std::vector<Matrix>& polygons) {
  const Plain::Vector b = Plain::bounds(polygons);
  return {b[0], b[1], b[2], b[3]};
}

void add(Kernel::FaceShapes& shapes, const Plain::Face& face) {
  shapes.addFace();
  for (const Matrix& polygon : face.projected) {
    const std::vector<Kernel::Vec2> outline = Utils::toVec2s(polygon);
    shapes.addPiece(outline.size(), [&](std::size_t p) { return outline[p]; });
  }
  for (const Matrix& polygon : face.sources) shapes.addSource(Utils::toVec3s(polygon));
}

Kernel::Classification classify(const Plain::Face& first, const Plain::Face& second) {
  Kernel::FaceShapes shapes;
  add(shapes, first);
  add(shapes, second);
  Kernel::PairScan scan(shapes);
  return Kernel::classifyPair(shapes, 0, 1, scan);
}

int reduce(const std::vector<int>& locations) {
  Kernel::Votes votes;
  for (const int location : locations) votes.add(location);
  return Kernel::reduceLocations(votes);
}

// A square that faces an eye at the origin, at the given distance along x, with the picture that a
// central projection on x = 1 makes of it.
Plain::Face square(double distance, double centreY, double half) {
  Plain::Face face;
  face.sources.push_back({{distance, centreY - half, -half},
                          {distance, centreY + half, -half},
                          {distance, centreY + half, half},
                          {distance, centreY - half, half}});
  Matrix projected;
  for (const Plain::Vector& p : face.sources[0]) projected.push_back({-p[1] / p[0], p[2] / p[0]});
  face.projected.push_back(projected);
  return face;
}

Plain::Face both(Plain::Face a, const Plain::Face& b) {
  a.projected.insert(a.projected.end(), b.projected.begin(), b.projected.end());
  a.sources.insert(a.sources.end(), b.sources.begin(), b.sources.end());
  return a;
}

int cellOf(const Plain::Face& first, const Plain::Face& second) {
  return classify(first, second).cell;
}

const VectorTests ClassifyPairVectors("classifyPair", [](const VectorCase& c) {
  const auto face = [](const Json& json) {
    Plain::Face result;
    for (const Json& polygon : json.at("projected")) result.projected.push_back(toVectors(polygon));
    for (const Json& polygon : json.at("sources")) result.sources.push_back(toVectors(polygon));
    return result;
  };
  checkedRun(c,
             [&] { EXPECT_EQ(c.out.get<int>(), cellOf(face(c.in.at("I")), face(c.in.at("J")))); });
});

const VectorTests ReduceLocationsVectors("reduceLocations", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_EQ(c.out.get<int>(), reduce(c.in.at("locations").get<std::vector<int>>()));
  });
});

TEST(ReduceLocations, OneNonZeroValueWinsOverAnyNumberOfZeros) {
  EXPECT_EQ(1, reduce({1, 0, 0}));
  EXPECT_EQ(2, reduce({0, 0, 2, 0, 2}));
}

TEST(ReduceLocations, MoreFrequentValueWinsAndATieGoesToTheSecond) {
  EXPECT_EQ(2, reduce({1, 2}));
  EXPECT_EQ(1, reduce({1, 1, 2}));
  EXPECT_EQ(2, reduce({2, 1, 0, 2}));
}

TEST(ReduceLocations, ZerosAloneAndNothingAreUndecided) {
  EXPECT_EQ(0, reduce({0, 0}));
  EXPECT_EQ(0, reduce({0}));
  EXPECT_EQ(0, reduce({}));
}

TEST(ClassifyPair, FaceWithTheBoundsOfAnEmptyUnionIsApart) {
  constexpr double largest = std::numeric_limits<double>::max();
  constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
  const Plain::Face all{{{{-largest, -largest}, {largest, -largest}, {largest, largest}}},
                        square(2, 0, 1).sources};
  const Plain::Face none{{{{notANumber, notANumber}}}, square(2, 0, 1).sources};
  const Plain::Vector empty = Plain::bounds(none.projected);
  ASSERT_TRUE(Plain::meet(Plain::bounds(all.projected), empty));
  EXPECT_EQ(Cell::Apart, cellOf(all, none));
  EXPECT_EQ(Cell::Apart, cellOf(none, all));
}

TEST(ClassifyPair, BoundsThatTouchInACornerAreApart) {
  Plain::Face a = square(2, 0, 1);
  Plain::Face b = a;
  a.projected = {{{0, 0}, {1, 0}, {1, 1}, {0, 1}}};
  b.projected = {{{1, 1}, {2, 1}, {2, 2}, {1, 2}}};
  EXPECT_TRUE(Kernel::boxesMeet(boxOf(a.projected), boxOf(b.projected)));
  EXPECT_EQ(Cell::Apart, cellOf(a, b));
}

TEST(ClassifyPair, DisjointPolygonsWithOverlappingBoxesAreApart) {
  Plain::Face a = square(2, 0, 1);
  Plain::Face b = a;
  a.projected = {{{0, 0}, {4, 0}, {0, 4}}};
  b.projected = {{{4, 4}, {1, 4}, {4, 1}}};
  EXPECT_EQ(Cell::Apart, cellOf(a, b));
}

TEST(ClassifyPair, SmallFaceBehindALargeFirstIsHidden) {
  EXPECT_EQ(Cell::SecondHidden, cellOf(square(2, 0, 1), square(3, 0, 0.4)));
}

TEST(ClassifyPair, SmallFaceInFrontOfALargeFirstIsInFront) {
  EXPECT_EQ(Cell::SecondInFront, cellOf(square(4, 0, 3), square(3, 0, 0.4)));
}

TEST(ClassifyPair, SmallFaceBehindALargeSecondIsHidden) {
  EXPECT_EQ(Cell::FirstHidden, cellOf(square(3, 0, 0.4), square(2, 0, 1)));
}

TEST(ClassifyPair, FaceOfWhichOnePieceStaysVisibleIsNotHidden) {
  const Plain::Face small = both(square(3, 0, 0.4), square(3, 1.4, 0.4));
  EXPECT_EQ(Cell::FirstInFront, cellOf(square(2, 0, 1), small));
  EXPECT_EQ(Cell::SecondInFront, cellOf(small, square(2, 0, 1)));
}

TEST(ClassifyPair, FaceWithAllPiecesBehindIsHidden) {
  const Plain::Face small = both(square(3, 0, 0.4), square(3, 0.9, 0.2));
  EXPECT_EQ(Cell::SecondHidden, cellOf(square(2, 0, 1), small));
}

TEST(ClassifyPair, CrossedPolygonsAreNeverHidden) {
  // The picture is a plus sign, and the bar at distance 2 is in front.
  Plain::Face flat = square(2, 0, 1);
  Plain::Face tall = square(3, 0, 1);
  flat.projected = {{{3, -1}, {-3, -1}, {-3, 1}, {3, 1}}};
  tall.projected = {{{1, -3}, {-1, -3}, {-1, 3}, {1, 3}}};
  EXPECT_EQ(Cell::FirstInFront, cellOf(flat, tall));
  EXPECT_EQ(Cell::SecondInFront, cellOf(tall, flat));
}

TEST(ClassifyPair, FirstGoesWhenBothAreHidden) {
  const Kernel::Votes oneEach{2, 1, 1};
  EXPECT_EQ(Cell::FirstHidden, Kernel::cellOf(oneEach, true, true));
  EXPECT_EQ(Cell::SecondHidden, Kernel::cellOf(oneEach, false, true));
  EXPECT_EQ(Cell::SecondInFront, Kernel::cellOf(oneEach, false, false));
  EXPECT_EQ(Cell::Apart, Kernel::cellOf({}, true, true));
}

// Small behind large in both directions: one flag of each face is set, and the vote is a tie.
TEST(ClassifyPair, FacesThatHideAPieceOfEachOtherBothStay) {
  const Plain::Face first = both(square(2, 0, 1), square(5, 5, 0.4));
  const Plain::Face second = both(square(3, 0, 0.4), square(4, 4, 1));
  EXPECT_EQ(Cell::SecondInFront, cellOf(first, second));
  EXPECT_EQ(Cell::SecondInFront, cellOf(second, first));
}

TEST(ClassifyPair, CoplanarOverlapIsUndecided) {
  EXPECT_EQ(Cell::Undecided, cellOf(square(3, 0, 1), square(3, 0.5, 0.8)));
}

TEST(ClassifyPair, MissingSourceIsReported) {
  const Plain::Face large = square(2, 0, 1);
  const Plain::Face small = square(3, 0, 0.4);
  EXPECT_FALSE(classify(large, small).sourceMissing);
  Plain::Face without = small;
  without.sources.clear();
  EXPECT_TRUE(classify(large, without).sourceMissing);
  EXPECT_TRUE(classify(without, large).sourceMissing);
  without = square(3, 9, 0.4);
  without.sources.clear();
  EXPECT_FALSE(classify(large, without).sourceMissing);
}

TEST(ClassifyPairProperty, AgreesWithThePlainScans) {
  std::mt19937_64 random(20240731);
  const auto lattice = [&random](std::uint64_t range) {
    return static_cast<double>(random() % range);
  };
  const auto anyFace = [&] {
    Plain::Face face;
    for (std::uint64_t pieces = 1 + random() % 3; pieces > 0; --pieces) {
      const double x = lattice(5);
      const double y = lattice(5);
      const double width = 1 + lattice(7);
      const double height = 1 + lattice(7);
      face.projected.push_back(
          {{x, y}, {x + width + 0.5, y + 0.25}, {x + width, y + height}, {x + 0.25, y + height}});
      Matrix source;
      for (int k = 0; k < 4; ++k) source.push_back({lattice(3), lattice(3), lattice(3)});
      face.sources.push_back(source);
    }
    return face;
  };
  int counts[6] = {};
  for (int i = 0; i < 20000; ++i) {
    const Plain::Face first = anyFace();
    const Plain::Face second = anyFace();
    std::string printed;
    const int expected = Plain::cell(first, second, printed);
    const Kernel::Classification found = classify(first, second);
    ASSERT_EQ(expected, found.cell) << i;
    ASSERT_EQ(printed.size(), found.zeroLengthAsked * ZeroLength.size()) << i;
    ++counts[expected];
  }
  for (const int count : counts) EXPECT_GT(count, 20);
}

// Most pieces lie away from the other face; some of their points are infinite or no numbers.
TEST(ClassifyPairProperty, AgreesWithThePlainScansOnFacesOfManyPieces) {
  std::mt19937_64 random(20240801);
  constexpr double infinite = std::numeric_limits<double>::infinity();
  const double odd[] = {infinite, -infinite, std::numeric_limits<double>::quiet_NaN(), 1e308};
  const auto lattice = [&random](std::uint64_t range) {
    return static_cast<double>(random() % range);
  };
  const auto anyFace = [&](double offset) {
    Plain::Face face;
    for (std::uint64_t pieces = 1 + random() % 12; pieces > 0; --pieces) {
      const double x = offset + lattice(12);
      const double y = lattice(12);
      face.projected.push_back({{x, y}, {x + 2 + lattice(2), y + 0.25}, {x, y + 1 + lattice(3)}});
      if (random() % 32 == 0) face.projected.back()[random() % 3][random() % 2] = odd[random() % 4];
      Matrix source;
      for (int k = 0; k < 3; ++k) source.push_back({lattice(3), lattice(3), lattice(3)});
      face.sources.push_back(source);
    }
    return face;
  };
  int counts[6] = {};
  for (int i = 0; i < 4000; ++i) {
    const Plain::Face first = anyFace(0);
    const Plain::Face second = anyFace(lattice(14));
    std::string printed;
    const int expected = Plain::cell(first, second, printed);
    const Kernel::Classification found = classify(first, second);
    ASSERT_EQ(expected, found.cell) << i;
    ASSERT_EQ(printed.size(), found.zeroLengthAsked * ZeroLength.size()) << i;
    ++counts[expected];
  }
  for (const int cell : {Cell::Undecided, Cell::FirstInFront, Cell::SecondInFront, Cell::Apart})
    EXPECT_GT(counts[cell], 100) << cell;
}

}  // namespace
}  // namespace Lumivane::Test
