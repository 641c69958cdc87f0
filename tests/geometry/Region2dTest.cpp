#include "support/Documents.h"

#include <lumivane/geometry/Region2d.h>

#include <memory>
#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Geometry::Region2d;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<int> numbersOf(const Region2d& region) {
  return {region.getObjectNumber(), region.getPenNumber(), region.getBrushNumber(),
          region.getFaceNumber(), region.getSourceRegionNumber()};
}

void setNumbers(Region2d& region) {
  region.setObjectNumber(1);
  region.setPenNumber(2);
  region.setBrushNumber(3);
  region.setFaceNumber(4);
  region.setSourceRegionNumber(5);
}

TEST(Region2d, HasNoNumbersAndNoColourAtFirst) {
  const Region2d region;
  EXPECT_THAT(numbersOf(region), ElementsAre(-1, -1, -1, -1, 0));
  EXPECT_FALSE(region.getOverrideColor().has_value());
}

TEST(Region2d, KeepsTheColourThatIsSet) {
  Region2d region;
  region.setOverrideColor(Base::Color(1, 2, 3, 4));
  ASSERT_TRUE(region.getOverrideColor().has_value());
  EXPECT_EQ(3, region.getOverrideColor()->getBlue());
  region.setOverrideColor(Base::Color(5, 6, 7, 8));
  EXPECT_EQ(7, region.getOverrideColor()->getBlue());
}

TEST(Region2d, HandsOutACopyOfTheColour) {
  Region2d region;
  region.setOverrideColor(Base::Color(1, 2, 3, 4));
  region.getOverrideColor()->setBlue(9);
  EXPECT_EQ(3, region.getOverrideColor()->getBlue());
}

TEST(Region2d, ACopyHasVectorsOfItsOwn) {
  Region2d source;
  setNumbers(source);
  source.addPoint(7);
  source.addDockingEdge(8);
  source.setOverrideColor(Base::Color(1, 2, 3, 4));
  Region2d copy(source);
  copy.addPoint(1);
  copy.addDockingEdge(2);
  EXPECT_THAT(*copy.getPoints(), ElementsAre(7, 1));
  EXPECT_THAT(*copy.getDockingEdges(), ElementsAre(8, 2));
  EXPECT_THAT(*source.getPoints(), ElementsAre(7));
  EXPECT_THAT(*source.getDockingEdges(), ElementsAre(8));
  EXPECT_THAT(numbersOf(copy), ElementsAre(1, 2, 3, 4, 5));
  ASSERT_TRUE(copy.getOverrideColor().has_value());
  EXPECT_EQ(4, copy.getOverrideColor()->getAlpha());
}

TEST(Region2d, AnAssignmentSharesTheVectorsAndFreesNothing) {
  Region2d source;
  setNumbers(source);
  source.setOverrideColor(Base::Color(1, 2, 3, 4));
  Region2d target;
  const std::unique_ptr<std::vector<int>> oldPoints(target.getPoints());
  const std::unique_ptr<std::vector<int>> oldEdges(target.getDockingEdges());
  target = source;
  target.addPoint(1);
  target.addDockingEdge(2);
  EXPECT_THAT(*source.getPoints(), ElementsAre(1));
  EXPECT_THAT(*source.getDockingEdges(), ElementsAre(2));
  EXPECT_THAT(*oldPoints, IsEmpty());
  EXPECT_THAT(*oldEdges, IsEmpty());
  EXPECT_THAT(numbersOf(target), ElementsAre(1, 2, 3, 4, 5));
  ASSERT_TRUE(target.getOverrideColor().has_value());
  EXPECT_EQ(2, target.getOverrideColor()->getGreen());
  target.setPoints(nullptr);
  target.setDockingEdges(nullptr);
}

TEST(Region2d, ACopyOfMissingVectorsHasEmptyOnes) {
  Region2d source;
  delete source.getPoints();
  source.setPoints(nullptr);
  const Region2d copy(source);
  ASSERT_NE(nullptr, copy.getPoints());
  EXPECT_THAT(*copy.getPoints(), IsEmpty());
}

TEST(Region2d, WritesItsKeysInOrder) {
  Region2d region;
  setNumbers(region);
  region.addPoint(6);
  region.addDockingEdge(7);
  EXPECT_EQ(
      "{\n\"Object\": 1,\n\"Pen\": 2,\n\"Brush\": 3,\n\"Face\": 4,\n\"SourceRegion\": 5,\n"
      "\"Points\": [6],\n\"DockingEdges\": [7]\n}",
      textOf(region));
}

TEST(Region2d, WritesNoKeyForMinusOne) {
  Region2d region;
  EXPECT_EQ("{\n\"SourceRegion\": 0\n}", textOf(region));
  region.setSourceRegionNumber(-1);
  EXPECT_EQ("{\n\n}", textOf(region));
}

TEST(Region2d, ReadsTheSourceRegionAsZeroWhereItIsMissing) {
  Region2d region;
  readInto(region, "{\"Object\":1}");
  EXPECT_EQ(0, region.getSourceRegionNumber());
  EXPECT_EQ(1, region.getObjectNumber());
}

TEST(Region2d, WritesTheSameWithAColourAndReadsNone) {
  Region2d plain;
  Region2d coloured;
  coloured.setOverrideColor(Base::Color(1, 2, 3, 4));
  EXPECT_EQ(textOf(plain), textOf(coloured));
  Region2d read;
  readInto(read, textOf(coloured));
  EXPECT_FALSE(read.getOverrideColor().has_value());
}

TEST(Region2d, ReadsBackWhatItWrote) {
  Region2d region;
  setNumbers(region);
  region.addPoint(6);
  region.addDockingEdge(7);
  Region2d read;
  EXPECT_EQ(textOf(region), textOf(readInto(read, textOf(region))));
}

TEST(Region2d, ReadsOnlyNumbersAsNumbers) {
  Region2d region;
  readInto(region,
           "{\"Object\":\"1\",\"Pen\":null,\"Brush\":[3],\"Face\":true,\"SourceRegion\":{},"
           "\"Points\":3}");
  EXPECT_THAT(numbersOf(region), ElementsAre(-1, -1, -1, -1, 0));
  EXPECT_EQ(&region, region.deserialize(nodeOf("[1]")));
  EXPECT_THAT(*region.getPoints(), IsEmpty());
}

}  // namespace
}  // namespace Lumivane::Test
