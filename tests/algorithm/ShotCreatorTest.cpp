// The pipeline of a shot as a whole, and the records that the second pass makes.

#include "support/Capture.h"
#include "support/Extremes.h"
#include "support/ShotCreatorProbe.h"
#include "support/ShotScene.h"
#include "support/Thrown.h"
#include "utils/Shapes.h"

#include <lumivane/base/Camera.h>
#include <lumivane/base/Color.h>
#include <lumivane/base/Property.h>
#include <lumivane/geometry/VFace.h>
#include <lumivane/utils/ProgressbarUtils.h>
#include <lumivane/utils/VtkUtils.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Algorithm::ProjectionType;
using Utils::ProgressbarUtils;

// A shot, without its console lines.
SharingShot quietShot(ShotScene& s) {
  SharingShot shot;
  capturedStdout([&] { shot = s.makeShot(); });
  return shot;
}

template <class Exception>
std::string shotError(ShotScene& s) {
  std::string text;
  capturedStdout([&] { text = thrownText<Exception>([&] { s.makeShot(); }); });
  return text;
}

// Takes a view from a creator without the depth sort's second look: the caller frees the shot.
SharingShot projectionOf(ShotCreatorProbe& creator, ProjectionType type) {
  SharingShot shot;
  capturedStdout([&] { shot.reset(creator.getProjection(type)); });
  return shot;
}

const std::vector<Geometry::Region2d*>& regionsOf(const SharingShot& shot) {
  return *shot->getRegions()->getRegions();
}

std::vector<Coordinates> pointsOf(const SharingShot& shot) {
  std::vector<Coordinates> result;
  for (const Geometry::Point2d* point : *shot->getPoints()->getPoints()) {
    result.push_back(point->toVector());
  }
  return result;
}

// ---- Construction and the ways in ------------------------------------------------------------

TEST(ShotCreator, StartsWithoutASceneAndWithTheDefaultLimits) {
  const Algorithm::ShotCreator creator;
  EXPECT_EQ(-1, creator.getPropertyNum());
  EXPECT_EQ(-1, creator.getScaleNum());
  EXPECT_EQ(0.01, creator.getD1());
  EXPECT_EQ(1.0, creator.getD2());
  EXPECT_EQ(nullptr, creator.getScene());
  EXPECT_EQ(nullptr, creator.getBrushes());
  EXPECT_EQ(nullptr, creator.getPens());
  EXPECT_EQ(nullptr, creator.getPoints());
  EXPECT_EQ(nullptr, creator.getObjects());
  EXPECT_EQ(nullptr, creator.getCamera());
  EXPECT_EQ(nullptr, creator.getProperties());
  EXPECT_EQ(nullptr, creator.getScales());
  EXPECT_EQ(nullptr, creator.getView());
  EXPECT_EQ(nullptr, creator.getCameraObject());
}

TEST(ShotCreator, TakesListsAndNumbersFromItsArguments) {
  ShotScene s;
  s.parameters.setPropertyNum(3);
  s.parameters.setScaleNum(2);
  s.parameters.setD1(0.5);
  s.parameters.setD2(7.0);
  s.view.setCamera(nullptr);
  Algorithm::ShotCreator creator;
  Base::Camera camera;
  creator.setCamera(&camera);
  EXPECT_EQ(nullptr, creator.makeShot(&s.scene, &s.view, &s.parameters));
  EXPECT_EQ(&s.scene, creator.getScene());
  EXPECT_EQ(s.scene.getBrushes(), creator.getBrushes());
  EXPECT_EQ(s.scene.getPens(), creator.getPens());
  EXPECT_EQ(s.scene.getPoints(), creator.getPoints());
  EXPECT_EQ(s.scene.getObjects(), creator.getObjects());
  EXPECT_EQ(&s.view, creator.getView());
  EXPECT_EQ(3, creator.getPropertyNum());
  EXPECT_EQ(2, creator.getScaleNum());
  EXPECT_EQ(0.5, creator.getD1());
  EXPECT_EQ(7.0, creator.getD2());
  EXPECT_EQ(&camera, creator.getCamera());
}

TEST(MakeShot, MissingArgumentsGiveANullShotInSilence) {
  ShotScene s;
  Algorithm::ShotCreator creator;
  EXPECT_EQ("", capturedStdout([&] {
              EXPECT_EQ(nullptr, s.scene.makeShot(nullptr, &s.parameters));
              EXPECT_EQ(nullptr, s.scene.makeShot(&s.view, nullptr));
              EXPECT_EQ(nullptr, creator.makeShot(nullptr, &s.view, &s.parameters));
              EXPECT_EQ(nullptr, creator.makeShot(&s.scene, nullptr, &s.parameters));
              EXPECT_EQ(nullptr, creator.makeShot(&s.scene, &s.view, nullptr));
              s.view.setOrientation(nullptr);
              EXPECT_EQ(nullptr, s.makeShot());
              s.view.setOrientation(s.orientation.get());
              s.view.setCamera(nullptr);
              EXPECT_EQ(nullptr, s.makeShot());
            }));
}

TEST(MakeShot, OrientationWithoutADirectionGivesANullShot) {
  ShotScene s;
  Geometry::Vector3d* up = s.orientation->getUpDirection();
  s.orientation->setUpDirection(nullptr);
  EXPECT_EQ(nullptr, s.makeShot());
  s.orientation->setUpDirection(up);
}

