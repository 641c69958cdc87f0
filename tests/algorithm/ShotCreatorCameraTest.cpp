// The camera against the scene, and the choice of polygons by their normals.

#include "algorithm/pipeline/PolygonClipper.h"
#include "support/Capture.h"
#include "support/ShotCreatorProbe.h"
#include "support/ShotScene.h"
#include "support/Thrown.h"
#include "support/Vectors.h"

#include <lumivane/utils/VtkUtils.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Utils::VtkUtils;

// A direction that is not parallel to `forward`.
Coordinates someUp(const Coordinates& forward) {
  return std::abs(forward[2]) > std::abs(forward[0]) ? Coordinates{1, 0, 0} : Coordinates{0, 0, 1};
}

// ---- The cases of the data files -------------------------------------------------------------

const VectorTests areaVectors("isPointInArea3dConvex", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_EQ(c.out.get<bool>(), ShotCreatorProbe::isPointInArea3dConvex(
                                     toVector(c.in["point"]), toVectors(c.in["polygon"])));
  });
});

const VectorTests normalVectors("cellNormals", [](const VectorCase& c) {
  const auto data = VtkUtils::createPolydataFromPolygon(toVectors(c.in["polygon"]));
  std::vector<vtkIdType> ids(static_cast<std::size_t>(data->GetNumberOfPoints()));
  std::iota(ids.begin(), ids.end(), 0);
  const Kernel::Vec3 normal = Algorithm::toVec3(
      Algorithm::cellNormal(data->GetPoints(), data->GetNumberOfPoints(), ids.data()));
  EXPECT_TRUE(sameBits(toVectors(c.out), {{normal.x, normal.y, normal.z}}));
});

const VectorTests shiftVectors("cameraShift", [](const VectorCase& c) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, toVectors(c.in["polygon"]));
  s.setEye(toVector(c.in["eye"]));
  s.setForward(toVector(c.in["forward"]));
  s.setUp(someUp(toVector(c.in["forward"])));
  s.parameters.setD1(toDouble(c.in["D1"]));
  s.parameters.setD2(toDouble(c.in["D2"]));
  capturedStdout([&] { s.makeShot(); });
  EXPECT_TRUE(sameBits(toVector(c.out[0]), s.eye()));
  EXPECT_EQ(c.out[1].get<int>(), object.getCameraInRegionIndex());
});

const VectorTests visibleVectors("visiblePolygons", [](const VectorCase& c) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, toVectors(c.in["polygon"]));
  s.setEye(toVector(c.in["eye"]));
  s.setForward(toVector(c.in["forward"]));
  s.setUp(someUp(toVector(c.in["forward"])));
  s.parameters.setD1(0.0);
  capturedStdout([&] { s.makeShot(); });
  ASSERT_NE(nullptr, object.getRegionsVisiblePolygons());
  const auto& polygons = (*object.getRegionsVisiblePolygons())[0];
  ASSERT_EQ(c.out.size(), polygons.size());
  for (std::size_t i = 0; i < polygons.size(); ++i) {
    EXPECT_TRUE(sameBits(toVectors(c.out[i]), polygons[i])) << "polygon " << i;
  }
});

// ---- Over a polygon --------------------------------------------------------------------------

const PolygonPoints Square = {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}};

bool isOverSquare(const Coordinates& point) {
  return ShotCreatorProbe::isPointInArea3dConvex(point, Square);
}

TEST(IsPointInArea3dConvex, CentreAndEdgesAreInAndCornersAreOut) {
  EXPECT_TRUE(isOverSquare({1, 1, 0}));
  EXPECT_TRUE(isOverSquare({1, 0, 0}));
  EXPECT_FALSE(isOverSquare({0, 0, 0}));
}

TEST(IsPointInArea3dConvex, FarOutAndAboveAreOut) {
  EXPECT_FALSE(isOverSquare({50, 1, 0}));
  EXPECT_FALSE(isOverSquare({1, 1, 0.5}));
}

TEST(IsPointInArea3dConvex, NoPolygonHasNoArea) {
  EXPECT_FALSE(ShotCreatorProbe::isPointInArea3dConvex({0, 0, 0}, {}));
}

const std::string WrongPointSize = "point in arguments has a size not equal to 3\n";

