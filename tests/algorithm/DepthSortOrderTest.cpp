#include "support/Capture.h"
#include "support/DepthSortProbe.h"
#include "support/SortStage.h"
#include "support/WorkingFolder.h"

#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/ObjectData.h>
#include <lumivane/base/Color.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Algorithm::DepthSortAlgorithmExecutor;
using Algorithm::ObjectData;
using Matrix = DepthSortProbe::Matrix;
using Numbers = std::vector<int>;

// Faces side by side in one object, whose cells are then written by hand.
class DepthSortOrder : public ::testing::Test {
 protected:
  SortStage stage;
  DepthSortAlgorithmExecutor executor;
  DepthSortProbe probe{executor};

  void addFaces(int count) {
    for (int i = 0; i < count; ++i) stage.addFace({SortStage::square(2, 5.0 * i, 1)});
  }

  // The brush numbers of the regions in drawing order.
  Numbers orderBy(const Matrix& rows) {
    executor.setScene(&stage.scene);
    executor.setShot(&stage.shot);
    probe.fill();
    probe.setRows(rows);
    printed = capturedStdout([&] { probe.calculate(); });
    return stage.regions();
  }

  Numbers depthIndices() const {
    Numbers indices;
    for (const ObjectData* object : *probe.objects()) indices.push_back(object->getDepthIndex());
    return indices;
  }

  std::string printed;
};

TEST_F(DepthSortOrder, EmptyListClearsTheShot) {
  stage.addObject("a");
  stage.addFace({});
  stage.shot.getRegions()->addRegion(new Geometry::Region2d());
  EXPECT_EQ(Numbers{}, orderBy({}));
  EXPECT_TRUE(stage.faces(0).empty());
  EXPECT_TRUE(probe.objects()->empty());
}

TEST_F(DepthSortOrder, UnrelatedFacesKeepTheirOrder) {
  stage.addObject("a");
  addFaces(3);
  EXPECT_EQ((Numbers{101, 102, 103}), orderBy({{}, {3}, {3, 3}}));
  EXPECT_EQ((Numbers{1, 2, 3}), depthIndices());
}

TEST_F(DepthSortOrder, FaceInFrontIsDrawnLater) {
  stage.addObject("a");
  addFaces(2);
  EXPECT_EQ((Numbers{101, 102}), orderBy({{}, {1}}));
}

TEST_F(DepthSortOrder, FaceBehindIsDrawnEarlier) {
  stage.addObject("a");
  addFaces(2);
  EXPECT_EQ((Numbers{102, 101}), orderBy({{}, {2}}));
}

TEST_F(DepthSortOrder, FaceWithoutRelationComesAfterTheRelated) {
  stage.addObject("a");
  addFaces(3);
  EXPECT_EQ((Numbers{102, 103, 101}), orderBy({{}, {3}, {3, 1}}));
}

TEST_F(DepthSortOrder, HiddenFaceVanishesWithItsRegionsAndItsObjectRemains) {
  stage.addObject("a");
  stage.addFace({SortStage::square(2, 0, 1), SortStage::square(2, 5, 1)});
  stage.addObject("b");
  stage.addFace({SortStage::square(2, 9, 1)});
  const std::size_t points = stage.shot.getPoints()->getPoints()->size();
  EXPECT_EQ(Numbers{103}, orderBy({{}, {4}}));
  EXPECT_EQ(Numbers{1}, depthIndices());
  EXPECT_TRUE(stage.faces(0).empty());
  EXPECT_EQ(std::vector<Numbers>{{1}}, stage.faces(1));
  EXPECT_EQ(points, stage.shot.getPoints()->getPoints()->size());
}

TEST_F(DepthSortOrder, HiddenFaceHasNoEdges) {
  stage.addObject("a");
  addFaces(4);
  // The second is hidden by the third; its relations would draw the fourth before the first.
  EXPECT_EQ((Numbers{101, 103, 104}), orderBy({{}, {2}, {3, 4}, {3, 2, 3}}));
  EXPECT_EQ((Numbers{1, 2, 3}), depthIndices());
}

