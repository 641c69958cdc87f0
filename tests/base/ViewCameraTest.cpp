#include "support/JsonText.h"

#include <lumivane/base/ViewCamera.h>
#include <lumivane/base/ViewNormalCamera.h>
#include <lumivane/base/ViewSphericalCamera.h>

#include <type_traits>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using namespace Lumivane::Test;

class BareCamera : public ViewCamera {};

TEST(ViewCamera, CanOnlyBeBuiltAsADerivedClass) {
  EXPECT_FALSE(std::is_default_constructible_v<ViewCamera>);
  EXPECT_FALSE(std::is_copy_constructible_v<ViewCamera>);
}

TEST(ViewCamera, IsOfUndefinedKindAndOpensSixtyDegrees) {
  BareCamera camera;
  EXPECT_EQ(ViewCameraKind::Undefined, camera.getKind());
  EXPECT_EQ(60.0, camera.getHorizontalAngle());
  EXPECT_EQ(60.0, camera.getVerticalAngle());
  EXPECT_EQ("[0,60,60]", written(camera));
}

TEST(ViewSphericalCamera, OpensHalfARoundBothWays) {
  ViewSphericalCamera camera;
  EXPECT_EQ(ViewCameraKind::Spherical, camera.getKind());
  EXPECT_EQ(180.0, camera.getHorizontalAngle());
  EXPECT_EQ(180.0, camera.getVerticalAngle());
  EXPECT_EQ("[1,180,180]", written(camera));
}

TEST(ViewSphericalCamera, ACopyIsAsADefaultOne) {
  const ViewSphericalCamera camera;
  ViewSphericalCamera copy(camera);
  EXPECT_EQ("[1,180,180]", written(copy));
}

TEST(ViewNormalCamera, OpensSixtyDegreesBothWays) {
  ViewNormalCamera camera;
  EXPECT_EQ(ViewCameraKind::Normal, camera.getKind());
  EXPECT_EQ("[2,60,60]", written(camera));
}

TEST(ViewNormalCamera, AnglesCanBeSetAndAreCopied) {
  ViewNormalCamera camera;
  camera.setHorizontalAngle(90.5);
  camera.setVerticalAngle(45);
  ViewNormalCamera copy(camera);
  EXPECT_EQ("[2,90.5,45]", written(copy));
}

TEST(ViewCamera, ReadingChangesNothing) {
  BareCamera bare;
  ViewSphericalCamera spherical;
  ViewNormalCamera normal;
  read(bare, "[1,2,3]");
  read(spherical, "[2,2,3]");
  read(normal, "[1,2,3]");
  EXPECT_EQ("[0,60,60]", written(bare));
  EXPECT_EQ("[1,180,180]", written(spherical));
  EXPECT_EQ("[2,60,60]", written(normal));
}

TEST(ViewCameraKind, HasItsNumbers) {
  EXPECT_EQ(0, static_cast<int>(ViewCameraKind::Undefined));
  EXPECT_EQ(1, static_cast<int>(ViewCameraKind::Spherical));
  EXPECT_EQ(2, static_cast<int>(ViewCameraKind::Normal));
  EXPECT_EQ(4u, sizeof(ViewCameraKind));
}

}  // namespace
}  // namespace Lumivane::Base