TEST(IsPointInArea3dConvex, PointOfFourCoordinatesIsReportedForEachVectorAndCut) {
  EXPECT_EQ(std::string(), capturedStdout([] { EXPECT_TRUE(isOverSquare({1, 1, 0})); }));
  std::string eight;
  for (int i = 0; i < 8; ++i) eight += WrongPointSize;
  EXPECT_EQ(eight, capturedStdout([] { EXPECT_TRUE(isOverSquare({1, 1, 0, 9})); }));
  PolygonPoints longCorner = Square;
  longCorner[2].push_back(5);
  EXPECT_EQ(WrongPointSize + WrongPointSize, capturedStdout([&] {
              EXPECT_TRUE(ShotCreatorProbe::isPointInArea3dConvex({1, 1, 0}, longCorner));
            }));
}

TEST(IsPointInArea3dConvex, PointOfTwoCoordinatesIsReportedThenThrows) {
  std::string thrown;
  EXPECT_EQ(WrongPointSize, capturedStdout([&] {
              thrown = thrownText<std::out_of_range>([] { isOverSquare({1, 1}); });
            }));
  EXPECT_EQ("invalid vector subscript", thrown);
}

// ---- The shift -------------------------------------------------------------------------------

// A wall in the plane y = 2, seen by an eye that looks along it: its normal is (0, 1, 0).
const PolygonPoints SideWall = {{-4, 2, -3}, {-4, 2, 3}, {4, 2, 3}, {4, 2, -3}};

struct Shift {
  Coordinates eye;
  int cameraInRegionIndex;
};

Shift shiftAt(const Coordinates& eye, const Coordinates& forward) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, {{20, 20, 0}, {20, 21, 0}, {20, 20, 1}});
  s.addRegion(object, SideWall, 2);
  s.setEye(eye);
  s.setForward(forward);
  capturedStdout([&] { s.makeShot(); });
  return {s.eye(), object.getCameraInRegionIndex()};
}

TEST(CameraShift, EyeOnAWallIsSteppedFiveTimesD1Behind) {
  const Shift shift = shiftAt({0, 1.995, 0}, {1, 0, 0});
  EXPECT_EQ(0.0, shift.eye[0]);
  EXPECT_NEAR(1.95, shift.eye[1], 1e-12);
  EXPECT_EQ(0.0, shift.eye[2]);
  EXPECT_EQ(1, shift.cameraInRegionIndex);
}

TEST(CameraShift, EyeThatLooksAwayFromTheWallStays) {
  const double degrees2 = 2.0 * 3.141592653589793 / 180.0;
  const Shift shift = shiftAt({0, 1.995, 0}, {std::cos(degrees2), std::sin(degrees2), 0});
  EXPECT_EQ((Coordinates{0, 1.995, 0}), shift.eye);
  EXPECT_EQ(-1, shift.cameraInRegionIndex);
}

// To 2 decimals the angle would be 1 degree off, and the eye would stay.
TEST(CameraShift, AngleIsRoundedTo5Decimals) {
  const double offPlane = 0.996 * 3.141592653589793 / 180.0;
  const Shift shift = shiftAt({0, 1.995, 0}, {std::cos(offPlane), std::sin(offPlane), 0});
  EXPECT_NEAR(1.95, shift.eye[1], 1e-12);
}

TEST(CameraShift, EyeInThePlaneButBesideTheOutlineStays) {
  const Shift shift = shiftAt({0, 2, 5}, {1, 0, 0});
  EXPECT_EQ((Coordinates{0, 2, 5}), shift.eye);
  EXPECT_EQ(-1, shift.cameraInRegionIndex);
}

TEST(CameraShift, EyeAtTheDistanceD1Stays) {
  EXPECT_EQ((Coordinates{0, 1.75, 0}), [] {
    ShotScene s;
    s.addRegion(s.addObject(), SideWall);
    s.setEye({0, 1.75, 0});
    s.parameters.setD1(0.25);
    capturedStdout([&] { s.makeShot(); });
    return s.eye();
  }());
}

TEST(CameraShift, EyeThatLooksAwayByTheAngleD2Stays) {
  const auto eyeWith = [](double angleLimit) {
    ShotScene s;
    s.addRegion(s.addObject(), SideWall);
    s.setEye({0, 1.995, 0});
    s.setForward({1, 1, 0});  // 45 degrees off
    s.parameters.setD2(angleLimit);
    capturedStdout([&] { s.makeShot(); });
    return s.eye();
  };
  EXPECT_EQ((Coordinates{0, 1.995, 0}), eyeWith(45.0));
  EXPECT_NE((Coordinates{0, 1.995, 0}), eyeWith(45.001));
}

