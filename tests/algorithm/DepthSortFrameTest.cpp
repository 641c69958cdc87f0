#include "support/Capture.h"
#include "support/DepthSortProbe.h"
#include "support/SortStage.h"
#include "support/Thrown.h"

#include <lumivane/algorithm/Bounds2D.h>
#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/ObjectData.h>
#include <lumivane/algorithm/ProjectedPolygonData.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Algorithm::DepthSortAlgorithmExecutor;
using Algorithm::ObjectData;
using Numbers = std::vector<int>;
using Polygon = SortStage::Polygon;

const std::string FirstLine = "Calculating objects order\n\n";
const std::string NoSubscript = "invalid vector subscript";

std::string runOn(Scene::Scene3D* scene, Shot::Shot2d* shot) {
  DepthSortAlgorithmExecutor executor;
  executor.setScene(scene);
  executor.setShot(shot);
  return capturedStdout([&] { executor.run(); });
}

std::string runOn(SortStage& stage) { return runOn(&stage.scene, &stage.shot); }

// The text of the exception of a run, with the check that the shot is as it was.
std::string failureOn(SortStage& stage) {
  const std::vector<Geometry::Region2d*> regions = *stage.shot.getRegions()->getRegions();
  const std::vector<Geometry::Face2d*> faces =
      *stage.shot.getObjects()->getObject(0)->getFaces()->getFaces();
  std::string text = thrownText<std::out_of_range>([&] { runOn(stage); });
  EXPECT_EQ(regions, *stage.shot.getRegions()->getRegions());
  EXPECT_EQ(faces, *stage.shot.getObjects()->getObject(0)->getFaces()->getFaces());
  return text;
}

// An executor that has made its list, with a look inside.
struct Filled {
  explicit Filled(SortStage& stage) : probe(executor) {
    executor.setScene(&stage.scene);
    executor.setShot(&stage.shot);
    probe.fill();
  }
  const ObjectData& object(std::size_t index) const { return *probe.objects()->at(index); }

  DepthSortAlgorithmExecutor executor;
  DepthSortProbe probe;
};

TEST(DepthSortFrame, NewExecutorHasAnEmptyMatrixAndNoList) {
  DepthSortAlgorithmExecutor executor;
  const DepthSortProbe probe(executor);
  EXPECT_EQ(nullptr, probe.objects());
  EXPECT_TRUE(probe.matrix().empty());
}

TEST(DepthSortFrame, WithoutSceneOrShotOnlyTheFirstLineIsPrinted) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({SortStage::square(2, 0, 1)});
  EXPECT_EQ(FirstLine, runOn(nullptr, &stage.shot));
  EXPECT_EQ(FirstLine, runOn(&stage.scene, nullptr));
  EXPECT_EQ(FirstLine, runOn(nullptr, nullptr));
  EXPECT_EQ(Numbers{101}, stage.regions());
}

TEST(DepthSortFrame, WithoutSceneOrShotNoStepDoesAnything) {
  DepthSortAlgorithmExecutor executor;
  DepthSortProbe probe(executor);
  probe.fill();
  probe.classify();
  probe.calculate();
  EXPECT_EQ(nullptr, probe.objects());
}

TEST(DepthSortFrame, ShotWithoutObjectsLosesItsRegions) {
  SortStage stage;
  stage.shot.getRegions()->addRegion(new Geometry::Region2d());
  EXPECT_EQ(FirstLine, runOn(stage));
  EXPECT_EQ(Numbers{}, stage.regions());
}

TEST(DepthSortFrame, FacesWithoutRegionsMakeNoObjects) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({});
  stage.addFace({});
  {
    const Filled filled(stage);
    EXPECT_TRUE(filled.probe.objects()->empty());
    EXPECT_TRUE(filled.probe.matrix().empty());
  }
  EXPECT_EQ(FirstLine, runOn(stage));
  EXPECT_TRUE(stage.faces(0).empty());
}

TEST(DepthSortFrame, ShotWithNullListsIsEmpty) {
  Scene::Scene3D scene;
  Shot::Shot2d shot;
  EXPECT_EQ(FirstLine, runOn(&scene, &shot));
}

TEST(DepthSortFrame, NullElementsAndMissingFacesArePassedOver) {
  SortStage stage;
  stage.scene.getObjects()->addObject(nullptr);
  stage.shot.getObjects()->addObject(nullptr);
  auto* bare = new Shot::Object2d();
  bare->setId("bare");
  stage.shot.getObjects()->addObject(bare);
  stage.addObject("a");
  stage.shot.getObjects()->getObjects()->back()->getFaces()->addFace(nullptr);
  stage.addFace({SortStage::square(2, 0, 1)});
  EXPECT_EQ(FirstLine, runOn(stage));
  EXPECT_EQ(Numbers{101}, stage.regions());
  EXPECT_EQ(std::vector<Numbers>{{1}}, stage.faces(2));
}

