#include "plain/DepthSort.h"
#include "support/Capture.h"
#include "support/DepthSortProbe.h"
#include "support/Thrown.h"
#include "support/Vectors.h"

#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>

#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Algorithm::DepthSortAlgorithmExecutor;
using Algorithm::IntersectionType;
using Polygon = DepthSortProbe::Polygon;

const Polygon UnitSquare{{0, 0}, {1, 0}, {1, 1}, {0, 1}};
const Polygon SpaceSquare{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
const std::string ZeroLength = "Zero-length vector cannot be normalized\n";
const std::string NoSubscript = "invalid vector subscript";
const std::string WrongSize = "point or vector in arguments has a size not equal to 3\n";
const std::string WrongPointSize = "point in arguments has a size not equal to 3\n";

DepthSortProbe probe() {
  static DepthSortAlgorithmExecutor executor;
  return DepthSortProbe(executor);
}

const VectorTests RotateVectors("rotate", [](const VectorCase& c) {
  checkedRun(c, [&] {
    const double turn =
        probe().rotate(toVector(c.in.at("a")), toVector(c.in.at("b")), toVector(c.in.at("c")));
    EXPECT_TRUE(sameBits(toDouble(c.out), turn)) << turn;
  });
});

const VectorTests IntersectVectors("intersect", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_EQ(c.out.get<bool>(), probe().intersect(toVector(c.in.at("a")), toVector(c.in.at("b")),
                                                   toVector(c.in.at("c")), toVector(c.in.at("d"))));
  });
});

const VectorTests ContainsPointVectors("isContainsPointArea", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_EQ(c.out.get<bool>(), probe().isContainsPointArea(toVectors(c.in.at("polygon")),
                                                             toVector(c.in.at("point"))));
  });
});

const VectorTests EqualsVectors("isPolygonsEquals", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_EQ(c.out.get<bool>(),
              probe().isPolygonsEquals(toVectors(c.in.at("first")), toVectors(c.in.at("second"))));
  });
});

const VectorTests TypeVectors("getPolygonsIntersectionType", [](const VectorCase& c) {
  checkedRun(c, [&] {
    Polygon first = toVectors(c.in.at("first"));
    Polygon second = toVectors(c.in.at("second"));
    EXPECT_EQ(c.out.get<int>(),
              static_cast<int>(probe().getPolygonsIntersectionType(&first, &second)));
  });
});

const VectorTests LocationVectors("checkPolygonsLocation", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_EQ(c.out.get<int>(), probe().checkPolygonsLocation(toVectors(c.in.at("first")),
                                                              toVectors(c.in.at("second"))));
  });
});

TEST(PolygonRelation, TypesHaveTheirNumbers) {
  EXPECT_EQ(0, static_cast<int>(IntersectionType::NoIntersection));
  EXPECT_EQ(1, static_cast<int>(IntersectionType::EdgesCrossing));
  EXPECT_EQ(2, static_cast<int>(IntersectionType::SecondInFirst));
  EXPECT_EQ(3, static_cast<int>(IntersectionType::FirstInSecond));
}

TEST(PolygonRelation, OnlyTwoCoordinatesAreReadOnThePicture) {
  EXPECT_EQ(1.0, probe().rotate({0, 0, 7}, {1, 0, 8, 9}, {1, 1}));
}

TEST(PolygonRelation, PictureOperationsNeedTwoCoordinates) {
  const auto text = [](const std::function<void()>& work) {
    return thrownText<std::out_of_range>(work);
  };
  EXPECT_EQ(NoSubscript, text([] { probe().rotate({0, 0}, {1}, {1, 1}); }));
  EXPECT_EQ(NoSubscript, text([] { probe().intersect({0, 0}, {1, 1}, {}, {1, 1}); }));
  EXPECT_EQ(NoSubscript, text([] { probe().isContainsPointArea(UnitSquare, {1}); }));
  EXPECT_EQ(NoSubscript, text([] { probe().isContainsPointArea({{1}}, {1, 1}); }));
}

TEST(PolygonRelation, MissingPolygonCountsAsEmpty) {
  Polygon square = UnitSquare;
  EXPECT_EQ(IntersectionType::FirstInSecond, probe().getPolygonsIntersectionType(nullptr, &square));
}

