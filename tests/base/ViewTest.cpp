#include "support/JsonText.h"

#include <lumivane/algorithm/ShotParameters.h>
#include <lumivane/base/View.h>
#include <lumivane/base/ViewNormalCamera.h>
#include <lumivane/base/ViewOrientation3D.h>
#include <lumivane/base/ViewSphericalCamera.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>

#include <memory>

#include <gtest/gtest.h>

namespace Lumivane::Base {
namespace {

using namespace Lumivane::Test;

TEST(View, DefaultHasNoCameraAndNoOrientationAndIsFilled) {
  View view;
  EXPECT_EQ(nullptr, view.getCamera());
  EXPECT_EQ(nullptr, view.getOrientation());
  EXPECT_EQ(ViewDisplayStyle::Filled, view.getDisplayStyle());
}

TEST(View, KeepsThePointersAndOwnsNothing) {
  ViewSphericalCamera camera;
  ViewOrientation3D orientation;
  {
    View view;
    view.setCamera(&camera);
    view.setOrientation(&orientation);
    view.setDisplayStyle(ViewDisplayStyle::HalfTransparent);
    const View copy(view);
    EXPECT_EQ(&camera, View(copy).getCamera());
    EXPECT_EQ(&orientation, View(copy).getOrientation());
    EXPECT_EQ(ViewDisplayStyle::HalfTransparent, copy.getDisplayStyle());
  }
  EXPECT_EQ(ViewCameraKind::Spherical, camera.getKind());  // both outlive the views
  EXPECT_NE(nullptr, orientation.getEyePosition());
}

TEST(View, WritesAnEmptyObjectWhateverItHolds) {
  ViewNormalCamera camera;
  ViewOrientation3D orientation;
  View view;
  view.setCamera(&camera);
  view.setOrientation(&orientation);
  EXPECT_EQ("{}", written(view));
}

TEST(View, ReadingChangesNothing) {
  ViewNormalCamera camera;
  View view;
  view.setCamera(&camera);
  read(view, "[1,2,3]");
  EXPECT_EQ(&camera, view.getCamera());
  EXPECT_EQ(ViewDisplayStyle::Filled, view.getDisplayStyle());
}

TEST(View, OnlyACameraOfADefinedKindYieldsAShot) {
  class BareCamera : public ViewCamera {};
  BareCamera bare;
  ViewSphericalCamera spherical;
  ViewOrientation3D orientation;
  Scene::Scene3D scene;
  scene.setObjects(new Scene::Objects());
  Algorithm::ShotParameters parameters;
  View view;
  view.setOrientation(&orientation);
  view.setCamera(&bare);
  EXPECT_EQ(nullptr, scene.makeShot(&view, &parameters));
  view.setCamera(&spherical);
  const std::unique_ptr<Shot::Shot2d> shot(scene.makeShot(&view, &parameters));
  EXPECT_NE(nullptr, shot);
}

TEST(ViewDisplayStyle, HasItsNumbers) {
  EXPECT_EQ(0, static_cast<int>(ViewDisplayStyle::Filled));
  EXPECT_EQ(1, static_cast<int>(ViewDisplayStyle::Outline));
  EXPECT_EQ(2, static_cast<int>(ViewDisplayStyle::HalfTransparent));
  EXPECT_EQ(4u, sizeof(ViewDisplayStyle));
}

}  // namespace
}  // namespace Lumivane::Base