TEST(DepthSortFrame, ListRunsInShotOrderAndCarriesWhatTheFaceIsMadeOf) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({SortStage::square(2, 0, 1)});
  stage.addFace({SortStage::square(3, 0, 1), SortStage::square(3, 5, 1)});
  stage.addObject("b");
  stage.addFace({SortStage::square(4, 0, 1)});

  const Filled filled(stage);
  ASSERT_EQ(3U, filled.probe.objects()->size());
  EXPECT_EQ("a", filled.object(0).getSourceObject());
  EXPECT_EQ("a", filled.object(1).getSourceObject());
  EXPECT_EQ("b", filled.object(2).getSourceObject());

  const ObjectData& second = filled.object(1);
  EXPECT_EQ(SortStage::square(3, 5, 1).source, second.getSourcePolygons()->at(1));
  EXPECT_EQ(SortStage::square(3, 5, 1).projected,
            *second.getProjectedPolygons()->at(1)->getPoints());
  EXPECT_EQ(-6.0 / 3.0, second.getProjectedPolygons()->at(1)->getBounds()->getXMin());
  EXPECT_EQ(-6.0 / 3.0, second.getProjectedBounds()->getXMin());
  EXPECT_EQ(1.0 / 3.0, second.getProjectedBounds()->getXMax());
  EXPECT_EQ(-1, second.getDepthIndex());
  EXPECT_EQ(103, second.getSourceRegions()->at(1)->getBrushNumber());
  EXPECT_NE(stage.shot.getRegions()->getRegion(2), second.getSourceRegions()->at(1));

  EXPECT_EQ((std::vector<Numbers>(3, Numbers(3, 0))), filled.probe.matrix());
}

TEST(DepthSortFrame, IdsContinueFromShotToShot) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({SortStage::square(2, 0, 1)});
  stage.addFace({});  // draws no id
  stage.addFace({SortStage::square(3, 0, 1)});
  const Filled first(stage);
  const Filled second(stage);
  const int id = std::stoi(first.object(0).getId());
  EXPECT_EQ(std::to_string(id + 1), first.object(1).getId());
  EXPECT_EQ(std::to_string(id + 2), second.object(0).getId());
  EXPECT_EQ(std::to_string(id + 3), second.object(1).getId());
}

TEST(DepthSortFrame, FirstObjectOfAnIdIsTheSource) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({SortStage::square(2, 0, 1)});
  auto* twin = new Scene::Object();
  twin->setId("a");
  stage.scene.getObjects()->addObject(twin);
  EXPECT_EQ(FirstLine, runOn(stage));
  EXPECT_EQ(Numbers{101}, stage.regions());
}

TEST(DepthSortFrame, FaceWhoseRegionsHaveNoPointsDisappears) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({{{}, {{0, 0, 0}}}, {{}, {{0, 0, 0}}}});
  stage.addFace({SortStage::square(2, 0, 1)});
  EXPECT_EQ(FirstLine, runOn(stage));
  EXPECT_EQ(Numbers{103}, stage.regions());
  EXPECT_EQ(std::vector<Numbers>{{1}}, stage.faces(0));
}

TEST(DepthSortFrame, RegionWithoutPointsAmongOthersIsWrittenBack) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({{{}, {{0, 0, 0}}}, SortStage::square(2, 0, 1)});
  {
    const Filled filled(stage);
    EXPECT_EQ(2U, filled.object(0).getSourceRegions()->size());
    EXPECT_EQ(1U, filled.object(0).getSourcePolygons()->size());
    EXPECT_EQ(1U, filled.object(0).getProjectedPolygons()->size());
  }
  EXPECT_EQ(FirstLine, runOn(stage));
  EXPECT_EQ((Numbers{101, 102}), stage.regions());
  EXPECT_EQ((std::vector<Numbers>{{1, 2}}), stage.faces(0));
}

TEST(DepthSortFrame, SourceWithoutPointsShiftsTheLists) {
  SortStage stage;
  stage.addObject("a");
  SortStage::Piece piece = SortStage::square(2, 0, 1);
  piece.source.clear();
  stage.addFace({piece, SortStage::square(2, 5, 1)});
  const Filled filled(stage);
  EXPECT_EQ(2U, filled.object(0).getProjectedPolygons()->size());
  ASSERT_EQ(1U, filled.object(0).getSourcePolygons()->size());
  EXPECT_EQ(SortStage::square(2, 5, 1).source, filled.object(0).getSourcePolygons()->front());
}

TEST(DepthSortFrame, MissingSourcePolygonOfAnOverlapThrows) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({SortStage::square(2, 0, 1)});
  SortStage::Piece piece = SortStage::square(3, 0, 1);
  piece.source.clear();
  stage.addFace({piece});
  EXPECT_EQ(NoSubscript, failureOn(stage));
}

TEST(DepthSortFrame, WrongRegionNumberThrows) {
  for (const int number : {0, 2, -1, std::numeric_limits<int>::min()}) {
    SortStage stage;
    stage.addObject("a");
    stage.addFace({SortStage::square(2, 0, 1)}).addRegion(number);
    EXPECT_EQ(NoSubscript, failureOn(stage)) << number;
  }
}