TEST_F(DepthSortOrder, CycleIsReportedAndDrawnInListOrder) {
  const WorkingFolder folder;
  stage.addObject("a");
  addFaces(3);
  EXPECT_EQ((Numbers{101, 102, 103}), orderBy({{}, {1}, {2, 1}}));
  EXPECT_EQ("\nError: Graph is cyclic\n\n", printed);
  std::string report =
      "LOGFILE:\nTopological sorting of a graph\n\nerror: graph is cyclic\n\nm = \n\n"
      "edges with unsorted nodes:\n";
  const int first = std::stoi(probe.objects()->front()->getId());
  const auto line = [first](int from, int to) {
    return std::to_string(first + from) + " -> " + std::to_string(first + to) + "\n";
  };
  report += line(0, 1) + line(1, 2) + line(2, 0);
  EXPECT_EQ(report, folder.read("log_sort.txt"));
}

TEST_F(DepthSortOrder, FacesBehindACycleKeepListOrderAfterTheSorted) {
  const WorkingFolder folder;
  stage.addObject("a");
  addFaces(5);
  // First to third in a ring, the fourth in front of the third, the fifth behind the first.
  EXPECT_EQ((Numbers{105, 101, 102, 103, 104}),
            orderBy({{}, {1}, {2, 1}, {3, 3, 1}, {2, 3, 3, 3}}));
}

TEST_F(DepthSortOrder, FacesOfOneObjectComeApart) {
  stage.addObject("a");
  stage.addFace({SortStage::square(2, 0, 1), SortStage::square(2, 5, 1)});
  stage.addFace({SortStage::square(2, 10, 1)});
  stage.addObject("b");
  stage.addFace({SortStage::square(2, 15, 1)});
  // Drawn: second of a, b, first of a.
  EXPECT_EQ((Numbers{103, 104, 101, 102}), orderBy({{}, {2}, {2, 1}}));
  EXPECT_EQ((std::vector<Numbers>{{1}, {3, 4}}), stage.faces(0));
  EXPECT_EQ((std::vector<Numbers>{{2}}), stage.faces(1));
}

TEST_F(DepthSortOrder, ListsOfTheShotStayAndOnlyTheirContentIsNew) {
  stage.addObject("a");
  addFaces(1);
  const auto* regions = stage.shot.getRegions();
  const auto* objects = stage.shot.getObjects();
  const auto* object = stage.shot.getObjects()->getObject(0);
  const auto* faces = object->getFaces();
  orderBy({});
  EXPECT_EQ(regions, stage.shot.getRegions());
  EXPECT_EQ(objects, stage.shot.getObjects());
  EXPECT_EQ(object, stage.shot.getObjects()->getObject(0));
  EXPECT_EQ(faces, object->getFaces());
}

TEST_F(DepthSortOrder, RegionsKeepEverythingButTheirPlace) {
  stage.addObject("a");
  addFaces(2);
  Geometry::Region2d* region = stage.shot.getRegions()->getRegion(1);
  region->setObjectNumber(1);
  region->setPenNumber(7);
  region->setFaceNumber(2);
  region->addDockingEdge(3);
  region->setOverrideColor(Base::Color(1, 2, 3, 255));
  const Numbers points = *region->getPoints();
  orderBy({{}, {2}});
  const Geometry::Region2d* moved = stage.shot.getRegions()->getRegion(0);
  EXPECT_EQ(102, moved->getBrushNumber());
  EXPECT_EQ(1, moved->getObjectNumber());
  EXPECT_EQ(7, moved->getPenNumber());
  EXPECT_EQ(2, moved->getFaceNumber());
  EXPECT_EQ(2, moved->getSourceRegionNumber());
  EXPECT_EQ(points, *moved->getPoints());
  EXPECT_EQ(Numbers{3}, *moved->getDockingEdges());
  EXPECT_TRUE(moved->getOverrideColor().has_value());
}

