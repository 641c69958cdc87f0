#include "support/Copies.h"
#include "support/Documents.h"

#include <lumivane/geometry/Region.h>

#include <memory>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Geometry::Region;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Region, HasNoNumbersAtFirst) {
  const Region region;
  EXPECT_EQ(-1, region.getBrushNumber());
  EXPECT_EQ(-1, region.getFaceNumber());
}

TEST(Region, KeepsWhatTheSettersGiveUnchecked) {
  Region region;
  region.setBrushNumber(0);
  region.setFaceNumber(-7);
  EXPECT_EQ(0, region.getBrushNumber());
  EXPECT_EQ(-7, region.getFaceNumber());
}

TEST(Region, ACopySharesPointsAndDockingEdgesWithItsSource) {
  Region source;
  source.setBrushNumber(2);
  source.setFaceNumber(3);
  UndestroyedCopy<Region> copy(source);
  copy->addPoint(5);
  copy->addDockingEdge(6);
  EXPECT_THAT(*source.getPoints(), ElementsAre(5));
  EXPECT_THAT(*source.getDockingEdges(), ElementsAre(6));
  EXPECT_EQ(2, copy->getBrushNumber());
  EXPECT_EQ(3, copy->getFaceNumber());
}

TEST(Region, AnAssignmentSharesTheVectorsAndFreesNothing) {
  Region source;
  Region target;
  const std::unique_ptr<std::vector<int>> oldPoints(target.getPoints());
  const std::unique_ptr<std::vector<int>> oldEdges(target.getDockingEdges());
  target = source;
  target.addPoint(5);
  target.addDockingEdge(6);
  EXPECT_THAT(*source.getPoints(), ElementsAre(5));
  EXPECT_THAT(*source.getDockingEdges(), ElementsAre(6));
  EXPECT_THAT(*oldPoints, IsEmpty());
  EXPECT_THAT(*oldEdges, IsEmpty());
  target.setPoints(nullptr);
  target.setDockingEdges(nullptr);
}

TEST(Region, WritesNothingButAFrameAtFirst) {
  Region region;
  EXPECT_EQ("{\n\n}", textOf(region));
}

TEST(Region, WritesItsKeysInOrder) {
  Region region;
  region.addDockingEdge(2);
  region.addPoint(1);
  region.addPoint(7);
  region.setFaceNumber(0);
  region.setBrushNumber(3);
  EXPECT_EQ("{\n\"Brush\": 3,\n\"Face\": 0,\n\"Points\": [1,7],\n\"DockingEdges\": [2]\n}",
            textOf(region));
}

TEST(Region, ReadsTheFaceMinusOneAndWritesNone) {
  Region region;
  region.setFaceNumber(4);
  readInto(region, "{\"Face\":-1}");
  EXPECT_EQ(-1, region.getFaceNumber());
  EXPECT_EQ("{\n\n}", textOf(region));
}

TEST(Region, ReadsOnlyNumbersAsNumbers) {
  Region region;
  readInto(region, "{\"Brush\":1.9,\"Face\":\"2\",\"Points\":[1,\"x\",2]}");
  EXPECT_EQ(1, region.getBrushNumber());
  EXPECT_EQ(-1, region.getFaceNumber());
  EXPECT_THAT(*region.getPoints(), ElementsAre(1, 2));
}

TEST(Region, ReadsTheFirstOfTwoEqualKeys) {
  Region region;
  readInto(region, "{\"Face\":1,\"Face\":2}");
  EXPECT_EQ(1, region.getFaceNumber());
}

TEST(Region, MatchesKeysByCaseAndPassesOverUnknownOnes) {
  Region region;
  readInto(region, "{\"face\":1,\"Colour\":2}");
  EXPECT_EQ("{\n\n}", textOf(region));
}

TEST(Region, ReadsNothingFromANodeOfAnotherKind) {
  Region region;
  EXPECT_EQ(&region, region.deserialize(nodeOf("[1,2]")));
  EXPECT_EQ(&region, region.deserialize(Jzon::Node(3)));
  EXPECT_EQ(&region, region.deserialize(Jzon::invalid()));
  EXPECT_EQ("{\n\n}", textOf(region));
}

}  // namespace
}  // namespace Lumivane::Test
