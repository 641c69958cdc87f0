#include "support/JsonText.h"

#include <lumivane/base/ViewOrientation3D.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Vector3d.h>

#include <memory>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using namespace Lumivane::Test;
using Geometry::Point3d;
using Geometry::Vector3d;

TEST(ViewOrientation3D, DefaultLooksAlongXWithZUp) {
  ViewOrientation3D orientation;
  EXPECT_EQ("[[0,0,0],[1,0,0],[0,0,1]]", written(orientation));
}

TEST(ViewOrientation3D, TakesItsObjectsOverInTheOrderEyeForwardUp) {
  auto* eye = new Point3d(1, 2, 3);
  auto* forward = new Vector3d(0, 1, 0);
  auto* up = new Vector3d(1, 0, 0);
  ViewOrientation3D orientation(eye, forward, up);
  EXPECT_EQ(eye, orientation.getEyePosition());
  EXPECT_EQ(forward, orientation.getForwardDirection());
  EXPECT_EQ(up, orientation.getUpDirection());
  EXPECT_EQ("[[1,2,3],[0,1,0],[1,0,0]]", written(orientation));
}

TEST(ViewOrientation3D, SettersLeaveThePreviousObjectsAlive) {
  ViewOrientation3D orientation;
  const std::unique_ptr<Point3d> eye(orientation.getEyePosition());
  const std::unique_ptr<Vector3d> forward(orientation.getForwardDirection());
  const std::unique_ptr<Vector3d> up(orientation.getUpDirection());
  orientation.setEyePosition(new Point3d(1, 1, 1));
  orientation.setForwardDirection(nullptr);
  orientation.setUpDirection(new Vector3d(3, 3, 3));
  EXPECT_EQ("[[1,1,1],null,[3,3,3]]", written(orientation));
  EXPECT_EQ(0.0, eye->getX());
  EXPECT_EQ(1.0, forward->getX());
  EXPECT_EQ(1.0, up->getZ());
}

TEST(ViewOrientation3D, CopiesShareTheirObjects) {
  static ViewOrientation3D first;  // only one of two copies may be destroyed
  static ViewOrientation3D* second = nullptr;
  second = new ViewOrientation3D(first);
  EXPECT_EQ(first.getEyePosition(), second->getEyePosition());
  EXPECT_EQ(first.getForwardDirection(), second->getForwardDirection());
  EXPECT_EQ(first.getUpDirection(), second->getUpDirection());
}

TEST(ViewOrientation3D, ReadingChangesNothing) {
  ViewOrientation3D orientation;
  read(orientation, "[[9,9,9],[9,9,9],[9,9,9]]");
  EXPECT_EQ("[[0,0,0],[1,0,0],[0,0,1]]", written(orientation));
}

}  // namespace
}  // namespace Lumivane::Base