TEST(MakeShot, CameraKindChoosesTheProjection) {
  ShotScene s;
  s.addRegion(s.addObject(), wallAhead());
  const SharingShot radial = quietShot(s);
  s.forget();
  s.view.setCamera(&s.normal);
  const SharingShot square = quietShot(s);
  const double elevation = std::asin(1.0 / std::sqrt(11.0));
  EXPECT_NEAR(1.0 / std::sqrt(11.0), pointsOf(radial)[0][0], 1e-7);
  EXPECT_NEAR(-elevation / std::acos(0.0), pointsOf(square)[0][1], 1e-7);
}

TEST(MakeShot, CameraOfAnotherKindGivesANullShot) {
  class BareCamera : public Base::ViewCamera {};
  ShotScene s;
  BareCamera bare;
  s.view.setCamera(&bare);
  EXPECT_EQ(nullptr, s.makeShot());
}

TEST(MakeShot, SceneWithoutAnObjectsListGivesANullShotInSilence) {
  ShotScene s;
  Scene::Objects* objects = s.scene.getObjects();
  s.scene.setObjects(nullptr);
  EXPECT_EQ("", capturedStdout([&] { EXPECT_EQ(nullptr, s.makeShot()); }));
  s.scene.setObjects(objects);
}

TEST(MakeShot, SceneWithoutObjectsGivesAnEmptyShotThatIsSorted) {
  ShotScene s;
  const std::string printed = capturedStdout([&] {
    const SharingShot shot = s.makeShot();
    ASSERT_NE(nullptr, shot);
    EXPECT_TRUE(pointsOf(shot).empty());
    EXPECT_TRUE(regionsOf(shot).empty());
    EXPECT_TRUE(shot->getObjects()->getObjects()->empty());
    EXPECT_EQ(&s.view, shot->getView());
    EXPECT_EQ(s.scene.getBrushes(), shot->getBrushes());
    EXPECT_EQ(s.scene.getPens(), shot->getPens());
  });
  EXPECT_EQ("Projecting objects\n\nCalculating objects order\n\n", printed);
  EXPECT_EQ(0.0, ProgressbarUtils::getInstance()->getProgress());
}

// ---- The first pass --------------------------------------------------------------------------

void expectSamePolyData(vtkPolyData* expected, vtkPolyData* data) {
  ASSERT_EQ(expected->GetNumberOfPoints(), data->GetNumberOfPoints());
  ASSERT_EQ(expected->GetNumberOfCells(), data->GetNumberOfCells());
  for (vtkIdType i = 0; i < data->GetNumberOfPoints(); ++i)
    for (int axis = 0; axis < 3; ++axis)
      EXPECT_EQ(expected->GetPoint(i)[axis], data->GetPoint(i)[axis]);
}

std::vector<Coordinates> coordinatesOf(const ShotCreatorProbe::ProjectedPolygon& polygon) {
  std::vector<Coordinates> result;
  for (const Geometry::EdgeStartPoint2d* point : polygon) result.push_back(point->toVector());
  return result;
}

// Takes from a copy what it shares with its original.
void forgetShared(Scene::Object& copy) {
  copy.setFaces(nullptr);
  copy.setRegions(nullptr);
}

TEST(FirstPass, LeavesItsListsOnTheObject) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, wallAhead());
  s.addRegion(object, wallAhead(-3), 2);  // behind
  quietShot(s);
  ASSERT_EQ(2u, object.getRegionsPolyData()->size());
  ASSERT_EQ(2u, object.getRegionsClippedPolyData()->size());
  EXPECT_EQ(1, (*object.getRegionsClippedPolyData())[0]->GetNumberOfCells());
  EXPECT_EQ(0, (*object.getRegionsClippedPolyData())[1]->GetNumberOfCells());
  EXPECT_EQ(1u, (*object.getRegionsVisiblePolygons())[0].size());
  EXPECT_EQ(0u, (*object.getRegionsVisiblePolygons())[1].size());
  EXPECT_EQ(1u, (*object.getRegionsProjectedPolygons())[0].size());
  EXPECT_EQ(0u, (*object.getRegionsProjectedPolygons())[1].size());
}

TEST(FirstPass, ListsAreMadeAnewByEveryShotAndTheOldOnesStay) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, wallAhead());
  quietShot(s);
  Scene::Object earlier;
  earlier.setRegionsPolyData(object.getRegionsPolyData());
  earlier.setRegionsClippedPolyData(object.getRegionsClippedPolyData());
  earlier.setRegionsVisiblePolygons(object.getRegionsVisiblePolygons());
  earlier.setRegionsProjectedPolygons(object.getRegionsProjectedPolygons());
  quietShot(s);
  EXPECT_NE(earlier.getRegionsPolyData(), object.getRegionsPolyData());
  EXPECT_NE(earlier.getRegionsClippedPolyData(), object.getRegionsClippedPolyData());
  EXPECT_NE(earlier.getRegionsVisiblePolygons(), object.getRegionsVisiblePolygons());
  EXPECT_NE(earlier.getRegionsProjectedPolygons(), object.getRegionsProjectedPolygons());
  EXPECT_EQ(*earlier.getRegionsVisiblePolygons(), *object.getRegionsVisiblePolygons());
  freeWorkingLists(earlier);
}

