#include "support/Copies.h"
#include "support/Documents.h"
#include "support/Vectors.h"

#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pens.h>
#include <lumivane/base/Properties.h>
#include <lumivane/base/Scales.h>
#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/VFace.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>

#include <memory>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Scene::Scene3D;

// One triangle in the plane z = 0, the one region being the whole of the one face.
const char* const TriangleScene =
    "{\n\"Brushes\": [[200,200,200,255]],\n\"Pens\": [[0,0,0,255,1]],\n"
    "\"Points\": [[0,0,0],[1,0,0],[0,1,0]],\n"
    "\"Objects\": [{\n\"Id\": \"A\",\n\"PartsCount\": 1,\n\"Pen\": 1,\n"
    "\"Faces\": [{\n\"Regions\": [1],\n\"Normal\": [0,0,1]\n}],\n"
    "\"Parts\": [{\n\"Regions\": [1]\n}],\n"
    "\"Regions\": [{\n\"Brush\": 1,\n\"Face\": 1,\n\"Points\": [1,2,3]\n}],\n"
    "\"Overlays\": []\n}],\n"
    "\"Properties\": [[1,\"Height\"]],\n"
    "\"Scales\": [{\n\"Name\": \"S\",\n\"Items\": [[0,0,0,255],[1,255,0,0]]\n}]\n}";

TEST(Scene3D, HasSixNullListsAtFirst) {
  Scene3D scene;
  EXPECT_EQ(nullptr, scene.getBrushes());
  EXPECT_EQ(nullptr, scene.getPens());
  EXPECT_EQ(nullptr, scene.getPoints());
  EXPECT_EQ(nullptr, scene.getObjects());
  EXPECT_EQ(nullptr, scene.getProperties());
  EXPECT_EQ(nullptr, scene.getScales());
  EXPECT_EQ("{\n\n}", textOf(scene));
}

TEST(Scene3D, ReadsAnEmptyObjectAsSixNullLists) {
  Scene3D scene;
  EXPECT_EQ(&scene, scene.deserialize(nodeOf("{}")));
  EXPECT_EQ(nullptr, scene.getBrushes());
  EXPECT_EQ(nullptr, scene.getScales());
  EXPECT_EQ("{\n\n}", textOf(scene));
}

TEST(Scene3D, WritesItsKeysInOrderAndReadsThemBack) {
  Scene3D scene;
  EXPECT_EQ(TriangleScene, textOf(readInto(scene, TriangleScene)));
}

TEST(Scene3D, WritesItsKeysInOrderWhateverTheOrderTheyCameIn) {
  Scene3D scene;
  readInto(scene,
           "{\"Scales\":[],\"Properties\":[],\"Objects\":[],\"Points\":[],\"Pens\":[],"
           "\"Brushes\":[]}");
  EXPECT_EQ(
      "{\n\"Brushes\": [],\n\"Pens\": [],\n\"Points\": [],\n\"Objects\": [],\n"
      "\"Properties\": [],\n\"Scales\": []\n}",
      textOf(scene));
}

TEST(Scene3D, MakesAnEmptyListForAKeyOfAnotherKind) {
  Scene3D scene;
  readInto(scene,
           "{\"Brushes\":null,\"Pens\":1,\"Points\":\"x\",\"Objects\":{},\"Properties\":true,"
           "\"Scales\":2.5}");
  EXPECT_TRUE(scene.getBrushes()->getBrushes()->empty());
  EXPECT_TRUE(scene.getPens()->getPens()->empty());
  EXPECT_TRUE(scene.getPoints()->getPoints()->empty());
  EXPECT_TRUE(scene.getObjects()->getObjects()->empty());
  ASSERT_NE(nullptr, scene.getProperties());
  ASSERT_NE(nullptr, scene.getScales());
}

TEST(Scene3D, LooksOnlyAtARootOfTypeObject) {
  Scene3D scene;
  scene.deserialize(nodeOf("[{\"Brushes\":[]}]"));
  scene.deserialize(Jzon::invalid());
  scene.deserialize(Jzon::Node("Brushes"));
  EXPECT_EQ("{\n\n}", textOf(scene));
}