TEST(DepthSortFrame, WrongPointNumberOfARegionThrowsAsTheListDoes) {
  SortStage stage;
  stage.addObject("a");
  Geometry::Face2d& face = stage.addFace({});
  stage.addRegion(face, SortStage::square(2, 0, 1)).addPoint(5);
  EXPECT_EQ("x = ", failureOn(stage));
}

TEST(DepthSortFrame, WrongNumbersOfPointsThrow) {
  for (const int number : {0, -7, 99, std::numeric_limits<int>::min()}) {
    SortStage plane;
    plane.addObject("a");
    plane.addRegion(plane.addFace({}), SortStage::square(2, 0, 1)).addPoint(number);
    EXPECT_EQ("", failureOn(plane)) << number;

    SortStage space;
    space.addObject("a");
    space.addFace({SortStage::square(2, 0, 1)});
    space.scene.getObjects()->getObject(0)->getRegions()->getRegion(0)->addPoint(number);
    EXPECT_EQ("", failureOn(space)) << number;
  }
}

TEST(DepthSortFrame, WrongSourceRegionNumberThrows) {
  SortStage stage;
  stage.addObject("a");
  stage.addRegion(stage.addFace({}), SortStage::square(2, 0, 1)).setSourceRegionNumber(99);
  EXPECT_EQ("", failureOn(stage));
}

TEST(DepthSortFrame, ObjectUnknownToTheSceneThrows) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({SortStage::square(2, 0, 1)});
  stage.scene.getObjects()->getObject(0)->setId("A");
  EXPECT_EQ(NoSubscript, failureOn(stage));
}

TEST(DepthSortFrame, ObjectUnknownToTheSceneDoesNoHarmWithoutPoints) {
  SortStage stage;
  stage.addShotObject("stranger");
  stage.addFace({});
  EXPECT_EQ(FirstLine, runOn(stage));
  EXPECT_TRUE(stage.faces(0).empty());
}

// The texts are those of an empty list: the literal advanced by the position asked for.
TEST(DepthSortFrame, MissingListsCountAsEmpty) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({SortStage::square(2, 0, 1)});
  Scene::Object* object = stage.scene.getObjects()->getObject(0);
  Geometry::Regions* regions = object->getRegions();
  object->setRegions(nullptr);
  EXPECT_EQ("index = ", failureOn(stage));
  object->setRegions(regions);

  Geometry::Points3d* corners = stage.scene.getPoints();
  stage.scene.setPoints(nullptr);
  EXPECT_EQ("index = ", failureOn(stage));
  stage.scene.setPoints(corners);

  Geometry::Points2d* points = stage.shot.getPoints();
  stage.shot.setPoints(nullptr);
  EXPECT_EQ("index = ", failureOn(stage));
  stage.shot.setPoints(points);
  EXPECT_EQ(FirstLine, runOn(stage));
}

TEST(DepthSortFrame, SecondRunKeepsTheOrder) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({SortStage::square(2, 0, 1)});
  stage.addFace({SortStage::square(3, 0.5, 1.2)});
  DepthSortAlgorithmExecutor executor;
  executor.setScene(&stage.scene);
  executor.setShot(&stage.shot);
  capturedStdout([&] { executor.run(); });
  EXPECT_EQ((Numbers{102, 101}), stage.regions());
  capturedStdout([&] { executor.run(); });
  EXPECT_EQ((Numbers{102, 101}), stage.regions());
}

// --- Copies ---

// Two squares, the first listed in front.
void addPair(SortStage& stage) {
  stage.addObject("a");
  stage.addFace({SortStage::square(2, 0, 1)});
  stage.addFace({SortStage::square(3, 0.5, 1.2)});
}

TEST(DepthSortFrame, CopyMadeBeforeTheRunSortsAsItsOriginalDoes) {
  SortStage stage;
  SortStage other;
  addPair(stage);
  addPair(other);
  DepthSortAlgorithmExecutor executor;
  executor.setScene(&stage.scene);
  executor.setShot(&stage.shot);
  DepthSortAlgorithmExecutor copy(executor);
  copy.setScene(&other.scene);
  copy.setShot(&other.shot);
  capturedStdout([&] { executor.run(); });
  EXPECT_EQ((Numbers{102, 101}), stage.regions());
  EXPECT_EQ((Numbers{101, 102}), other.regions());
  capturedStdout([&] { copy.run(); });
  EXPECT_EQ((Numbers{102, 101}), other.regions());
}

TEST(DepthSortFrame, CopyKeepsTheWorkingObjectsThatItsOriginalDrops) {
  SortStage stage;
  addPair(stage);
  DepthSortAlgorithmExecutor copy;
  {
    Filled filled(stage);
    copy = filled.executor;
    EXPECT_EQ(filled.probe.objects(), DepthSortProbe(copy).objects());
    filled.probe.fill();
    EXPECT_NE(filled.probe.objects(), DepthSortProbe(copy).objects());
  }
  DepthSortProbe probe(copy);
  ASSERT_EQ(2u, probe.objects()->size());
  EXPECT_EQ("a", probe.objects()->front()->getSourceObject());
  EXPECT_EQ(1u, probe.objects()->front()->getSourcePolygons()->size());
}

}  // namespace
}  // namespace Lumivane::Test