// The lists are made when they are asked for; what they hold is the shot's.
TEST(FirstPass, ListsTellWhatTheShotSawHoweverLateTheyAreAskedFor) {
  ShotScene s;
  Scene::Object& early = s.addObject("early");
  Scene::Object& late = s.addObject("late");
  const PolygonPoints cut = {{-1, -1, -1}, {3, 1, -1}, {3, 1, 1}, {-1, -1, 1}};
  for (Scene::Object* object : {&early, &late}) {
    s.addRegion(*object, wallAhead());
    s.addRegion(*object, cut, 2);
  }
  quietShot(s);
  early.getRegionsPolyData();
  early.getRegionsClippedPolyData();
  early.getRegionsVisiblePolygons();
  early.getRegionsProjectedPolygons();

  s.setEye({0.5, 7, 7});
  s.setForward({0, 0, 1});
  for (Geometry::Point3d* point : *s.scene.getPoints()->getPoints()) point->setX(100);
  const SegmentSettings finer(12, 0.0);
  for (std::size_t r = 0; r < 2; ++r) {
    expectSamePolyData((*early.getRegionsPolyData())[r], (*late.getRegionsPolyData())[r]);
    expectSamePolyData((*early.getRegionsClippedPolyData())[r],
                       (*late.getRegionsClippedPolyData())[r]);
    const auto& expected = (*early.getRegionsProjectedPolygons())[r];
    const auto& projected = (*late.getRegionsProjectedPolygons())[r];
    ASSERT_EQ(expected.size(), projected.size());
    for (std::size_t p = 0; p < expected.size(); ++p)
      EXPECT_EQ(coordinatesOf(expected[p]), coordinatesOf(projected[p]));
  }
  EXPECT_EQ(*early.getRegionsVisiblePolygons(), *late.getRegionsVisiblePolygons());
  EXPECT_EQ(wallAhead(), (*late.getRegionsVisiblePolygons())[0][0]);
}

TEST(FirstPass, ListsAreMadeOnceAndCopiesOfTheObjectShareThem) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, wallAhead());
  quietShot(s);
  Scene::Object copy = object;
  EXPECT_EQ(copy.getRegionsPolyData(), object.getRegionsPolyData());
  EXPECT_EQ(copy.getRegionsPolyData(), copy.getRegionsPolyData());
  EXPECT_EQ(copy.getRegionsProjectedPolygons(), object.getRegionsProjectedPolygons());
  copy.setRegionsPolyData(nullptr);
  EXPECT_EQ(nullptr, copy.getRegionsPolyData());
  EXPECT_NE(nullptr, object.getRegionsPolyData());
  forgetShared(copy);
}

// The first look steps the eye off the wall, so that the second cuts the wall elsewhere.
TEST(FirstPass, ObjectThatIsListedTwiceIsBuiltFromItsLastLook) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, {{-9, 0, -1}, {9, 0, -1}, {9, 0, 1}, {-9, 0, 1}});
  s.scene.getObjects()->addObject(&object);
  s.setEye({0, -0.5, 0});
  s.setForward({1, 0.3, 0});
  s.parameters.setD1(1.0);
  s.parameters.setD2(30.0);
  const SegmentSettings coarse(1, 0.0);
  const SharingShot shot = quietShot(s);
  EXPECT_EQ((Coordinates{0, 5, 0}), s.eye());
  const std::vector<Coordinates> last =
      coordinatesOf((*object.getRegionsProjectedPolygons())[0][0]);
  ASSERT_FALSE(last.empty());
  for (const Geometry::Region2d* region : regionsOf(shot)) {
    ASSERT_EQ(last.size(), region->getPoints()->size());
    for (std::size_t i = 0; i < last.size(); ++i) {
      const auto number = static_cast<std::size_t>((*region->getPoints())[i]);
      EXPECT_NEAR(last[i][0], pointsOf(shot)[number - 1][0], Geometry::Point2d::Precision);
      EXPECT_NEAR(last[i][1], pointsOf(shot)[number - 1][1], Geometry::Point2d::Precision);
    }
  }
  s.forget();
  s.scene.getObjects()->getObjects()->pop_back();
}

TEST(FirstPass, ObjectWithoutARegionsListGetsNoListsAndKeepsItsPlace) {
  ShotScene s;
  Scene::Object& bare = s.addObject("bare");
  delete bare.getRegions();
  bare.setRegions(nullptr);
  s.addRegion(s.addObject("wall"), wallAhead());
  const SharingShot shot = quietShot(s);
  EXPECT_EQ(nullptr, bare.getRegionsPolyData());
  EXPECT_EQ(nullptr, bare.getRegionsProjectedPolygons());
  EXPECT_EQ(2u, shot->getObjects()->getObjects()->size());
  ASSERT_EQ(1u, regionsOf(shot).size());
  EXPECT_EQ(2, regionsOf(shot)[0]->getObjectNumber());
}

TEST(FirstPass, ObjectThatLostItsRegionsListShowsNothingOfAnEarlierShot) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, wallAhead());
  quietShot(s);
  delete object.getRegions();
  object.setRegions(nullptr);
  EXPECT_TRUE(regionsOf(quietShot(s)).empty());
}

TEST(FirstPass, ObjectWithPolygonDataButWithoutARegionsListGetsItsLists) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  delete object.getRegions();
  object.setRegions(nullptr);
  object.setRegionsPolyData(new ShotCreatorProbe::PolyDataList{
      Utils::VtkUtils::createPolydataFromPolygon(wallAhead()),
      Utils::VtkUtils::createPolydataFromPolygon(reversed(wallAhead())),
      Utils::VtkUtils::createPolydataFromPolygon(wallAhead(-3)), nullptr});
  const SegmentSettings coarse(2, 0.0);
  const SharingShot shot = quietShot(s);
  ASSERT_NE(nullptr, object.getRegionsClippedPolyData());
  ASSERT_EQ(4u, object.getRegionsClippedPolyData()->size());
  EXPECT_EQ(1, (*object.getRegionsClippedPolyData())[0]->GetNumberOfCells());
  ASSERT_NE(nullptr, object.getRegionsVisiblePolygons());
  EXPECT_EQ((std::vector<std::vector<PolygonPoints>>{{wallAhead()}, {{}}, {}, {}}),
            *object.getRegionsVisiblePolygons());
  ASSERT_NE(nullptr, object.getRegionsProjectedPolygons());
  EXPECT_EQ(8u, (*object.getRegionsProjectedPolygons())[0][0].size());
  EXPECT_TRUE((*object.getRegionsProjectedPolygons())[1][0].empty());
  EXPECT_TRUE(regionsOf(shot).empty());
}