TEST_F(DepthSortOrder, FirstObjectOfAnIdGetsTheFaces) {
  stage.addObject("a");
  addFaces(1);
  stage.addShotObject("a");
  stage.addFace({SortStage::square(2, 5, 1)});
  EXPECT_EQ((Numbers{101, 102}), orderBy({}));
  EXPECT_EQ((std::vector<Numbers>{{1}, {2}}), stage.faces(0));
  EXPECT_TRUE(stage.faces(1).empty());
}

TEST_F(DepthSortOrder, RegionsStayInTheShotWhereNoFaceCanTakeThem) {
  auto* bare = new Shot::Object2d();
  bare->setId("a");
  stage.shot.getObjects()->addObject(bare);
  stage.addObject("a");
  addFaces(1);
  EXPECT_EQ(Numbers{101}, orderBy({}));
  EXPECT_EQ(nullptr, bare->getFaces());
  EXPECT_TRUE(stage.faces(1).empty());
}

TEST_F(DepthSortOrder, RegionNamedTwiceComesTwiceAndOneThatNoFaceNamesGoes) {
  stage.addObject("a");
  addFaces(1);
  Geometry::Face2d& second = stage.addFace({SortStage::square(2, 5, 1)});
  stage.shot.getRegions()->addRegion(new Geometry::Region2d());
  second.addRegion(1);
  EXPECT_EQ((Numbers{101, 102, 101}), orderBy({}));
  EXPECT_EQ((std::vector<Numbers>{{1}, {2, 3}}), stage.faces(0));
  const Geometry::Region2d* first = stage.shot.getRegions()->getRegion(0);
  const Geometry::Region2d* again = stage.shot.getRegions()->getRegion(2);
  ASSERT_NE(first, again);
  EXPECT_EQ(*first->getPoints(), *again->getPoints());
  EXPECT_NE(first->getPoints(), again->getPoints());
}

TEST_F(DepthSortOrder, RegionsComeBackWithBothLists) {
  stage.addObject("a");
  addFaces(1);
  Geometry::Region2d* region = stage.shot.getRegions()->getRegion(0);
  delete region->getDockingEdges();
  region->setDockingEdges(nullptr);
  EXPECT_EQ(Numbers{101}, orderBy({}));
  ASSERT_NE(nullptr, stage.shot.getRegions()->getRegion(0)->getDockingEdges());
  EXPECT_TRUE(stage.shot.getRegions()->getRegion(0)->getDockingEdges()->empty());
}

TEST_F(DepthSortOrder, RegionsThatWereAskedForAreThoseOfTheShot) {
  stage.addObject("a");
  addFaces(2);
  executor.setScene(&stage.scene);
  executor.setShot(&stage.shot);
  probe.fill();
  Geometry::Region2d* const copy = probe.objects()->at(1)->getSourceRegions()->at(0);
  probe.setRows({{}, {2}});
  printed = capturedStdout([&] { probe.calculate(); });
  EXPECT_EQ((Numbers{102, 101}), stage.regions());
  EXPECT_EQ(copy, stage.shot.getRegions()->getRegion(0));
}

// The whole pipeline: three squares one behind the other, listed front first.
TEST(DepthSort, DrawsBackToFrontAndDropsWhatIsHidden) {
  SortStage stage;
  stage.addObject("front");
  stage.addFace({SortStage::square(2, 0, 1)});
  stage.addObject("hidden");
  stage.addFace({SortStage::square(3, 0, 0.4)});
  stage.addObject("back");
  stage.addFace({SortStage::square(4, 1, 2.2)});
  DepthSortAlgorithmExecutor executor;
  executor.setScene(&stage.scene);
  executor.setShot(&stage.shot);
  EXPECT_EQ("Calculating objects order\n\n", capturedStdout([&] { executor.run(); }));
  EXPECT_EQ((Numbers{103, 101}), stage.regions());
  EXPECT_EQ((std::vector<Numbers>{{2}}), stage.faces(0));
  EXPECT_TRUE(stage.faces(1).empty());
  EXPECT_EQ((std::vector<Numbers>{{1}}), stage.faces(2));
}

}  // namespace
}  // namespace Lumivane::Test
