// A shot's text is that of its nodes, whatever stands in it.

#include "io/DocumentWriter.h"
#include "support/Extremes.h"
#include "support/TempFolder.h"

#include <lumivane/base/Brush.h>
#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pen.h>
#include <lumivane/base/Pens.h>
#include <lumivane/geometry/Face2d.h>
#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Random = std::mt19937_64;
using Geometry::Point2d;
using Geometry::Region2d;
using Shot::Object2d;
using Shot::Shot2d;

std::string textOfNodes(Shot2d& shot) {
  std::string text;
  IO::documentWriter().writeString(shot.serialize(), text);
  return text;
}

// A host's point that writes itself in its own way.
class NamedPoint : public Point2d {
 public:
  using Point2d::Point2d;
  Jzon::Node serialize() override { return Jzon::Node("here"); }
};

std::vector<int>* anyNumbers(Random& random) {
  if (random() % 6 == 0) return nullptr;
  auto* numbers = new std::vector<int>(random() % 5);
  for (int& number : *numbers)
    number = random() % 5 == 0 ? std::numeric_limits<int>::min()
                               : static_cast<int>(random() % 3000) - 10;
  return numbers;
}

Point2d* anyPoint(Random& random, bool withHosts) {
  if (random() % 10 == 0) return nullptr;
  const double scale = random() % 3 == 0 ? 1e-3 : 1.0;
  const double x = anyDouble(random) * scale;
  const double y = anyDouble(random) * scale;
  if (withHosts && random() % 20 == 0) return new NamedPoint(x, y);
  return new Point2d(x, y);
}

Region2d* anyRegion(Random& random) {
  if (random() % 10 == 0) return nullptr;
  auto* region = new Region2d();
  const auto number = [&random] { return static_cast<int>(random() % 8) - 3; };
  region->setObjectNumber(number());
  region->setPenNumber(number());
  region->setBrushNumber(number());
  region->setFaceNumber(number());
  region->setSourceRegionNumber(number());
  delete region->getPoints();
  region->setPoints(anyNumbers(random));
  delete region->getDockingEdges();
  region->setDockingEdges(anyNumbers(random));
  return region;
}

Object2d* anyObject(Random& random) {
  if (random() % 10 == 0) return nullptr;
  const std::vector<std::string> ids = {"", "house", "a/b \"c\"\\\n\t\x01\x7f", "\xc3\xa4\xff"};
  auto* object = new Object2d();
  object->setId(ids[random() % ids.size()]);
  if (random() % 4 == 0) return object;
  object->setFaces(new Geometry::Faces2d());
  for (std::size_t count = random() % 4; count > 0; --count) {
    auto* face = random() % 8 == 0 ? nullptr : new Geometry::Face2d();
    if (face != nullptr) *face->getRegions() = std::vector<int>(random() % 3, 7);
    object->getFaces()->addFace(face);
  }
  return object;
}

std::unique_ptr<Shot2d> anyShot(Random& random, std::size_t most, bool withHosts) {
  auto shot = std::make_unique<Shot2d>();
  const auto isThere = [&random] { return random() % 6 != 0; };
  if (isThere()) {
    shot->setBrushes(new Base::Brushes());
    shot->getBrushes()->addBrush(new Base::Brush());
  }
  if (isThere()) shot->setPens(new Base::Pens());
  if (isThere()) {
    shot->setPoints(new Geometry::Points2d());
    for (std::size_t count = random() % most; count > 0; --count)
      shot->getPoints()->addPoint(anyPoint(random, withHosts));
  }
  if (isThere()) {
    shot->setRegions(new Geometry::Regions2dInDrawingOrder());
    for (std::size_t count = random() % most; count > 0; --count)
      shot->getRegions()->addRegion(anyRegion(random));
  }
  if (isThere()) {
    shot->setObjects(new Shot::Objects2d());
    for (std::size_t count = random() % most; count > 0; --count)
      shot->getObjects()->addObject(anyObject(random));
  }
  return shot;
}

TEST(ShotTextProperty, IsTheTextOfItsNodes) {
  Random random(20261127);
  for (int i = 0; i < 300; ++i) {
    const auto shot = anyShot(random, 20, false);
    ASSERT_EQ(textOfNodes(*shot), IO::DataWriter().writeShotString(shot.get())) << i;
  }
}

TEST(ShotTextProperty, ClassesOfHostsWriteThemselves) {
  Random random(20261128);
  std::size_t named = 0;
  for (int i = 0; i < 100; ++i) {
    const auto shot = anyShot(random, 40, true);
    const std::string text = IO::DataWriter().writeShotString(shot.get());
    ASSERT_EQ(textOfNodes(*shot), text) << i;
    named += text.find("\"here\"") != std::string::npos ? 1 : 0;
  }
  EXPECT_GT(named, 10U);
}

TEST(ShotText, FileOfManyBlocksHoldsTheSame) {
  const TempFolder folder;
  Random random(20261129);
  std::size_t blocks = 0;
  for (int i = 0; i < 5; ++i) {
    const auto shot = anyShot(random, 20000, false);
    const std::string path = folder.path("shot" + std::to_string(i) + ".json");
    IO::DataWriter().writeShotFile(shot.get(), path);
    const std::string text = textOfNodes(*shot);
    EXPECT_TRUE(text == fileBytes(path)) << i;
    EXPECT_TRUE(text == IO::DataWriter().writeShotString(shot.get())) << i;
    blocks += text.size() / 65536;
  }
  EXPECT_GT(blocks, 10U);
}

TEST(ShotText, ListsWithoutAVectorAreEmptyOnes) {
  Shot2d shot;
  shot.setPoints(new Geometry::Points2d());
  delete shot.getPoints()->getPoints();
  shot.getPoints()->setPoints(nullptr);
  shot.setObjects(new Shot::Objects2d());
  shot.getObjects()->addObject(new Object2d());
  shot.getObjects()->getObject(0)->setFaces(new Geometry::Faces2d());
  delete shot.getObjects()->getObject(0)->getFaces()->getFaces();
  shot.getObjects()->getObject(0)->getFaces()->setFaces(nullptr);
  const std::string expected = "{\n\"Points\": [],\n\"Objects\": [{\n\"Faces\": []\n}]\n}";
  EXPECT_EQ(expected, textOfNodes(shot));
  EXPECT_EQ(expected, IO::DataWriter().writeShotString(&shot));
}

}  // namespace
}  // namespace Lumivane::Test