TEST(FirstPass, HeldPolygonDataIsLookedAtAsThatOfARegion) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  const PolygonPoints cut = {{-1, -1, -1}, {3, 1, -1}, {3, 1, 1}, {-1, -1, 1}};
  s.addRegion(object, cut);
  Scene::Object& held = s.addObject("held");
  delete held.getRegions();
  held.setRegions(nullptr);
  held.setRegionsPolyData(
      new ShotCreatorProbe::PolyDataList{Utils::VtkUtils::createPolydataFromPolygon(cut)});
  quietShot(s);
  expectSamePolyData((*object.getRegionsClippedPolyData())[0],
                     (*held.getRegionsClippedPolyData())[0]);
  EXPECT_EQ(*object.getRegionsVisiblePolygons(), *held.getRegionsVisiblePolygons());
  const auto& expected = (*object.getRegionsProjectedPolygons())[0];
  const auto& projected = (*held.getRegionsProjectedPolygons())[0];
  ASSERT_EQ(expected.size(), projected.size());
  for (std::size_t p = 0; p < expected.size(); ++p)
    EXPECT_EQ(coordinatesOf(expected[p]), coordinatesOf(projected[p]));
}

TEST(FirstPass, RegionOfTwoPointsSaysSoAndHasNoCells) {
  ShotScene s;
  s.addRegion(s.addObject(), {{3, 0, 0}, {3, 1, 0}});
  const std::string printed = capturedStdout([&] { EXPECT_TRUE(regionsOf(s.makeShot()).empty()); });
  EXPECT_EQ("Projecting objects\n\nError: region points size < 3 \nCalculating objects order\n\n",
            printed);
}

TEST(FirstPass, MissingPointsListCountsAsEmpty) {
  ShotScene s;
  s.addRegion(s.addObject(), wallAhead());
  delete s.scene.getPoints();
  s.scene.setPoints(nullptr);
  EXPECT_EQ("index = ", shotError<std::out_of_range>(s));
}

TEST(FirstPass, PointNumberBeyondTheListIsRefused) {
  ShotScene s;
  s.addRegion(s.addObject(), wallAhead()).addPoint(6);
  EXPECT_EQ(" = ", shotError<std::out_of_range>(s));
}

// Too few points to be built, and yet its numbers are read for the projection.
TEST(FirstPass, PointNumberOfARegionOfTwoPointsIsRefusedToo) {
  ShotScene s;
  s.addRegion(s.addObject(), {{3, 0, 0}}).addPoint(3);
  EXPECT_EQ("dex = ", shotError<std::out_of_range>(s));
}

TEST(FirstPass, ParallelDirectionsEndAtTheFirstPoint) {
  ShotScene s;
  s.addRegion(s.addObject(), wallAhead());
  s.setUp({5, 0, 0});
  EXPECT_EQ("invalid vector subscript", shotError<std::out_of_range>(s));
  s.forget();
  s.setUp({0, 0, 0});
  EXPECT_EQ("invalid vector subscript", shotError<std::out_of_range>(s));
}

TEST(FirstPass, ParallelDirectionsHarmNobodyWithoutAPoint) {
  ShotScene s;
  s.addRegion(s.addObject(), wallAhead(-3));
  s.setUp({5, 0, 0});
  EXPECT_NE(nullptr, quietShot(s));
}

TEST(FirstPass, SplittingWithoutEndNamesObjectAndRegion) {
  const SegmentSettings settings(6, 0.5);
  ShotScene s;
  Scene::Object& object = s.addObject("tower");
  s.addRegion(object, wallAhead());
  // A corner at the eye is on top of the rim, and what follows it at a side, however near.
  s.addRegion(object, {{0, 0, 0}, {0, 2, 0}, {2, 0, 0}}, 2);
  const std::string text = shotError<std::length_error>(s);
  EXPECT_NE(std::string::npos, text.find("\"tower\", region 2")) << text;
}

TEST(FirstPass, ObjectWithRegionsButWithoutFacesIsNamedBeforeAnythingIsDone) {
  ShotScene s;
  Scene::Object& object = s.addObject("church");
  s.addRegion(object, wallAhead());
  delete object.getFaces();
  object.setFaces(nullptr);
  std::string text;
  EXPECT_EQ(
      "", capturedStdout([&] { text = thrownText<std::invalid_argument>([&] { s.makeShot(); }); }));
  EXPECT_NE(std::string::npos, text.find("\"church\"")) << text;
  EXPECT_EQ(nullptr, object.getRegionsPolyData());
}

TEST(FirstPass, ObjectWithoutRegionsNeedsNoFaces) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  delete object.getFaces();
  object.setFaces(nullptr);
  const SharingShot shot = quietShot(s);
  ASSERT_EQ(1u, shot->getObjects()->getObjects()->size());
  EXPECT_TRUE(shot->getObjects()->getObject(0)->getFaces()->getFaces()->empty());
}

TEST(FirstPass, NullInTheListsOfObjectsIsRefused) {
  ShotScene s;
  s.scene.getObjects()->addObject(nullptr);
  EXPECT_NE("nothing thrown", shotError<std::invalid_argument>(s));
  s.scene.getObjects()->getObjects()->clear();
}

