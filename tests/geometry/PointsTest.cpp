#include "support/Documents.h"
#include "support/Vectors.h"

#include <lumivane/geometry/EdgeStartPoint2d.h>
#include <lumivane/geometry/EdgeStartPoint3d.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Vector3d.h>

#include <limits>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using namespace Geometry;

// Gives the tolerance back its value, so that a test may change it.
class PrecisionKept {
 public:
  ~PrecisionKept() { Point2d::Precision = old; }

 private:
  double old = Point2d::Precision;
};

template <class... Points>
void fill(Points2d& list, const Points&... points) {
  (list.addPoint(new Point2d(points)), ...);
}

TEST(Points, StartAtTheOrigin) {
  EXPECT_EQ((std::vector<double>{0.0, 0.0}), Point2d().toVector());
  EXPECT_EQ((std::vector<double>{0.0, 0.0, 0.0}), Point3d().toVector());
  EXPECT_EQ((std::vector<double>{0.0, 0.0, 0.0}), Vector3d().toVector());
}

TEST(Points, GiveTheirCoordinatesAsAVectorOfTwoOrThree) {
  EXPECT_EQ((std::vector<double>{1.5, -2.0}), Point2d(1.5, -2.0).toVector());
  EXPECT_EQ((std::vector<double>{1.5, -2.0, 3.0}), Point3d(1.5, -2.0, 3.0).toVector());
}

TEST(Points, KeepWhatTheSettersGive) {
  Point2d flat;
  flat.setX(1.0);
  flat.setY(2.0);
  EXPECT_EQ(1.0, flat.getX());
  EXPECT_EQ(2.0, flat.getY());
  Point3d solid;
  solid.setX(1.0);
  solid.setY(2.0);
  solid.setZ(3.0);
  EXPECT_EQ(1.0, solid.getX());
  EXPECT_EQ(2.0, solid.getY());
  EXPECT_EQ(3.0, solid.getZ());
}

TEST(Points, HaveAToleranceOfAThousandth) {
  EXPECT_EQ(0.001, Point2d::Precision);
  EXPECT_EQ(0.001, Point3d::Precision);
  static_assert(!std::is_const_v<decltype(Point2d::Precision)>);
  static_assert(!std::is_const_v<decltype(Point3d::Precision)>);
}

TEST(Points, HaveNoVirtualDestructor) {
  static_assert(std::is_polymorphic_v<Point2d> && !std::has_virtual_destructor_v<Point2d>);
  static_assert(std::is_base_of_v<Point3d, Vector3d> &&
                std::is_base_of_v<Point3d, EdgeStartPoint3d>);
  static_assert(std::is_base_of_v<Point2d, EdgeStartPoint2d>);
}

TEST(Points, WriteTheirCoordinatesAsAnArray) {
  Point2d flat(0.5, -0.25);
  EXPECT_EQ("[0.5,-0.25]", textOf(flat));
  Point3d solid(1.0, 2.0, 3.0);
  EXPECT_EQ("[1,2,3]", textOf(solid));
  Vector3d direction(0, 0, 1);
  EXPECT_EQ("[0,0,1]", textOf(direction));
}

TEST(Points, KeepSixDigitsOnTheirWayToAFile) {
  Point3d point;
  EXPECT_EQ("[0.123457,0,0]", textOf(readInto(point, "[0.1234567,0,0]")));
  EXPECT_EQ(0.1234567, point.getX());
}

TEST(Points, ReadOnlyArraysOfTheirOwnLength) {
  Point2d flat(7, 8);
  for (const char* text : {"[1]", "[1,2,3]", "[]", "{\"x\":1}"}) readInto(flat, text);
  flat.deserialize(Jzon::Node(3));
  flat.deserialize(Jzon::invalid());
  EXPECT_EQ((std::vector<double>{7, 8}), flat.toVector());
  Point3d solid(7, 8, 9);
  for (const char* text : {"[1,2]", "[1,2,3,4]", "[]", "{\"x\":1}"}) readInto(solid, text);
  EXPECT_EQ((std::vector<double>{7, 8, 9}), solid.toVector());
}

TEST(Points, LeaveOutElementsThatAreNoNumbers) {
  Point3d solid;
  EXPECT_EQ((std::vector<double>{1, 0, 3}), readInto(solid, "[1,\"a\",3]").toVector());
  Point2d flat;
  EXPECT_EQ((std::vector<double>{0, 3}), readInto(flat, "[null,3]").toVector());
}

TEST(Points, ReturnThemselvesFromReading) {
  Point2d flat;
  EXPECT_EQ(&flat, flat.deserialize(nodeOf("[1,2]")));
  Vector3d direction;
  EXPECT_EQ(&direction, direction.deserialize(nodeOf("[1,2,3]")));
  EXPECT_EQ(3.0, direction.getZ());
}

