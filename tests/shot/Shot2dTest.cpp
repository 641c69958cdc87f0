#include "support/Copies.h"
#include "support/Documents.h"
#include "support/Vectors.h"

#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pens.h>
#include <lumivane/base/Property.h>
#include <lumivane/base/Scale.h>
#include <lumivane/base/View.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

#include <memory>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Shot::Shot2d;

// One object with one face of one triangle.
const char* const TriangleShot =
    "{\n\"Brushes\": [[200,200,200,255]],\n\"Pens\": [[0,0,0,255,1]],\n"
    "\"Points\": [[0,0],[0.5,0],[0,0.5]],\n"
    "\"Regions\": [{\n\"Object\": 1,\n\"Pen\": 1,\n\"Brush\": 1,\n\"Face\": 1,\n"
    "\"SourceRegion\": 1,\n\"Points\": [1,2,3]\n}],\n"
    "\"Objects\": [{\n\"Id\": \"A\",\n\"Faces\": [{\n\"Regions\": [1]\n}]\n}]\n}";

TEST(Shot2d, HasNothingAtFirst) {
  Shot2d shot;
  EXPECT_EQ(nullptr, shot.getBrushes());
  EXPECT_EQ(nullptr, shot.getPens());
  EXPECT_EQ(nullptr, shot.getPoints());
  EXPECT_EQ(nullptr, shot.getRegions());
  EXPECT_EQ(nullptr, shot.getObjects());
  EXPECT_EQ(nullptr, shot.getScale());
  EXPECT_EQ(nullptr, shot.getProperty());
  EXPECT_EQ(nullptr, shot.getView());
  EXPECT_EQ("{\n\n}", textOf(shot));
}

TEST(Shot2d, ReadsAnEmptyObjectAsFiveNullLists) {
  Shot2d shot;
  EXPECT_EQ(&shot, shot.deserialize(nodeOf("{}")));
  EXPECT_EQ("{\n\n}", textOf(shot));
}

TEST(Shot2d, WritesItsKeysInOrderAndReadsThemBack) {
  Shot2d shot;
  EXPECT_EQ(TriangleShot, textOf(readInto(shot, TriangleShot)));
}

TEST(Shot2d, HasNoScalePropertyAndViewAfterReading) {
  Shot2d shot;
  readInto(shot, TriangleShot);
  EXPECT_EQ(nullptr, shot.getScale());
  EXPECT_EQ(nullptr, shot.getProperty());
  EXPECT_EQ(nullptr, shot.getView());
}

TEST(Shot2d, NeverWritesScalePropertyAndView) {
  Shot2d shot;
  Base::View view;
  shot.setScale(new Base::Scale());
  shot.setProperty(new Base::Property());
  shot.setView(&view);
  EXPECT_EQ("{\n\n}", textOf(shot));
}

TEST(Shot2d, LeavesItsViewAliveWhenDeleted) {
  const auto view = std::make_unique<Base::View>();
  auto shot = std::make_unique<Shot2d>();
  readInto(*shot, TriangleShot);
  shot->setScale(new Base::Scale());
  shot->setProperty(new Base::Property());
  shot->setView(view.get());
  shot.reset();
  EXPECT_EQ("{\n\n}", textOf(*view));
}

TEST(Shot2d, MakesAnEmptyListForAKeyOfAnotherKind) {
  Shot2d shot;
  readInto(shot, "{\"Brushes\":1,\"Pens\":null,\"Points\":{},\"Regions\":\"x\",\"Objects\":true}");
  EXPECT_EQ(
      "{\n\"Brushes\": [],\n\"Pens\": [],\n\"Points\": [],\n\"Regions\": [],\n\"Objects\": []\n}",
      textOf(shot));
}

TEST(Shot2d, LooksOnlyAtARootOfTypeObject) {
  Shot2d shot;
  shot.deserialize(nodeOf("[{\"Brushes\":[]}]"));
  shot.deserialize(Jzon::invalid());
  EXPECT_EQ("{\n\n}", textOf(shot));
}