TEST(FirstPass, NullInAListOfRegionsCountsAsARegionWithoutPoints) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  object.getRegions()->addRegion(nullptr);
  s.addRegion(object, wallAhead());
  EXPECT_EQ(1u, regionsOf(quietShot(s)).size());
}

// ---- Progress --------------------------------------------------------------------------------

TEST(Progress, SceneShotResetsAndCreatorShotDoesNot) {
  ProgressbarUtils* progress = ProgressbarUtils::getInstance();
  ShotScene s;
  progress->setTotalObjectsCount(5);
  progress->setProgress(50.0);
  Algorithm::ShotCreator creator;
  EXPECT_EQ(nullptr, creator.makeShot(&s.scene, nullptr, &s.parameters));
  EXPECT_EQ(5, progress->getTotalObjectsCount());
  EXPECT_EQ(50.0, progress->getProgress());
  EXPECT_EQ(nullptr, s.scene.makeShot(nullptr, nullptr));
  EXPECT_EQ(0, progress->getTotalObjectsCount());
  EXPECT_EQ(0.0, progress->getProgress());
}

TEST(Progress, FirstPassEndsBelow15AndSecondBelow30) {
  ShotScene s;
  for (int i = 0; i < 4; ++i) s.addObject(std::to_string(i));
  Scene::Object& wrong = s.addObject("wrong");
  s.addRegion(wrong, wallAhead(), 9);  // no face: the second pass ends at the fifth object
  shotError<std::out_of_range>(s);
  EXPECT_EQ(4 * 3.0 + 15.0, ProgressbarUtils::getInstance()->getProgress());

  s.forget();
  wrong.getRegions()->getRegion(0)->addPoint(0);  // no point: the first pass ends there
  shotError<std::out_of_range>(s);
  EXPECT_EQ(4 * 3.0, ProgressbarUtils::getInstance()->getProgress());
}

// ---- The second pass -------------------------------------------------------------------------

TEST(SecondPass, RegionsCarryTheirNumbers) {
  ShotScene s;
  s.addObject("first");
  Scene::Object& object = s.addObject("second");
  object.setPenNumber(4);
  s.addRegion(object, wallAhead(-3));
  Geometry::Region& region = s.addRegion(object, wallAhead(), 2);
  region.setBrushNumber(7);
  const SharingShot shot = quietShot(s);
  ASSERT_EQ(1u, regionsOf(shot).size());
  const Geometry::Region2d& made = *regionsOf(shot)[0];
  EXPECT_EQ(2, made.getObjectNumber());
  EXPECT_EQ(4, made.getPenNumber());
  EXPECT_EQ(7, made.getBrushNumber());
  EXPECT_EQ(2, made.getFaceNumber());
  EXPECT_EQ(2, made.getSourceRegionNumber());
  EXPECT_FALSE(made.getOverrideColor());
  EXPECT_TRUE(made.getDockingEdges()->empty());
}

TEST(SecondPass, RegionBehindMakesNothingAndItsFaceDisappears) {
  ShotScene s;
  Scene::Object& object = s.addObject("house");
  s.addRegion(object, wallAhead(-3));
  s.addRegion(object, wallAhead(), 2);
  const SharingShot shot = quietShot(s);
  EXPECT_EQ(1u, regionsOf(shot).size());
  ASSERT_EQ(1u, shot->getObjects()->getObjects()->size());
  Shot::Object2d& object2d = *shot->getObjects()->getObject(0);
  EXPECT_EQ("house", object2d.getId());
  ASSERT_EQ(1u, object2d.getFaces()->getFaces()->size());
  EXPECT_EQ((std::vector<int>{1}), *object2d.getFaces()->getFace(0)->getRegions());
}

// Two walls side by side whose shared corners lie 0.0005 apart on the plane.
TEST(SecondPass, PointsLessThanAThousandthApartAreOne) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  const double gap = 0.0015;
  s.addRegion(object, {{3, -1, -1}, {3, 0, -1}, {3, 0, 1}, {3, -1, 1}});
  s.addRegion(object, {{3, gap, -1}, {3, 1, -1}, {3, 1, 1}, {3, gap, 1}});
  const SegmentSettings settings(1, 0.0);
  const SharingShot shot = quietShot(s);
  ASSERT_EQ(2u, regionsOf(shot).size());
  EXPECT_EQ(6u, pointsOf(shot).size());
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4}), *regionsOf(shot)[0]->getPoints());
  EXPECT_EQ((std::vector<int>{2, 5, 6, 3}), *regionsOf(shot)[1]->getPoints());
  EXPECT_TRUE(regionsOf(shot)[0]->getDockingEdges()->empty());
}

TEST(SecondPass, PrecisionOfPointsIsReadAtRunTime) {
  ShotScene s;
  s.addRegion(s.addObject(), wallAhead());
  const SegmentSettings settings(1, 0.0);
  const double precision = Geometry::Point2d::Precision;
  Geometry::Point2d::Precision = 5.0;
  const SharingShot shot = quietShot(s);
  Geometry::Point2d::Precision = precision;
  EXPECT_EQ(1u, pointsOf(shot).size());
}

// The same two walls as cells of one region: the merged edge is no docking edge, for the docking
// edges are looked for with the finer measure.
TEST(SecondPass, MergedPointsStayApartForDockingEdges) {
  ShotCreatorProbe creator;
  Geometry::EdgeStartPoint2d a(0, 0), b(1, 0), c(0, 1), d(0.0005, 0), e(1.0005, 0), f(0, -1);
  EXPECT_EQ((std::vector<std::vector<int>>{{}, {}}),
            creator.getDockingEdges({{&a, &b, &c}, {&d, &e, &f}}));
}