// The second cell starts from the eye before the object, not from where the first put it.
TEST(CameraShift, LastHitWinsAndStartsFromTheEyeBeforeTheObject) {
  const PolygonPoints back(SideWall.rbegin(), SideWall.rend());
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, SideWall);
  s.addRegion(object, back, 2);  // culled at this eye, and yet it shifts
  s.setEye({0, 1.995, 0});
  capturedStdout([&] { s.makeShot(); });
  EXPECT_NEAR(2.05, s.eye()[1], 1e-12);
  EXPECT_EQ(1, object.getCameraInRegionIndex());
}

TEST(CameraShift, LaterPolygonsOfTheObjectAreChosenWithTheNewEye) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, SideWall);
  // Its plane y = 1.97 lies between the old eye and the new one.
  s.addRegion(object, {{5, 1.97, -3}, {5, 1.97, 3}, {9, 1.97, 3}, {9, 1.97, -3}}, 2);
  s.setEye({0, 1.995, 0});
  capturedStdout([&] { s.makeShot(); });
  EXPECT_FALSE((*object.getRegionsVisiblePolygons())[1][0].empty());
}

TEST(CameraShift, LaterObjectsUseTheNewEye) {
  ShotScene s;
  s.addRegion(s.addObject("wall"), SideWall);
  Scene::Object& later = s.addObject("later");
  // Its plane y = 1.97 lies between the old eye and the new one.
  s.addRegion(later, {{5, 1.97, -3}, {5, 1.97, 3}, {9, 1.97, 3}, {9, 1.97, -3}});
  s.setEye({0, 1.995, 0});
  capturedStdout([&] { s.makeShot(); });
  EXPECT_FALSE((*later.getRegionsVisiblePolygons())[0][0].empty());
}

TEST(CameraShift, IndexStaysFromShotToShot) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, SideWall);
  s.setEye({0, 1.995, 0});
  capturedStdout([&] { s.makeShot(); });
  s.forget();
  s.setEye({0, 0, 0});
  capturedStdout([&] { s.makeShot(); });
  EXPECT_EQ(0, object.getCameraInRegionIndex());
  EXPECT_GE((*object.getRegionsProjectedPolygons())[0][0].size(), 7000u);
}

TEST(CheckCameraOnPolygonAndShift, ChangesNothing) {
  ShotScene s;
  s.setEye({0, 1.995, 0});
  ShotCreatorProbe creator;
  creator.setView(&s.view);
  ShotCreatorProbe::PolyDataList list = {VtkUtils::createPolydataFromPolygon(SideWall)};
  creator.checkCameraOnPolygonAndShift(&list);
  creator.checkCameraOnPolygonAndShift(nullptr);
  EXPECT_EQ((Coordinates{0, 1.995, 0}), s.eye());
}

// ---- The choice by normals -------------------------------------------------------------------

std::vector<PolygonPoints> visibleOf(const PolygonPoints& polygon, const Coordinates& eye) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, polygon);
  s.setEye(eye);
  capturedStdout([&] { s.makeShot(); });
  return (*object.getRegionsVisiblePolygons())[0];
}

TEST(VisiblePolygons, PolygonSeenFromItsWrongSideLeavesAnEmptyOne) {
  EXPECT_EQ((std::vector<PolygonPoints>{{}}), visibleOf(reversed(wallAhead()), {0, 0, 0}));
  EXPECT_EQ((std::vector<PolygonPoints>{wallAhead()}), visibleOf(wallAhead(), {0, 0, 0}));
}

TEST(VisiblePolygons, PolygonWithItsFirstPointAtTheEyeIsKept) {
  const PolygonPoints atEye = {{0, 0, 0}, {1, 1, 0}, {1, 0, 1}};
  EXPECT_EQ(1u, visibleOf(atEye, {0, 0, 0}).size());
  EXPECT_FALSE(visibleOf(atEye, {0, 0, 0})[0].empty());
  const PolygonPoints turned = {{0, 0, 0}, {1, 0, 1}, {1, 1, 0}};
  EXPECT_FALSE(visibleOf(turned, {0, 0, 0})[0].empty());
}

TEST(VisiblePolygons, PolygonSeenAlongItsPlaneIsDropped) {
  EXPECT_EQ((std::vector<PolygonPoints>{{}}),
            visibleOf({{1, 0, 0}, {2, 0, 0}, {2, 1, 0}}, {0, 0, 0}));
}

