#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/session/ViewSetup.h>

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

TEST(ViewSetup, CarriesEverySetting) {
  ViewSettings settings;
  settings.eye = {1, 2, 3};
  settings.forward = {4, 5, 6};
  settings.up = {7, 8, 10};
  settings.property = 11;
  settings.scale = 12;
  settings.d1 = 0.13;
  settings.d2 = 14;
  settings.style = Base::ViewDisplayStyle::HalfTransparent;
  ViewSetup setup(settings);
  Base::ViewOrientation3D& orientation = *setup.view()->getOrientation();
  EXPECT_EQ(std::vector<double>({1, 2, 3}), orientation.getEyePosition()->toVector());
  EXPECT_EQ(std::vector<double>({4, 5, 6}), orientation.getForwardDirection()->toVector());
  EXPECT_EQ(std::vector<double>({7, 8, 10}), orientation.getUpDirection()->toVector());
  EXPECT_EQ(11, setup.parameters()->getPropertyNum());
  EXPECT_EQ(12, setup.parameters()->getScaleNum());
  EXPECT_EQ(0.13, setup.parameters()->getD1());
  EXPECT_EQ(14, setup.parameters()->getD2());
  EXPECT_EQ(Base::ViewDisplayStyle::HalfTransparent, setup.view()->getDisplayStyle());
}

TEST(ViewSetup, VeryShortAndLongDirectionsAreScaledByPowersOfTwo) {
  for (const double length : {1e-300, 1e-20, 1e20, 1e300}) {
    ViewSettings settings;
    settings.forward = {length, -length / 4, 0};
    settings.up = {0, 0, length};
    ViewSetup setup(settings);
    const auto forward = setup.view()->getOrientation()->getForwardDirection()->toVector();
    EXPECT_GE(forward[0], 1.0);
    EXPECT_LT(forward[0], 2.0);
    EXPECT_EQ(-forward[0] / 4, forward[1]);
    int exponent = 0;
    EXPECT_EQ(std::frexp(length, &exponent), std::frexp(forward[0], &exponent));
  }
}

TEST(ViewSetup, CameraIsOfTheKindAskedFor) {
  ViewSettings settings;
  EXPECT_EQ(Base::ViewCameraKind::Spherical, ViewSetup(settings).view()->getCamera()->getKind());
  settings.camera = Base::ViewCameraKind::Normal;
  EXPECT_EQ(Base::ViewCameraKind::Normal, ViewSetup(settings).view()->getCamera()->getKind());
  settings.camera = Base::ViewCameraKind::Undefined;
  EXPECT_EQ(nullptr, ViewSetup(settings).view()->getCamera());
}

TEST(ViewSetup, EyeFollowsTheRawView) {
  ViewSetup setup(ViewSettings{});
  setup.view()->getOrientation()->getEyePosition()->setY(5);
  EXPECT_EQ((Vector{0, 5, 0}), setup.eye());
}

}  // namespace
}  // namespace Lumivane::Session