TEST(SecondPass, CulledCellsMakeRegionsWithoutPoints) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, reversed(wallAhead()));
  s.addRegion(object, wallAhead());
  ShotCreatorProbe creator;
  const SharingShot shot = quietShot(s);
  // The region without points counts for its face, which stays.
  ASSERT_EQ(1u, (*object.getRegionsProjectedPolygons())[0].size());
  EXPECT_TRUE((*object.getRegionsProjectedPolygons())[0][0].empty());
  EXPECT_EQ(2u, regionsOf(shot).size());
  std::size_t withoutPoints = 0;
  for (const Geometry::Region2d* region : regionsOf(shot)) {
    withoutPoints += region->getPoints()->empty() ? 1 : 0;
  }
  EXPECT_EQ(1u, withoutPoints);
}

TEST(SecondPass, PolygonWithAShortEdgeMakesARegionWithoutPoints) {
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, {{3, 0, 0}, {3, 0.00005, 0}, {3, 0, 1}});
  s.addRegion(object, wallAhead());
  const SharingShot shot = quietShot(s);
  ASSERT_EQ(2u, regionsOf(shot).size());
  EXPECT_TRUE((*object.getRegionsProjectedPolygons())[0][0].empty());
}

// Five points: three triangles, with two edges between them.
TEST(SecondPass, EdgesBetweenThePiecesOfARegionAreDocking) {
  ShotScene s;
  s.addRegion(s.addObject(), {{3, -1, -1}, {3, 1, -1}, {3, 2, 0}, {3, 1, 1}, {3, -1, 1}});
  const SegmentSettings settings(1, 0.0);
  const SharingShot shot = quietShot(s);
  ASSERT_EQ(3u, regionsOf(shot).size());
  std::size_t dockingEdges = 0;
  for (const Geometry::Region2d* region : regionsOf(shot)) {
    dockingEdges += region->getDockingEdges()->size();
  }
  EXPECT_EQ(4u, dockingEdges);
}

TEST(SecondPass, EdgesOfARegionsDockingNumbersCountThePiecesOfTheSplitPolygon) {
  ShotScene s;
  s.addRegion(s.addObject(), wallAhead(), 1, {3, 1});
  const SegmentSettings settings(2, 0.0);
  const SharingShot shot = quietShot(s);
  ASSERT_EQ(1u, regionsOf(shot).size());
  EXPECT_EQ(8u, regionsOf(shot)[0]->getPoints()->size());
  EXPECT_EQ((std::vector<int>{1, 2, 5, 6}), *regionsOf(shot)[0]->getDockingEdges());
}

TEST(SecondPass, EachDockingNumberIsWrittenOnceWithTheSharedEdgesFirst) {
  // A region of five points, all of whose own edges are docking edges as well.
  ShotScene s;
  Scene::Object& object = s.addObject();
  s.addRegion(object, {{3, -1, -1}, {3, 1, -1}, {3, 2, 0}, {3, 1, 1}, {3, -1, 1}}, 1,
              {1, 2, 3, 4, 5});
  const SegmentSettings settings(1, 0.0);
  const SharingShot shot = quietShot(s);
  const auto shared = ShotCreatorProbe::getDockingEdges((*object.getRegionsProjectedPolygons())[0]);
  ASSERT_EQ(shared.size(), regionsOf(shot).size());
  bool isOrderSeen = false;
  for (std::size_t p = 0; p < shared.size(); ++p) {
    std::vector<int> expected = shared[p];
    for (const int own : {1, 2, 3}) {
      if (std::find(expected.begin(), expected.end(), own) == expected.end()) {
        expected.push_back(own);
      }
    }
    EXPECT_EQ(expected, *regionsOf(shot)[p]->getDockingEdges()) << "polygon " << p;
    isOrderSeen = isOrderSeen || !std::is_sorted(expected.begin(), expected.end());
  }
  EXPECT_TRUE(isOrderSeen);
}

TEST(SecondPass, FaceNumberThatIsNoPositionIsRefused) {
  for (const int faceNumber : {0, -1, 3, std::numeric_limits<int>::min()}) {
    ShotScene s;
    Scene::Object& object = s.addObject();
    s.addRegion(object, wallAhead()).setFaceNumber(faceNumber);
    EXPECT_NE("nothing thrown", shotError<std::out_of_range>(s)) << faceNumber;
  }
}

TEST(SecondPass, TextOfAFaceNumberPastTheEndIsTheTail) {
  ShotScene s;
  s.addRegion(s.addObject(), wallAhead()).setFaceNumber(3);
  EXPECT_EQ("dex = ", shotError<std::out_of_range>(s));
}

TEST(SecondPass, WrongFaceNumberBehindTheEyeHarmsNobody) {
  ShotScene s;
  s.addRegion(s.addObject(), wallAhead(-3)).setFaceNumber(3);
  EXPECT_NE(nullptr, quietShot(s));
}

// Coordinates, directions and numbers of every kind: a shot, a null shot or a promised exception.
TEST(ShotCreatorProperty, AnySceneEndsInAShotOrAnException) {
  std::mt19937_64 random(20240614);
  int shots = 0;
  for (int run = 0; run < 300; ++run) {
    const SegmentSettings settings(1 + static_cast<int>(random() % 4), run % 3 * 0.2);
    ShotScene s;
    if (run % 2 == 1) s.view.setCamera(&s.normal);
    const auto coordinates = [&] { return Utils::toVector(anyVec3(random)); };
    for (int o = 0; o < 3; ++o) {
      Scene::Object& object = s.addObject(std::to_string(o));
      for (int r = 1; r <= 3; ++r) {
        PolygonPoints polygon;
        for (std::uint64_t i = random() % 6; i > 0; --i) polygon.push_back(coordinates());
        s.addRegion(object, polygon, r, {static_cast<int>(random() % 6)});
      }
    }
    if (run % 4 != 0) s.setEye(coordinates());
    if (run % 4 != 1) s.setForward(coordinates());
    if (run % 4 != 2) s.setUp(coordinates());
    s.parameters.setD1(anyDouble(random));
    s.parameters.setD2(anyDouble(random));
    try {
      shots += quietShot(s) != nullptr ? 1 : 0;
    } catch (const std::out_of_range&) {
    } catch (const std::length_error&) {
    }
  }
  EXPECT_GT(shots, 100);
}

