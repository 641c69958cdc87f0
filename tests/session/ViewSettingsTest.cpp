#include <lumivane/session/ViewSettings.h>

#include <cmath>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

ViewSettings turned(const Vector& forward, const Vector& up) {
  ViewSettings options;
  options.forward = forward;
  options.up = up;
  return options;
}

TEST(ViewSettings, DefaultHasNoFault) { EXPECT_EQ("", ViewSettings().fault()); }

TEST(ViewSettings, UsualUpIsNorthForALookStraightUpOrDown) {
  EXPECT_EQ((Vector{0, 0, 1}), usualUp({1, 0, 0}));
  EXPECT_EQ((Vector{0, 0, 1}), usualUp({0, 0.001, -1}));
  EXPECT_EQ((Vector{0, 1, 0}), usualUp({0, 0, 3}));
  EXPECT_EQ((Vector{0, 1, 0}), usualUp({0, 0, -1e-300}));
  EXPECT_EQ((Vector{0, 0, 1}), usualUp({0, 0, 0}));
  EXPECT_EQ((Vector{0, 0, 1}), usualUp({0, 0, HUGE_VAL}));
}

TEST(ViewSettings, ParallelAndZeroAndInfiniteVectorsAreFaults) {
  EXPECT_EQ("forward 1,0,0 and up 2,0,0 are parallel", turned({1, 0, 0}, {2, 0, 0}).fault());
  EXPECT_EQ("forward 1,0,0 and up -2,0,0 are parallel", turned({1, 0, 0}, {-2, 0, 0}).fault());
  EXPECT_NE("", turned({0.1, 0.2, 0.3}, {0.3, 0.6, 0.9}).fault());
  EXPECT_NE("", turned({1e-200, 0, 0}, {1e200, 0, 0}).fault());
  EXPECT_EQ("forward is the zero vector", turned({0, 0, 0}, {0, 0, 1}).fault());
  EXPECT_EQ("up is the zero vector", turned({1, 0, 0}, {0, 0, 0}).fault());
  EXPECT_EQ("up 0,0,inf is not finite", turned({1, 0, 0}, {0, 0, HUGE_VAL}).fault());
  ViewSettings settings;
  settings.eye[1] = std::nan("");
  EXPECT_EQ("eye 0,nan,0 is not finite", settings.fault());
}

TEST(ViewSettings, NearlyParallelVectorsAreNoFault) {
  EXPECT_EQ("", turned({1, 0, 0}, {1, 0.001, 0}).fault());
  EXPECT_EQ("", turned({1e-150, 0, 0}, {0, 1e150, 0}).fault());
}

TEST(ViewSettings, CameraWithoutAProjectionIsAFault) {
  ViewSettings settings;
  settings.camera = Base::ViewCameraKind::Undefined;
  EXPECT_EQ("the camera is neither spherical nor normal", settings.fault());
  settings.camera = Base::ViewCameraKind::Normal;
  EXPECT_EQ("", settings.fault());
}

TEST(ViewSettings, LimitsAreFiniteAndNotNegative) {
  ViewSettings settings;
  settings.d1 = -1.0;
  EXPECT_EQ("d1 is -1, not a finite number of at least 0", settings.fault());
  settings.d1 = 0.0;
  settings.d2 = HUGE_VAL;
  EXPECT_EQ("d2 is inf, not a finite number of at least 0", settings.fault());
  settings.d2 = 1.0;
  settings.maxLength = std::nan("");
  EXPECT_EQ("the maximum length is nan, not a finite number of at least 0", settings.fault());
  settings.maxLength = 0.0;
  settings.mergeDistance = -1e-7;
  EXPECT_EQ("the merge distance is -1e-07, not a finite number of at least 0", settings.fault());
  settings.mergeDistance = 0.0;
  settings.segments = 0;
  EXPECT_EQ("the least number of segments is 0, not above 0", settings.fault());
}

}  // namespace
}  // namespace Lumivane::Session