TEST(EdgeStartPoints, HaveTheirEdgeAtFirst) {
  EXPECT_TRUE(EdgeStartPoint2d().getHasEdge());
  EXPECT_TRUE(EdgeStartPoint3d().getHasEdge());
  EXPECT_TRUE(EdgeStartPoint2d(1, 2).getHasEdge());
  EXPECT_TRUE(EdgeStartPoint3d(1, 2, 3).getHasEdge());
}

TEST(EdgeStartPoints, KeepTheFlagInCopiesAndAssignments) {
  EdgeStartPoint3d solid(1, 2, 3);
  solid.setHasEdge(false);
  const EdgeStartPoint3d copy(solid);
  EXPECT_FALSE(copy.getHasEdge());
  EXPECT_EQ(solid.toVector(), copy.toVector());
  EdgeStartPoint2d flat(1, 2);
  flat.setHasEdge(false);
  EdgeStartPoint2d assigned;
  assigned = flat;
  EXPECT_FALSE(assigned.getHasEdge());
  EXPECT_EQ(flat.toVector(), assigned.toVector());
}

TEST(EdgeStartPoints, LoseTheFlagInAFile) {
  EdgeStartPoint3d solid(1, 2, 3);
  solid.setHasEdge(false);
  EXPECT_EQ("[1,2,3]", textOf(solid));
  EdgeStartPoint2d flat(1, 2);
  flat.setHasEdge(false);
  EXPECT_EQ("[1,2]", textOf(flat));
  EdgeStartPoint2d read;
  readInto(read, textOf(flat));
  EXPECT_TRUE(read.getHasEdge());
}

TEST(Points2dIndexOf, FindsAPointJustInsideTheToleranceOnBothAxes) {
  Points2d list;
  fill(list, Point2d(0.5, 0.5), Point2d(0.0, 0.0));
  Point2d wanted(0.0009, -0.0009);
  EXPECT_EQ(1, list.indexOf(&wanted));
}

TEST(Points2dIndexOf, MissesAPointAtTheToleranceOnOneAxis) {
  Points2d list;
  fill(list, Point2d(0.0, 0.0));
  Point2d right(0.001, 0.0);
  Point2d up(0.0, -0.001);
  EXPECT_EQ(-1, list.indexOf(&right));
  EXPECT_EQ(-1, list.indexOf(&up));
}

TEST(Points2dIndexOf, TakesTheFirstOfSeveral) {
  Points2d list;
  fill(list, Point2d(0.0005, 0.0), Point2d(0.0, 0.0));
  Point2d wanted(0.0, 0.0);
  EXPECT_EQ(0, list.indexOf(&wanted));
}

TEST(Points2dIndexOf, FindsNothingForNullInAnEmptyListOrAtNaN) {
  Points2d list;
  Point2d wanted(0.0, 0.0);
  EXPECT_EQ(-1, list.indexOf(&wanted));
  fill(list, Point2d(0.0, 0.0));
  EXPECT_EQ(-1, list.indexOf(nullptr));
  wanted.setX(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(-1, list.indexOf(&wanted));
}

TEST(Points2dIndexOf, PassesOverNullElementsAndAMissingVector) {
  Points2d list;
  list.addPoint(nullptr);
  fill(list, Point2d(0.0, 0.0));
  Point2d wanted(0.0, 0.0);
  EXPECT_EQ(1, list.indexOf(&wanted));
  list.clear();
  delete list.getPoints();
  list.setPoints(nullptr);
  EXPECT_EQ(-1, list.indexOf(&wanted));
}

TEST(Points2dIndexOf, ReadsTheToleranceAtEachCall) {
  const PrecisionKept kept;
  Points2d list;
  fill(list, Point2d(0.0, 0.0));
  Point2d wanted(0.4, 0.0);
  EXPECT_EQ(-1, list.indexOf(&wanted));
  Point2d::Precision = 0.5;
  EXPECT_EQ(0, list.indexOf(&wanted));
}

const VectorTests indexOfVectors("indexOf", [](const VectorCase& vectorCase) {
  checkedRun(vectorCase, [&] {
    Points2d list;
    for (const std::vector<double>& point : toVectors(vectorCase.in.at("points")))
      list.addPoint(new Point2d(point.at(0), point.at(1)));
    const std::vector<double> place = toVector(vectorCase.in.at("point"));
    Point2d wanted(place.at(0), place.at(1));
    EXPECT_EQ(vectorCase.out.get<int>(), list.indexOf(&wanted));
  });
});

}  // namespace
}  // namespace Lumivane::Test