// The triangle crosses only the edge that closes the longer second polygon.
TEST(PolygonRelation, LongerSecondClosesOnItsOwnFirstPoint) {
  Polygon triangle{{-1, 2}, {1, 1.9}, {1, 2.1}};
  Polygon pentagon{{0, 0}, {4, 0}, {6, 2}, {4, 4}, {0, 4}};
  EXPECT_EQ(IntersectionType::EdgesCrossing,
            probe().getPolygonsIntersectionType(&triangle, &pentagon));
  EXPECT_EQ(IntersectionType::EdgesCrossing,
            probe().getPolygonsIntersectionType(&pentagon, &triangle));
}

TEST(PolygonRelation, TypeReadsNoPointThatItDoesNotCompare) {
  Polygon empty;
  Polygon tooShort{{1}};
  EXPECT_EQ(IntersectionType::FirstInSecond,
            probe().getPolygonsIntersectionType(&empty, &tooShort));
  EXPECT_EQ(NoSubscript, thrownText<std::out_of_range>(
                             [&] { probe().getPolygonsIntersectionType(&tooShort, &empty); }));
}

TEST(PolygonsEquals, OrderDoesNotCountAndOnePointMayServeTwice) {
  EXPECT_TRUE(probe().isPolygonsEquals({{0, 0, 0}, {1, 1, 1}}, {{1, 1, 1}, {0, 0, 0}}));
  EXPECT_TRUE(probe().isPolygonsEquals({{0, 0, 0}, {0, 0, 0}}, {{0, 0, 0}, {1, 1, 1}}));
  EXPECT_FALSE(probe().isPolygonsEquals({{0, 0, 0}, {1, 1, 1}}, {{0, 0, 0}, {0, 0, 0}}));
}

TEST(PolygonsEquals, CountsDecideFirstAndEmptyOnesAreEqual) {
  EXPECT_TRUE(probe().isPolygonsEquals({}, {}));
  EXPECT_FALSE(probe().isPolygonsEquals({{0, 0, 0}}, {{0, 0, 0}, {0, 0, 0}}));
}

TEST(PolygonsEquals, FlatPolygonsAreNeverEqual) {
  EXPECT_FALSE(probe().isPolygonsEquals(UnitSquare, UnitSquare));
}

TEST(PolygonsEquals, PointsMayDifferByLessThanTheTolerance) {
  EXPECT_TRUE(probe().isPolygonsEquals({{0, 0, 0}}, {{9e-8, -9e-8, 0}}));
  EXPECT_FALSE(probe().isPolygonsEquals({{0, 0, 0}}, {{0, 0, 1e-7}}));
}

TEST(PolygonLocation, ZeroLengthNormalPrintsItsMessageForEveryPoint) {
  std::string printed;
  printed = capturedStdout([] {
    EXPECT_EQ(0, probe().checkPolygonsLocation({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, SpaceSquare));
  });
  EXPECT_EQ(ZeroLength + ZeroLength + ZeroLength + ZeroLength, printed);
}

TEST(PolygonLocation, NothingIsAskedOfAnEmptySecond) {
  EXPECT_EQ("", capturedStdout([] {
              EXPECT_EQ(0, probe().checkPolygonsLocation({}, {}));
              EXPECT_EQ(0, probe().checkPolygonsLocation(SpaceSquare, {}));
            }));
}

TEST(PolygonLocation, EmptyFirstHasNoPointToMeasureFrom) {
  EXPECT_EQ(NoSubscript,
            thrownText<std::out_of_range>([] { probe().checkPolygonsLocation({}, SpaceSquare); }));
}

TEST(PolygonLocation, PointOfTwoCoordinatesIsReportedThenThrows) {
  std::string thrown;
  const std::string printed = capturedStdout([&thrown] {
    thrown = thrownText<std::out_of_range>([] {
      probe().checkPolygonsLocation(SpaceSquare, {{0, 0}});
    });
  });
  EXPECT_EQ(NoSubscript, thrown);
  EXPECT_EQ(WrongSize, printed);
}

TEST(PolygonLocation, SurplusCoordinatesAreReportedAndIgnored) {
  const std::string printed = capturedStdout([] {
    EXPECT_EQ(2, probe().checkPolygonsLocation(SpaceSquare, {{0, 0, -1, 5}}));
    EXPECT_EQ(1, probe().checkPolygonsLocation(SpaceSquare, {{0, 0, 1, 5}}));
  });
  EXPECT_EQ(WrongSize + WrongPointSize + WrongSize + WrongPointSize, printed);
}

}  // namespace
}  // namespace Lumivane::Test
