// The scene format, read and written as a whole document.

#include "support/Capture.h"
#include "support/TempFolder.h"

#include <lumivane/base/Brush.h>
#include <lumivane/base/Brushes.h>
#include <lumivane/base/Color.h>
#include <lumivane/geometry/Face.h>
#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/geometry/VFace.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>

#include <memory>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::IO {
namespace {

using ScenePointer = std::unique_ptr<Scene::Scene3D>;

ScenePointer read(const std::string& text) {
  ScenePointer scene(DataReader().readSceneString(text));
  if (scene == nullptr) throw std::runtime_error("no scene: " + text);
  return scene;
}

std::string rewritten(const std::string& text) {
  return DataWriter().writeSceneString(read(text).get());
}

// The only object of a scene with that text between its braces.
ScenePointer readObject(const std::string& members) {
  return read("{\"Objects\":[{" + members + "}]}");
}

Scene::Object& object(const ScenePointer& scene) { return *scene->getObjects()->getObject(0); }

const char* const Whole =
    "{\"Brushes\":[[200,200,200,255]],\"Pens\":[[0,0,0,255,1]],"
    "\"Points\":[[0,0,0],[1,0,0],[0,1,0]],\"Objects\":[{\"Id\":\"A\",\"PartsCount\":1,\"Pen\":1,"
    "\"Faces\":[{\"Regions\":[1],\"Normal\":[0,0,1]}],\"Parts\":[{\"Regions\":[1]}],"
    "\"Regions\":[{\"Brush\":1,\"Face\":1,\"Points\":[1,2,3]}],\"Overlays\":[]}],"
    "\"Properties\":[[1,\"Height\"]],"
    "\"Scales\":[{\"Name\":\"S\",\"Items\":[[0,0,0,255],[1,255,0,0]]}]}";

const char* const WholeWritten =
    "{\n"
    "\"Brushes\": [[200,200,200,255]],\n"
    "\"Pens\": [[0,0,0,255,1]],\n"
    "\"Points\": [[0,0,0],[1,0,0],[0,1,0]],\n"
    "\"Objects\": [{\n"
    "\"Id\": \"A\",\n"
    "\"PartsCount\": 1,\n"
    "\"Pen\": 1,\n"
    "\"Faces\": [{\n\"Regions\": [1],\n\"Normal\": [0,0,1]\n}],\n"
    "\"Parts\": [{\n\"Regions\": [1]\n}],\n"
    "\"Regions\": [{\n\"Brush\": 1,\n\"Face\": 1,\n\"Points\": [1,2,3]\n}],\n"
    "\"Overlays\": []\n"
    "}],\n"
    "\"Properties\": [[1,\"Height\"]],\n"
    "\"Scales\": [{\n\"Name\": \"S\",\n\"Items\": [[0,0,0,255],[1,255,0,0]]\n}]\n"
    "}";

TEST(SceneFile, WholeSceneHasOneKeyALineAndNoIndentation) {
  const Lumivane::Test::TempFolder folder;
  const std::string path = folder.path("scene.json");
  const ScenePointer scene = read(Whole);
  Lumivane::Test::capturedStdout([&] { DataWriter().writeSceneFile(scene.get(), path); });
  EXPECT_EQ(WholeWritten, Lumivane::Test::fileBytes(path));
  EXPECT_EQ(WholeWritten, rewritten(WholeWritten));
}

TEST(SceneFile, EmptyObjectGivesSixNullLists) {
  const ScenePointer scene = read("{}");
  EXPECT_EQ(nullptr, scene->getBrushes());
  EXPECT_EQ(nullptr, scene->getPens());
  EXPECT_EQ(nullptr, scene->getPoints());
  EXPECT_EQ(nullptr, scene->getObjects());
  EXPECT_EQ(nullptr, scene->getProperties());
  EXPECT_EQ(nullptr, scene->getScales());
  EXPECT_EQ("{\n\n}", DataWriter().writeSceneString(scene.get()));
}

TEST(SceneFile, BrushOfThreeElementsIsOpaqueBlack) {
  const ScenePointer scene = read("{\"Brushes\":[[1,2,3]]}");
  EXPECT_EQ("{\n\"Brushes\": [[0,0,0,255]]\n}", DataWriter().writeSceneString(scene.get()));
}

TEST(SceneFile, ColourBeyond255Throws) {
  EXPECT_THROW(read("{\"Brushes\":[[1,2,3,300]]}"), std::out_of_range);
  EXPECT_THROW(read("{\"Brushes\":[[1,2,-1,255]]}"), std::out_of_range);
  EXPECT_NO_THROW(read("{\"Brushes\":[[0,255,0,255]]}"));
}

TEST(SceneFile, CoordinateThatIsNoNumberKeepsItsDefault) {
  const ScenePointer scene = read("{\"Points\":[[1,\"a\",3]]}");
  const Geometry::Point3d& point = *scene->getPoints()->getPoint(0);
  EXPECT_EQ(1.0, point.getX());
  EXPECT_EQ(0.0, point.getY());
  EXPECT_EQ(3.0, point.getZ());
}

TEST(SceneFile, RegionSkipsPointsThatAreNoNumbers) {
  const ScenePointer scene = readObject("\"Regions\":[{\"Points\":[1,\"x\",2]}]");
  EXPECT_EQ((std::vector<int>{1, 2}), *object(scene).getRegions()->getRegion(0)->getPoints());
}

TEST(SceneFile, NegativeFaceNumberIsReadButNotWritten) {
  const ScenePointer scene = readObject("\"Regions\":[{\"Face\":-1,\"Brush\":-7}]");
  EXPECT_EQ(-1, object(scene).getRegions()->getRegion(0)->getFaceNumber());
  EXPECT_EQ(-7, object(scene).getRegions()->getRegion(0)->getBrushNumber());
  EXPECT_EQ("{\n\"Objects\": [{\n\"PartsCount\": 0,\n\"Regions\": [{\n\n}]\n}]\n}",
            DataWriter().writeSceneString(scene.get()));
}

TEST(SceneFile, ListOfAWrongTypeIsNullInAnObjectAndEmptyInAScene) {
  const ScenePointer inObject =
      readObject("\"Regions\":{},\"Faces\":1,\"Parts\":\"x\",\"Overlays\":null");
  EXPECT_EQ(nullptr, object(inObject).getRegions());
  EXPECT_EQ(nullptr, object(inObject).getFaces());
  EXPECT_EQ(nullptr, object(inObject).getParts());
  EXPECT_EQ(nullptr, object(inObject).getOverlays());
  const ScenePointer inScene = read("{\"Objects\":{},\"Pens\":1}");
  ASSERT_NE(nullptr, inScene->getObjects());
  EXPECT_TRUE(inScene->getObjects()->getObjects()->empty());
  EXPECT_NE(nullptr, inScene->getPens());
}

TEST(SceneFile, MalformedNormalIsZeroAndAMissingOneIsUp) {
  const ScenePointer scene = readObject("\"Faces\":[{\"Normal\":[1,2]},{}]");
  const Geometry::Vector3d& malformed = *object(scene).getFaces()->getFace(0)->getNormal();
  EXPECT_EQ(0.0, malformed.getX());
  EXPECT_EQ(0.0, malformed.getY());
  EXPECT_EQ(0.0, malformed.getZ());
  const Geometry::Vector3d& missing = *object(scene).getFaces()->getFace(1)->getNormal();
  EXPECT_EQ(0.0, missing.getX());
  EXPECT_EQ(0.0, missing.getY());
  EXPECT_EQ(1.0, missing.getZ());
}

TEST(SceneFile, DefaultRegionWritesAnEmptyObject) {
  EXPECT_EQ("{\n\"Objects\": [{\n\"PartsCount\": 0,\n\"Regions\": [{\n\n}]\n}]\n}",
            rewritten("{\"Objects\":[{\"Regions\":[{}]}]}"));
}

TEST(SceneFile, CoordinatesKeepSixDigits) {
  EXPECT_EQ("{\n\"Points\": [[0.123457,0,0]]\n}", rewritten("{\"Points\":[[0.1234567,0,0]]}"));
  EXPECT_EQ("{\n\"Points\": [[1.23457e+06,0,0]]\n}", rewritten("{\"Points\":[[1234567,0,0]]}"));
}

TEST(SceneFile, FirstOfTwoEqualKeysCounts) {
  EXPECT_EQ("{\n\"Points\": [[1,0,0]]\n}",
            rewritten("{\"Points\":[[1,0,0]],\"Points\":[[2,0,0]]}"));
}

TEST(SceneFile, KeysAreCaseSensitiveAndUnknownOnesAreIgnored) {
  EXPECT_EQ("{\n\n}", rewritten("{\"points\":[[0,0,0]],\"Camera\":{},\"Values\":[]}"));
}

// Deliberate in the format: what a host's valued faces write is read by nobody.
TEST(SceneFile, ValuesOfAFaceAreWrittenButNotReadBack) {
  Scene::Scene3D scene;
  auto* const objects = new Scene::Objects();
  auto* const thing = new Scene::Object();
  auto* const faces = new Geometry::Faces();
  auto* const face = new Geometry::VFace();
  face->setProperty(4, 2.5);
  faces->addFace(face);
  thing->setFaces(faces);
  objects->addObject(thing);
  scene.setObjects(objects);

  const std::string text = DataWriter().writeSceneString(&scene);
  EXPECT_EQ(
      "{\n\"Objects\": [{\n\"PartsCount\": 0,\n\"Faces\": [{\n\"Normal\": [0,0,1],\n"
      "\"Values\": [[4,2.5]]\n}]\n}]\n}",
      text);
  EXPECT_EQ("{\n\"Objects\": [{\n\"PartsCount\": 0,\n\"Faces\": [{\n\"Normal\": [0,0,1]\n}]\n}]\n}",
            rewritten(text));
}

}  // namespace
}  // namespace Lumivane::IO