// ---- Colouring -------------------------------------------------------------------------------

// A scene of one wall whose face has the value 5 of property 8, and one scale from 0 to 10.
class Coloured : public ShotScene {
 public:
  Coloured() {
    Scene::Object& object = addObject();
    auto* face = new Geometry::VFace();
    face->setProperty(8, 5.0);
    object.getFaces()->addFace(face);
    addRegion(object, wallAhead());
    scene.setProperties(new Base::Properties());
    scene.getProperties()->addProperty(new Base::Property(3, "age"));
    scene.getProperties()->addProperty(new Base::Property(8, "height"));
    scene.setScales(new Base::Scales());
    auto* scale = new Base::Scale();
    scale->addItem(0.0, 0, 0, 0);
    scale->addItem(10.0, 100, 100, 100);
    scene.getScales()->addScale(scale);
    parameters.setPropertyNum(8);
    parameters.setScaleNum(1);
  }
};

std::optional<int> redOf(const SharingShot& shot) {
  const auto colour = regionsOf(shot)[0]->getOverrideColor();
  return colour ? std::optional<int>(colour->getRed()) : std::nullopt;
}

TEST(Colouring, ValuedFaceTakesItsColourFromTheScale) {
  Coloured s;
  const SharingShot shot = quietShot(s);
  EXPECT_EQ(50, redOf(shot));
  EXPECT_EQ(s.scene.getScales()->getScale(0), shot->getScale());
  EXPECT_EQ(8, shot->getProperty()->getNumber());
}

TEST(Colouring, NumbersBelowOneTurnItOff) {
  for (const int none : {0, -1}) {
    Coloured s;
    s.parameters.setPropertyNum(none);
    const SharingShot shot = quietShot(s);
    EXPECT_EQ(nullptr, shot->getScale());
    EXPECT_FALSE(redOf(shot));
    s.forget();
    s.parameters.setPropertyNum(8);
    s.parameters.setScaleNum(none);
    const SharingShot other = quietShot(s);
    EXPECT_EQ(nullptr, other->getProperty());
    EXPECT_FALSE(redOf(other));
  }
}

TEST(Colouring, UnknownPropertyLeavesTheScaleAndNoColour) {
  Coloured s;
  s.parameters.setPropertyNum(9);
  const SharingShot shot = quietShot(s);
  EXPECT_EQ(nullptr, shot->getProperty());
  EXPECT_NE(nullptr, shot->getScale());
  EXPECT_FALSE(redOf(shot));
}

TEST(Colouring, FaceWithoutTheValueHasNoColour) {
  Coloured s;
  s.parameters.setPropertyNum(3);
  EXPECT_FALSE(redOf(quietShot(s)));
}

TEST(Colouring, PlainFaceHasNoColour) {
  Coloured s;
  s.addRegion(*s.scene.getObjects()->getObject(0), wallAhead(2), 2);
  const SharingShot shot = quietShot(s);
  std::size_t coloured = 0;
  for (const Geometry::Region2d* region : regionsOf(shot)) {
    coloured += region->getOverrideColor() && region->getFaceNumber() == 2 ? 1 : 0;
  }
  EXPECT_EQ(0u, coloured);
}

TEST(Colouring, ScaleBeyondTheListIsRefused) {
  Coloured s;
  s.parameters.setScaleNum(2);
  EXPECT_EQ("ndex = ", shotError<std::out_of_range>(s));
}

TEST(Colouring, MissingListsTurnItOff) {
  Coloured s;
  Base::Scales* scales = s.scene.getScales();
  s.scene.setScales(nullptr);
  EXPECT_FALSE(redOf(quietShot(s)));
  s.scene.setScales(scales);
  s.forget();
  Base::Properties* properties = s.scene.getProperties();
  s.scene.setProperties(nullptr);
  EXPECT_FALSE(redOf(quietShot(s)));
  s.scene.setProperties(properties);
}

// ---- The protected way in, and the interior shot ---------------------------------------------

class Interior : public ShotScene {
 public:
  Interior() {
    addRegion(addObject("street"), wallAhead());
    holder = &addObject("house");
    creator.setObjects(scene.getObjects());
    creator.setView(&view);
    creator.setCameraObject(holder);
  }
  Scene::Object* holder;
  ShotCreatorProbe creator;
};

// Destroys an interior shot, which owns its brushes and pens.
void destroy(SharingShot shot) { delete shot.release(); }

TEST(GetProjection, WithoutAnObjectsListGivesNullInSilence) {
  ShotCreatorProbe creator;
  EXPECT_EQ("", capturedStdout(
                    [&] { EXPECT_EQ(nullptr, creator.getProjection(ProjectionType::Radial)); }));
}

TEST(GetProjection, WithoutObjectsNeedsNoView) {
  Scene::Scene3D scene;
  Scene::Objects objects;
  scene.setObjects(&objects);
  ShotCreatorProbe creator;
  creator.setScene(&scene);
  creator.setObjects(&objects);
  EXPECT_NE(nullptr, projectionOf(creator, ProjectionType::Radial));
  scene.setObjects(nullptr);
}

