#include "support/JsonText.h"

#include <lumivane/base/Camera.h>
#include <lumivane/base/Color.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Vector3d.h>

#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using namespace Lumivane::Test;
using Geometry::Point3d;
using Geometry::Vector3d;

constexpr const char* DefaultText =
    "{\"Position\":[0,0,0],\"Direction\":[1,0,0],\"ViewUp\":[0,0,1],"
    "\"InteriorColor\":[64,64,64,255],\"D1\":0.01,\"D2\":1}";

TEST(Camera, DefaultsAreWrittenInOrder) {
  Camera camera;
  EXPECT_EQ(DefaultText, written(camera));
}

TEST(Camera, CopiesShareTheirObjects) {
  static Camera first;  // only one of two copies may be destroyed
  static Camera* second = nullptr;
  second = new Camera(first);
  EXPECT_EQ(first.getPosition(), second->getPosition());
  EXPECT_EQ(first.getDirection(), second->getDirection());
  EXPECT_EQ(first.getViewUp(), second->getViewUp());
  EXPECT_EQ(first.getInteriorColor(), second->getInteriorColor());
}

TEST(Camera, SettersLeaveThePreviousObjectsAlive) {
  Camera camera;
  const std::unique_ptr<Point3d> position(camera.getPosition());
  const std::unique_ptr<Vector3d> direction(camera.getDirection());
  const std::unique_ptr<Vector3d> up(camera.getViewUp());
  const std::unique_ptr<Color> color(camera.getInteriorColor());
  camera.setPosition(new Point3d(1, 2, 3));
  camera.setDirection(new Vector3d(0, 1, 0));
  camera.setViewUp(new Vector3d(1, 0, 0));
  camera.setInteriorColor(new Color(1, 2, 3, 4));
  camera.setD1(0.5);
  camera.setD2(2.5);
  EXPECT_EQ(
      "{\"Position\":[1,2,3],\"Direction\":[0,1,0],\"ViewUp\":[1,0,0],"
      "\"InteriorColor\":[1,2,3,4],\"D1\":0.5,\"D2\":2.5}",
      written(camera));
  EXPECT_EQ(0.5, camera.getD1());
  EXPECT_EQ(2.5, camera.getD2());
  EXPECT_EQ(0.0, position->getX());
  EXPECT_EQ(1.0, direction->getX());
  EXPECT_EQ(1.0, up->getZ());
  EXPECT_EQ(64, color->getRed());
}

TEST(Camera, ReadingReplacesThePresentObjectsAndLeavesTheOldOnesAlive) {
  Camera camera;
  const std::unique_ptr<Point3d> position(camera.getPosition());
  Vector3d* direction = camera.getDirection();
  const std::unique_ptr<Vector3d> up(camera.getViewUp());
  const std::unique_ptr<Color> color(camera.getInteriorColor());
  read(camera, R"({"ViewUp":[1,2],"Position":[1,2,3],"InteriorColor":[1,2,3,4],"D1":3,"D2":4.5})");
  // A malformed value gives the new object's own default.
  EXPECT_EQ(
      "{\"Position\":[1,2,3],\"Direction\":[1,0,0],\"ViewUp\":[0,0,0],"
      "\"InteriorColor\":[1,2,3,4],\"D1\":3,\"D2\":4.5}",
      written(camera));
  EXPECT_EQ(direction, camera.getDirection());
  EXPECT_EQ(0.0, position->getX());
  EXPECT_EQ(64, color->getRed());
}

TEST(Camera, AMalformedInteriorColourIsOpaqueBlack) {
  Camera camera;
  const std::unique_ptr<Color> color(camera.getInteriorColor());
  read(camera, R"({"InteriorColor":17})");
  EXPECT_EQ("[0,0,0,255]", written(*camera.getInteriorColor()));
}

TEST(Camera, LimitsAreReadWithoutATestOfTheirKind) {
  Camera camera;
  read(camera, R"({"D1":"0.7","D2":null})");
  EXPECT_EQ(0.0, camera.getD1());
  EXPECT_EQ(0.0, camera.getD2());
}

TEST(Camera, OtherKindsOfNodesAndMissingKeysChangeNothing) {
  Camera camera;
  for (const char* text : {"[]", "1", "null", "{}", R"({"position":[1,2,3],"Camera":1})"})
    read(camera, text);
  EXPECT_EQ(DefaultText, written(camera));
}

TEST(Camera, AColourOutOfRangeThrowsAndKeepsTheOldColour) {
  Camera camera;
  const Jzon::Node node = jsonNode(R"({"InteriorColor":[1,2,3,256],"D1":9})");
  EXPECT_THROW(camera.deserialize(node), std::out_of_range);
  EXPECT_EQ(DefaultText, written(camera));
}

TEST(Camera, ObjectsSetToNullAreWrittenAsNull) {
  Camera camera;
  delete camera.getPosition();
  delete camera.getInteriorColor();
  camera.setPosition(nullptr);
  camera.setInteriorColor(nullptr);
  EXPECT_EQ(
      "{\"Position\":null,\"Direction\":[1,0,0],\"ViewUp\":[0,0,1],"
      "\"InteriorColor\":null,\"D1\":0.01,\"D2\":1}",
      written(camera));
}

}  // namespace
}  // namespace Lumivane::Base