TEST(Shot2d, KeepsTheOrderAndTheNumbersOfItsRegions) {
  Shot2d shot;
  readInto(shot,
           "{\"Regions\":[{\"Object\":3,\"Face\":2,\"SourceRegion\":9,\"Points\":[3,1,2]},"
           "{\"Object\":1,\"Pen\":4,\"DockingEdges\":[2]},{\"Brush\":5}]}");
  const std::string text = textOf(shot);
  Shot2d read;
  EXPECT_EQ(text, textOf(readInto(read, text)));
  EXPECT_EQ(3, read.getRegions()->getRegion(0)->getObjectNumber());
  EXPECT_EQ(9, read.getRegions()->getRegion(0)->getSourceRegionNumber());
  EXPECT_EQ(4, read.getRegions()->getRegion(1)->getPenNumber());
  EXPECT_EQ(5, read.getRegions()->getRegion(2)->getBrushNumber());
}

TEST(Shot2d, LosesTheColouringByScaleInAFile) {
  Shot2d shot;
  readInto(shot, TriangleShot);
  shot.getRegions()->getRegion(0)->setOverrideColor(Base::Color(1, 2, 3, 4));
  EXPECT_EQ(TriangleShot, textOf(shot));
}

TEST(Shot2d, RoundsCoordinatesToSixDigitsInItsFile) {
  Shot2d shot;
  readInto(shot, "{\"Points\":[[0.12345678,-0.00001234567],[1]]}");
  EXPECT_EQ("{\n\"Points\": [[0.123457,-1.23457e-05],[0,0]]\n}", textOf(shot));
}

TEST(Shot2d, ThrowsOnBadColoursAndPenWidths) {
  Shot2d shot;
  EXPECT_THROW(readInto(shot, "{\"Brushes\":[[1,2,3,-1]]}"), std::out_of_range);
  EXPECT_EQ(nullptr, shot.getBrushes());
  EXPECT_THROW(readInto(shot, "{\"Pens\":[[1,2,3,4,-0.5]]}"), std::runtime_error);
  EXPECT_EQ(nullptr, shot.getPens());
}

TEST(Shot2d, CopiesShareAllEightPointers) {
  Base::View view;
  Shot2d source;
  readInto(source, TriangleShot);
  source.setScale(new Base::Scale());
  source.setProperty(new Base::Property());
  source.setView(&view);
  UndestroyedCopy<Shot2d> copy{Shot2d()};
  *copy = source;
  UndestroyedCopy<Shot2d> second(source);
  for (Shot2d* shared : {&*copy, &*second}) {
    EXPECT_EQ(source.getBrushes(), shared->getBrushes());
    EXPECT_EQ(source.getPens(), shared->getPens());
    EXPECT_EQ(source.getPoints(), shared->getPoints());
    EXPECT_EQ(source.getRegions(), shared->getRegions());
    EXPECT_EQ(source.getObjects(), shared->getObjects());
    EXPECT_EQ(source.getScale(), shared->getScale());
    EXPECT_EQ(source.getProperty(), shared->getProperty());
    EXPECT_EQ(&view, shared->getView());
  }
}

TEST(Shot2d, StoresWhatTheSettersGiveAndFreesNothing) {
  Shot2d shot;
  const auto old = std::make_unique<Geometry::Points2d>();
  shot.setPoints(old.get());
  auto* fresh = new Geometry::Points2d();
  shot.setPoints(fresh);
  EXPECT_EQ(fresh, shot.getPoints());
  EXPECT_TRUE(old->getPoints()->empty());
}

const VectorTests shotReadWriteVectors("shotReadWrite", [](const VectorCase& vectorCase) {
  const Jzon::Node node = nodeOf(vectorCase.in.at("text").get<std::string>());
  if (!node.isValid()) {  // it never gets as far as a shot: the reader reports it
    EXPECT_TRUE(vectorCase.out.is_null());
    return;
  }
  checkedRun(vectorCase, [&] {
    Shot2d shot;
    shot.deserialize(node);
    EXPECT_EQ(vectorCase.out.get<std::string>(), textOf(shot));
  });
});

}  // namespace
}  // namespace Lumivane::Test