TEST(InteriorShot, FillsTheDiscForARadialCamera) {
  for (const int type : {0, 2}) {
    Interior s;
    SharingShot shot = projectionOf(s.creator, static_cast<ProjectionType>(type));
    const auto points = pointsOf(shot);
    ASSERT_EQ(60u, points.size());
    EXPECT_EQ((Coordinates{1, 0}), points[0]);
    EXPECT_NEAR(std::cos(3.141592653589793 / 30), points[1][0], 1e-15);
    EXPECT_NEAR(1.0, points[15][1], 1e-15);
    ASSERT_EQ(1u, regionsOf(shot).size());
    const Geometry::Region2d& region = *regionsOf(shot)[0];
    EXPECT_EQ(60u, region.getPoints()->size());
    EXPECT_EQ(1, region.getPoint(0));
    EXPECT_EQ(60, region.getPoint(59));
    EXPECT_EQ(2, region.getObjectNumber());
    EXPECT_EQ(1, region.getPenNumber());
    EXPECT_EQ(1, region.getBrushNumber());
    EXPECT_EQ(1, region.getFaceNumber());
    EXPECT_EQ(0, region.getSourceRegionNumber());
    destroy(std::move(shot));
  }
}

TEST(InteriorShot, FillsTheSquareForAnyOther) {
  for (const int type : {1, 3, 9}) {
    Interior s;
    SharingShot shot = projectionOf(s.creator, static_cast<ProjectionType>(type));
    EXPECT_EQ((std::vector<Coordinates>{{-1, 1}, {1, 1}, {1, -1}, {-1, -1}}), pointsOf(shot));
    EXPECT_EQ((std::vector<int>{1, 2, 3, 4}), *regionsOf(shot)[0]->getPoints());
    destroy(std::move(shot));
  }
}

TEST(InteriorShot, GivesItsFaceToTheCamerasObjectAlone) {
  Interior s;
  SharingShot shot = projectionOf(s.creator, ProjectionType::Square);
  ASSERT_EQ(2u, shot->getObjects()->getObjects()->size());
  EXPECT_EQ("street", shot->getObjects()->getObject(0)->getId());
  EXPECT_TRUE(shot->getObjects()->getObject(0)->getFaces()->getFaces()->empty());
  EXPECT_EQ("house", shot->getObjects()->getObject(1)->getId());
  ASSERT_EQ(1u, shot->getObjects()->getObject(1)->getFaces()->getFaces()->size());
  EXPECT_EQ((std::vector<int>{1}),
            *shot->getObjects()->getObject(1)->getFaces()->getFace(0)->getRegions());
  EXPECT_EQ(&s.view, shot->getView());
  destroy(std::move(shot));
}

Coordinates interiorColour(Base::Camera* camera) {
  Interior s;
  s.creator.setCamera(camera);
  SharingShot shot = projectionOf(s.creator, ProjectionType::Square);
  EXPECT_EQ(1u, shot->getPens()->getPens()->size());
  EXPECT_EQ(1u, shot->getBrushes()->getBrushes()->size());
  const Base::Brush& brush = *shot->getBrushes()->getBrush(0);
  Coordinates colour = {double(brush.getRed()), double(brush.getGreen()), double(brush.getBlue()),
                        double(brush.getAlpha())};
  destroy(std::move(shot));
  return colour;
}

TEST(InteriorShot, TakesTheColourOfTheCamera) {
  Base::Camera camera;
  camera.getInteriorColor()->setRed(1);
  camera.getInteriorColor()->setGreen(2);
  camera.getInteriorColor()->setBlue(3);
  camera.getInteriorColor()->setAlpha(4);
  EXPECT_EQ((Coordinates{1, 2, 3, 4}), interiorColour(&camera));
}

TEST(InteriorShot, IsDarkGreyWithoutAColour) {
  EXPECT_EQ((Coordinates{64, 64, 64, 255}), interiorColour(nullptr));
  Base::Camera camera;
  Base::Color* colour = camera.getInteriorColor();
  camera.setInteriorColor(nullptr);
  EXPECT_EQ((Coordinates{64, 64, 64, 255}), interiorColour(&camera));
  camera.setInteriorColor(colour);
}

TEST(InteriorShot, LooksAtNoRegionAndSortsNothing) {
  Interior s;
  delete s.scene.getObjects()->getObject(0)->getFaces();
  s.scene.getObjects()->getObject(0)->setFaces(nullptr);
  SharingShot shot;
  EXPECT_EQ("Projecting objects\n\n",
            capturedStdout([&] { shot.reset(s.creator.getProjection(ProjectionType::Radial)); }));
  EXPECT_EQ(nullptr, s.scene.getObjects()->getObject(0)->getRegionsPolyData());
  destroy(std::move(shot));
}

TEST(InteriorShot, NeedsNoVectorOfObjects) {
  Interior s;
  Scene::Objects none;
  const std::unique_ptr<Scene::Objects::Vector> vector(none.getObjects());
  none.setObjects(nullptr);
  s.creator.setObjects(&none);
  SharingShot shot = projectionOf(s.creator, ProjectionType::Square);
  EXPECT_TRUE(shot->getObjects()->getObjects()->empty());
  EXPECT_TRUE(regionsOf(shot).empty());
  destroy(std::move(shot));
}

TEST(InteriorShot, IsMadeByMakeShotToo) {
  Interior s;
  SharingShot shot;
  capturedStdout([&] { shot.reset(s.creator.makeShot(&s.scene, &s.view, &s.parameters)); });
  EXPECT_EQ(60u, pointsOf(shot).size());
  destroy(std::move(shot));
}

}  // namespace
}  // namespace Lumivane::Test
