#include "support/Copies.h"
#include "support/Documents.h"

#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Overlays.h>
#include <lumivane/geometry/Parts.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Scene::Object;

TEST(Object, IsEmptyAtFirst) {
  const Object object;
  EXPECT_EQ("", object.getId());
  EXPECT_EQ(0, object.getPartsCount());
  EXPECT_EQ(-1, object.getPenNumber());
  EXPECT_EQ(-1, object.getCameraInRegionIndex());
  EXPECT_EQ(nullptr, object.getFaces());
  EXPECT_EQ(nullptr, object.getParts());
  EXPECT_EQ(nullptr, object.getRegions());
  EXPECT_EQ(nullptr, object.getOverlays());
  EXPECT_EQ(nullptr, object.getRegionsPolyData());
  EXPECT_EQ(nullptr, object.getRegionsClippedPolyData());
  EXPECT_EQ(nullptr, object.getRegionsVisiblePolygons());
  EXPECT_EQ(nullptr, object.getRegionsProjectedPolygons());
}

TEST(Object, KeepsPartsAndTheirCountApart) {
  Object object;
  object.setPartsCount(7);
  EXPECT_EQ(nullptr, object.getParts());
  readInto(object, "{\"Parts\":[{},{}]}");
  EXPECT_EQ(7, object.getPartsCount());
  object.setPartsCount(1);
  EXPECT_EQ(2u, object.getParts()->getParts()->size());
}

TEST(Object, WritesOnlyThePartsCountAtFirst) {
  Object object;
  EXPECT_EQ("{\n\"PartsCount\": 0\n}", textOf(object));
  object.setPartsCount(-1);
  EXPECT_EQ("{\n\n}", textOf(object));
}

TEST(Object, WritesItsKeysInOrderAndReadsThemBack) {
  const std::string text =
      "{\n\"Id\": \"A\",\n\"PartsCount\": 1,\n\"Pen\": 1,\n"
      "\"Faces\": [{\n\"Regions\": [1],\n\"Normal\": [0,0,1]\n}],\n"
      "\"Parts\": [{\n\"Regions\": [1]\n}],\n"
      "\"Regions\": [{\n\"Brush\": 1,\n\"Face\": 1,\n\"Points\": [1,2,3]\n}],\n"
      "\"Overlays\": [{\n\"Object\": 1,\n\"Face\": 1\n}]\n}";
  Object object;
  EXPECT_EQ(text, textOf(readInto(object, text)));
  EXPECT_EQ("A", object.getId());
  EXPECT_EQ(1, object.getPenNumber());
}

TEST(Object, WritesEmptyListsAsEmptyArrays) {
  Object object;
  const std::string text =
      "{\n\"PartsCount\": 0,\n\"Faces\": [],\n\"Parts\": [],\n\"Regions\": [],\n\"Overlays\": "
      "[]\n}";
  EXPECT_EQ(text, textOf(readInto(object, text)));
}

TEST(Object, HasNoListWhereTheKeyHoldsNoArray) {
  Object object;
  readInto(object, "{\"Faces\":1,\"Parts\":null,\"Regions\":{},\"Overlays\":\"x\"}");
  EXPECT_EQ(nullptr, object.getFaces());
  EXPECT_EQ(nullptr, object.getParts());
  EXPECT_EQ(nullptr, object.getRegions());
  EXPECT_EQ(nullptr, object.getOverlays());
}

TEST(Object, ReadsNumbersAndAStringOnly) {
  Object object;
  readInto(object, "{\"Id\":3,\"PartsCount\":\"4\",\"Pen\":null}");
  EXPECT_EQ("", object.getId());
  EXPECT_EQ(0, object.getPartsCount());
  EXPECT_EQ(-1, object.getPenNumber());
  EXPECT_EQ(&object, object.deserialize(nodeOf("[1]")));
  EXPECT_EQ(&object, object.deserialize(Jzon::invalid()));
  EXPECT_EQ("{\n\"PartsCount\": 0\n}", textOf(object));
}

TEST(Object, LeavesAListThatWasThereToItsHolder) {
  Object object;
  const auto old = std::make_unique<Geometry::Regions>();
  object.setRegions(old.get());
  readInto(object, "{\"Regions\":[{}]}");
  EXPECT_NE(old.get(), object.getRegions());
  EXPECT_TRUE(old->getRegions()->empty());
  EXPECT_EQ(1u, object.getRegions()->getRegions()->size());
}

TEST(Object, ADeletedCopyDeletesTheListsOfItsSource) {
  // The source is never destroyed: with the copy gone, nothing of what it points at is left. A leak
  // or a second deletion shows under the address sanitizer.
  auto copy = std::make_unique<Object>();
  readInto(*copy,
           "{\"Id\":\"A\",\"Faces\":[{}],\"Parts\":[{}],\"Regions\":[{}],\"Overlays\":[{}]}");
  UndestroyedCopy<Object> source(*copy);
  EXPECT_EQ(source->getFaces(), copy->getFaces());
  EXPECT_EQ(source->getParts(), copy->getParts());
  EXPECT_EQ(source->getRegions(), copy->getRegions());
  EXPECT_EQ(source->getOverlays(), copy->getOverlays());
  copy.reset();
  EXPECT_EQ("A", source->getId());
}

TEST(Object, CopiesShareTheWorkingDataAndHaveAnIdOfTheirOwn) {
  std::vector<vtkSmartPointer<vtkPolyData>> data;
  std::vector<vtkSmartPointer<vtkPolyData>> clipped;
  std::vector<std::vector<std::vector<std::vector<double>>>> visible;
  std::vector<std::vector<std::vector<Geometry::EdgeStartPoint2d*>>> projected;
  Object source;
  source.setId("A");
  source.setRegionsPolyData(&data);
  source.setRegionsClippedPolyData(&clipped);
  source.setRegionsVisiblePolygons(&visible);
  source.setRegionsProjectedPolygons(&projected);
  source.setCameraInRegionIndex(3);
  Object copy;
  copy = source;
  source.setId("B");
  EXPECT_EQ("A", copy.getId());
  EXPECT_EQ(&data, copy.getRegionsPolyData());
  EXPECT_EQ(&clipped, copy.getRegionsClippedPolyData());
  EXPECT_EQ(&visible, copy.getRegionsVisiblePolygons());
  EXPECT_EQ(&projected, copy.getRegionsProjectedPolygons());
  EXPECT_EQ(3, copy.getCameraInRegionIndex());
}

TEST(Object, NeverWritesItsWorkingData) {
  std::vector<vtkSmartPointer<vtkPolyData>> data;
  Object object;
  const std::string before = textOf(object);
  object.setRegionsPolyData(&data);
  object.setCameraInRegionIndex(3);
  EXPECT_EQ(before, textOf(object));
}

}  // namespace
}  // namespace Lumivane::Test