TEST(Scene3D, ReadsABrushOfThreeElementsAsOpaqueBlack) {
  Scene3D scene;
  readInto(scene, "{\"Brushes\":[[1,2,3]]}");
  EXPECT_EQ("{\n\"Brushes\": [[0,0,0,255]]\n}", textOf(scene));
}

TEST(Scene3D, ThrowsOnAColourOutOfRangeAndKeepsTheListsReadBefore) {
  Scene3D scene;
  EXPECT_THROW(readInto(scene, "{\"Brushes\":[[1,2,3,300]]}"), std::out_of_range);
  EXPECT_EQ(nullptr, scene.getBrushes());
  EXPECT_THROW(readInto(scene, "{\"Brushes\":[[1,2,3,4]],\"Pens\":[[0,0,0,255,-1]],\"Points\":[]}"),
               std::runtime_error);
  EXPECT_EQ("{\n\"Brushes\": [[1,2,3,4]]\n}", textOf(scene));
}

TEST(Scene3D, ReadsTheFirstOfTwoEqualKeys) {
  Scene3D scene;
  readInto(scene, "{\"Brushes\":[[1,2,3,4]],\"Brushes\":[]}");
  EXPECT_EQ("{\n\"Brushes\": [[1,2,3,4]]\n}", textOf(scene));
}

TEST(Scene3D, RoundsCoordinatesToSixDigitsInItsFile) {
  Scene3D scene;
  readInto(scene, "{\"Points\":[[0.1234567,0,0],[1,\"a\",3]]}");
  EXPECT_EQ("{\n\"Points\": [[0.123457,0,0],[1,0,3]]\n}", textOf(scene));
}

TEST(Scene3D, WritesTheValuesOfAFaceAndDropsThemOnReading) {
  Scene3D scene;
  readInto(scene, "{\"Objects\":[{\"Faces\":[]}]}");
  auto* valued = new Geometry::VFace();
  valued->setProperty(1, 2.0);
  scene.getObjects()->getObject(0)->getFaces()->addFace(valued);
  EXPECT_NE(std::string::npos, textOf(scene).find("\"Values\": [[1,2]]"));
  Scene3D read;
  EXPECT_EQ(std::string::npos, textOf(readInto(read, textOf(scene))).find("Values"));
}

TEST(Scene3D, StoresWhatTheSettersGiveAndFreesNothing) {
  Scene3D scene;
  auto points = std::make_unique<Geometry::Points3d>();
  scene.setPoints(points.get());
  auto* others = new Geometry::Points3d();
  scene.setPoints(others);
  EXPECT_EQ(others, scene.getPoints());
  EXPECT_TRUE(points->getPoints()->empty());
}

TEST(Scene3D, CopiesShareAllSixLists) {
  Scene3D source;
  readInto(source, TriangleScene);
  UndestroyedCopy<Scene3D> copy(source);
  EXPECT_EQ(source.getBrushes(), copy->getBrushes());
  EXPECT_EQ(source.getPens(), copy->getPens());
  EXPECT_EQ(source.getPoints(), copy->getPoints());
  EXPECT_EQ(source.getObjects(), copy->getObjects());
  EXPECT_EQ(source.getProperties(), copy->getProperties());
  EXPECT_EQ(source.getScales(), copy->getScales());
  *copy = Scene3D();
  EXPECT_EQ(nullptr, copy->getBrushes());
  EXPECT_EQ(TriangleScene, textOf(source));
}

const VectorTests sceneReadWriteVectors("sceneReadWrite", [](const VectorCase& vectorCase) {
  const Jzon::Node node = nodeOf(vectorCase.in.at("text").get<std::string>());
  if (!node.isValid()) {  // it never gets as far as a scene: the reader reports it
    EXPECT_TRUE(vectorCase.out.is_null());
    return;
  }
  checkedRun(vectorCase, [&] {
    Scene3D scene;
    scene.deserialize(node);
    EXPECT_EQ(vectorCase.out.get<std::string>(), textOf(scene));
  });
});

}  // namespace
}  // namespace Lumivane::Test