// Seen at 0.004 degrees: the angle to the normal, 89.996, is rounded to 90. At 0.01 it is not.
TEST(VisiblePolygons, AngleIsRoundedTo2Decimals) {
  const auto flatAt = [](double z) { return PolygonPoints{{1, 0, z}, {2, 0, z}, {2, 1, z}}; };
  EXPECT_TRUE(visibleOf(flatAt(7e-05), {0, 0, 0})[0].empty());
  EXPECT_FALSE(visibleOf(flatAt(17.5e-05), {0, 0, 0})[0].empty());
}

TEST(VisiblePolygons, AngleThatIsNoNumberAppendsNothing) {
  // A corner beyond single precision: its cell has a normal that is no number.
  const double huge = 1e200;
  EXPECT_TRUE(visibleOf({{huge, -1, -1}, {3, 1, -1}, {3, 1, 1}}, {0, 0, 0}).empty());
}

// ---- In an object ----------------------------------------------------------------------------

// All sides are wound so that their normals point outward.
const std::vector<PolygonPoints> BoxSides = {
    {{-1, -1, -1}, {-1, 1, -1}, {1, 1, -1}, {1, -1, -1}},
    {{-1, -1, 1}, {1, -1, 1}, {1, 1, 1}, {-1, 1, 1}},
    {{-1, -1, -1}, {1, -1, -1}, {1, -1, 1}, {-1, -1, 1}},
    {{-1, 1, -1}, {-1, 1, 1}, {1, 1, 1}, {1, 1, -1}},
    {{-1, -1, -1}, {-1, -1, 1}, {-1, 1, 1}, {-1, 1, -1}},
    {{1, -1, -1}, {1, 1, -1}, {1, 1, 1}, {1, -1, 1}},
};

ShotCreatorProbe::PolyDataList boxInSixPieces() {
  ShotCreatorProbe::PolyDataList list;
  for (const PolygonPoints& side : BoxSides) {
    list.push_back(VtkUtils::createPolydataFromPolygon(side));
  }
  return list;
}

ShotCreatorProbe::PolyDataList boxInOnePiece() {
  const vtkNew<vtkPoints> points;
  const vtkNew<vtkCellArray> cells;
  for (const PolygonPoints& side : BoxSides) {
    vtkIdType ids[4];
    for (std::size_t i = 0; i < 4; ++i) {
      ids[i] = points->InsertNextPoint(side[i][0], side[i][1], side[i][2]);
    }
    cells->InsertNextCell(4, ids);
  }
  const auto box = vtkSmartPointer<vtkPolyData>::New();
  box->SetPoints(points);
  box->SetPolys(cells);
  return {box};
}

bool isInObject(ShotCreatorProbe::PolyDataList list, const Coordinates& eye) {
  ShotScene s;
  s.setEye(eye);
  s.setForward({3, 0.4, 0.2});
  ShotCreatorProbe creator;
  creator.setView(&s.view);
  return creator.isCameraInObject(&list);
}

TEST(IsCameraInObject, EyeInABoxIsIn) {
  EXPECT_TRUE(isInObject(boxInOnePiece(), {0, 0, 0}));
  EXPECT_TRUE(isInObject(boxInSixPieces(), {0, 0, 0}));
}

TEST(IsCameraInObject, EyeBesideABoxIsOut) {
  EXPECT_FALSE(isInObject(boxInOnePiece(), {-3, 0, 0}));   // two crossings
  EXPECT_FALSE(isInObject(boxInSixPieces(), {-3, 0, 0}));  // two crossings
  EXPECT_FALSE(isInObject(boxInSixPieces(), {3, 0, 0}));   // none
}

TEST(IsCameraInObject, NoDataHoldsNothing) {
  ShotCreatorProbe creator;
  EXPECT_FALSE(creator.isCameraInObject(nullptr));
  EXPECT_FALSE(isInObject({}, {0, 0, 0}));
  EXPECT_FALSE(isInObject({vtkSmartPointer<vtkPolyData>::New(), nullptr}, {0, 0, 0}));
}

TEST(IsCameraInObject, WithoutAViewNothingHoldsTheEye) {
  ShotCreatorProbe::PolyDataList list = boxInOnePiece();
  ShotCreatorProbe creator;
  EXPECT_FALSE(creator.isCameraInObject(&list));
}

}  // namespace
}  // namespace Lumivane::Test
