#include "support/Capture.h"
#include "support/DepthSortProbe.h"
#include "support/SortStage.h"
#include "support/Thrown.h"

#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/ObjectData.h>
#include <lumivane/utils/ProgressbarUtils.h>

#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Algorithm::DepthSortAlgorithmExecutor;
using Matrix = DepthSortProbe::Matrix;

const std::string ZeroLength = "Zero-length vector cannot be normalized\n";

double progress() { return Utils::ProgressbarUtils::getInstance()->getProgress(); }

// Classifies the faces of a stage and looks at the cells.
Matrix cellsOf(SortStage& stage) {
  DepthSortAlgorithmExecutor executor;
  executor.setScene(&stage.scene);
  executor.setShot(&stage.shot);
  DepthSortProbe probe(executor);
  probe.fill();
  probe.classify();
  for (const Algorithm::ObjectData* object : *probe.objects())
    EXPECT_EQ(-1, object->getDepthIndex());
  return probe.matrix();
}

TEST(DepthSortClassify, NoObjectsLeaveTheProgressAlone) {
  SortStage stage;
  Utils::ProgressbarUtils::getInstance()->setProgress(12.5);
  EXPECT_TRUE(cellsOf(stage).empty());
  EXPECT_EQ(12.5, progress());
}

TEST(DepthSortClassify, OneObjectSetsTheProgressToThirtyAndNoCell) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({SortStage::square(2, 0, 1)});
  EXPECT_EQ((Matrix{{0}}), cellsOf(stage));
  EXPECT_EQ(30.0, progress());
}

// With 6 faces the last bit distinguishes the step times the row from 70 times the row, divided.
TEST(DepthSortClassify, LastProgressIsThatOfTheLastRow) {
  SortStage stage;
  stage.addObject("a");
  for (int i = 0; i < 6; ++i) stage.addFace({SortStage::square(2, 5.0 * i, 1)});
  cellsOf(stage);
  EXPECT_EQ(5 * (70.0 / 6) + 30.0, progress());
}

TEST(DepthSortClassify, CellsStandBelowTheDiagonalAlone) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({SortStage::square(2, 0, 1)});
  stage.addFace({SortStage::square(3, 0, 0.4)});    // behind the first, hidden by it
  stage.addFace({SortStage::square(1.5, 0.5, 1)});  // in front of both
  stage.addFace({SortStage::square(2, 9, 1)});      // aside
  EXPECT_EQ((Matrix{{0, 0, 0, 0}, {5, 0, 0, 0}, {1, 4, 0, 0}, {3, 3, 3, 0}}), cellsOf(stage));
}

TEST(DepthSortClassify, FacesOfDifferentObjectsAreTreatedAlike) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({SortStage::square(3, 0, 0.4)});
  stage.addObject("b");
  stage.addFace({SortStage::square(2, 0, 1)});
  EXPECT_EQ((Matrix{{0, 0}, {4, 0}}), cellsOf(stage));
}

TEST(DepthSortClassify, MessageOfAZeroLengthNormalIsPrintedForEveryPointThatAsks) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({SortStage::square(3, 0, 0.4)});
  SortStage::Piece degenerate = SortStage::square(2, 0, 1);
  degenerate.source = {{2, 0, 0}, {2, 1, 0}, {2, 2, 0}, {2, 0, 1}};
  stage.addFace({degenerate});
  Matrix cells;
  const std::string printed = capturedStdout([&] { cells = cellsOf(stage); });
  EXPECT_EQ((Matrix{{0, 0}, {0, 0}}), cells);
  EXPECT_EQ(ZeroLength + ZeroLength + ZeroLength + ZeroLength, printed);
}

TEST(DepthSortClassify, MessagesBeforeAMissingSourceArePrinted) {
  SortStage stage;
  stage.addObject("a");
  stage.addFace({SortStage::square(3, 0, 0.4)});
  SortStage::Piece degenerate = SortStage::square(2, 0, 1);
  degenerate.source = {{2, 0, 0}, {2, 1, 0}, {2, 2, 0}};
  SortStage::Piece without = SortStage::square(2, 0, 1);
  without.source.clear();
  stage.addFace({degenerate, without});
  std::string thrown;
  const std::string printed =
      capturedStdout([&] { thrown = thrownText<std::out_of_range>([&] { cellsOf(stage); }); });
  EXPECT_EQ("invalid vector subscript", thrown);
  EXPECT_EQ(ZeroLength + ZeroLength + ZeroLength + ZeroLength, printed);
}

}  // namespace
}  // namespace Lumivane::Test
