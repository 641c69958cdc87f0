// The shot format, read and written as a whole document.

#include "support/Capture.h"
#include "support/TempFolder.h"

#include <lumivane/base/Color.h>
#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

#include <memory>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::IO {
namespace {

using ShotPointer = std::unique_ptr<Shot::Shot2d>;

ShotPointer read(const std::string& text) {
  ShotPointer shot(DataReader().readShotString(text));
  if (shot == nullptr) throw std::runtime_error("no shot: " + text);
  return shot;
}

std::string written(const ShotPointer& shot) { return DataWriter().writeShotString(shot.get()); }

const char* const WholeWritten =
    "{\n"
    "\"Brushes\": [[200,200,200,255]],\n"
    "\"Pens\": [[0,0,0,255,1]],\n"
    "\"Points\": [[0,0],[0.5,0],[0,0.5]],\n"
    "\"Regions\": [{\n\"Object\": 1,\n\"Pen\": 1,\n\"Brush\": 1,\n\"Face\": 1,\n"
    "\"SourceRegion\": 1,\n\"Points\": [1,2,3]\n}],\n"
    "\"Objects\": [{\n\"Id\": \"A\",\n\"Faces\": [{\n\"Regions\": [1]\n}]\n}]\n"
    "}";

TEST(ShotFile, WholeShotHasOneKeyALineAndNoIndentation) {
  const Lumivane::Test::TempFolder folder;
  const std::string path = folder.path("shot.json");
  const ShotPointer shot = read(
      "{\"Brushes\":[[200,200,200,255]],\"Pens\":[[0,0,0,255,1]],"
      "\"Points\":[[0,0],[0.5,0],[0,0.5]],\"Regions\":[{\"Object\":1,\"Pen\":1,\"Brush\":1,"
      "\"Face\":1,\"SourceRegion\":1,\"Points\":[1,2,3]}],"
      "\"Objects\":[{\"Id\":\"A\",\"Faces\":[{\"Regions\":[1]}]}]}");
  Lumivane::Test::capturedStdout([&] { DataWriter().writeShotFile(shot.get(), path); });
  EXPECT_EQ(WholeWritten, Lumivane::Test::fileBytes(path));
}

TEST(ShotFile, EmptyObjectGivesFiveNullLists) {
  const ShotPointer shot = read("{}");
  EXPECT_EQ(nullptr, shot->getBrushes());
  EXPECT_EQ(nullptr, shot->getPens());
  EXPECT_EQ(nullptr, shot->getPoints());
  EXPECT_EQ(nullptr, shot->getRegions());
  EXPECT_EQ(nullptr, shot->getObjects());
}

TEST(ShotFile, ScaleAndPropertyAndViewStayNull) {
  const ShotPointer shot = read(WholeWritten);
  EXPECT_EQ(nullptr, shot->getScale());
  EXPECT_EQ(nullptr, shot->getProperty());
  EXPECT_EQ(nullptr, shot->getView());
}

TEST(ShotFile, KeysOfAnyTypeGiveEmptyLists) {
  const ShotPointer shot =
      read("{\"Brushes\":1,\"Pens\":\"x\",\"Points\":null,\"Regions\":{},\"Objects\":true}");
  EXPECT_EQ(
      "{\n\"Brushes\": [],\n\"Pens\": [],\n\"Points\": [],\n\"Regions\": [],\n"
      "\"Objects\": []\n}",
      written(shot));
}

TEST(ShotFile, MissingSourceRegionIsZeroAndNegativeNumbersAreNotWritten) {
  const ShotPointer shot = read("{\"Regions\":[{}]}");
  EXPECT_EQ(0, shot->getRegions()->getRegion(0)->getSourceRegionNumber());
  EXPECT_EQ("{\n\"Regions\": [{\n\n}]\n}",
            written(read("{\"Regions\":[{\"Object\":-1,\"Pen\":-1,\"Brush\":-1,\"Face\":-1,"
                         "\"SourceRegion\":-1}]}")));
}

// Deliberate in the format: a shot that goes through a file loses the colours from a scale.
TEST(ShotFile, OverrideColourIsNotWritten) {
  const ShotPointer plain = read(WholeWritten);
  const ShotPointer coloured = read(WholeWritten);
  coloured->getRegions()->getRegion(0)->setOverrideColor(Base::Color(1, 2, 3, 4));
  EXPECT_EQ(written(plain), written(coloured));
  EXPECT_FALSE(read(written(coloured))->getRegions()->getRegion(0)->getOverrideColor().has_value());
}

TEST(ShotFile, OrderAndNumbersOfRegionsAreKept) {
  const std::string text =
      "{\n\"Regions\": [{\n\"Object\": 3,\n\"Pen\": 2,\n\"Brush\": 9,\n\"Face\": 4,\n"
      "\"SourceRegion\": 7,\n\"Points\": [5,1,5],\n\"DockingEdges\": [2]\n},{\n\"Object\": 1,\n"
      "\"SourceRegion\": 0\n},{\n\"Object\": 2,\n\"SourceRegion\": 1,\n\"Points\": [3]\n}]\n}";
  const ShotPointer shot = read(text);
  ASSERT_EQ(3u, shot->getRegions()->getRegions()->size());
  EXPECT_EQ(3, shot->getRegions()->getRegion(0)->getObjectNumber());
  EXPECT_EQ(1, shot->getRegions()->getRegion(1)->getObjectNumber());
  EXPECT_EQ(2, shot->getRegions()->getRegion(2)->getObjectNumber());
  EXPECT_EQ((std::vector<int>{5, 1, 5}), *shot->getRegions()->getRegion(0)->getPoints());
  EXPECT_EQ((std::vector<int>{2}), *shot->getRegions()->getRegion(0)->getDockingEdges());
  EXPECT_EQ(text, written(shot));
}

TEST(ShotFile, EmptyFacesAreKeptAndFacesOfAWrongTypeAreNull) {
  const ShotPointer shot = read("{\"Objects\":[{\"Faces\":[]},{\"Faces\":3}]}");
  ASSERT_NE(nullptr, shot->getObjects()->getObject(0)->getFaces());
  EXPECT_TRUE(shot->getObjects()->getObject(0)->getFaces()->getFaces()->empty());
  EXPECT_EQ(nullptr, shot->getObjects()->getObject(1)->getFaces());
}

TEST(ShotFile, DefaultObjectWritesAnEmptyObject) {
  EXPECT_EQ("{\n\"Objects\": [{\n\n}]\n}", written(read("{\"Objects\":[{}]}")));
}

TEST(ShotFile, CoordinatesKeepSixDigits) {
  EXPECT_EQ("{\n\"Points\": [[0.123457,-1.23457e-07]]\n}",
            written(read("{\"Points\":[[0.12345678,-0.0000001234567]]}")));
}

TEST(ShotFile, BadColoursAndPenWidthsThrow) {
  EXPECT_THROW(read("{\"Brushes\":[[256,0,0,0]]}"), std::out_of_range);
  EXPECT_THROW(read("{\"Pens\":[[0,0,0,255,-0.5]]}"), std::runtime_error);
}

}  // namespace
}  // namespace Lumivane::IO
