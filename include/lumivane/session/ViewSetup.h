#pragma once

#include <lumivane/algorithm/ShotParameters.h>
#include <lumivane/base/View.h>
#include <lumivane/base/ViewNormalCamera.h>
#include <lumivane/base/ViewOrientation3D.h>
#include <lumivane/base/ViewSphericalCamera.h>
#include <lumivane/export.h>
#include <lumivane/session/ViewSettings.h>

namespace Lumivane::Session {

/// The raw view of some settings, with the cameras and the orientation that it refers to. For hosts
/// that call the raw classes; `LoadedScene::take` makes its own.
class LUMIVANE_EXPORT ViewSetup {
 public:
  /// The view of these settings, which are not checked: ask `ViewSettings::fault` first.
  explicit ViewSetup(const ViewSettings& settings);
  ViewSetup(const ViewSetup&) = delete;
  ViewSetup& operator=(const ViewSetup&) = delete;
  ~ViewSetup();

  /// Still the setup's. A camera kind without a projection gives a view without a camera.
  Base::View* view() { return &theView; }
  /// Still the setup's.
  Algorithm::ShotParameters* parameters() { return &theParameters; }
  /// Where the eye stands now: taking a shot may move it off a polygon.
  Vector eye();

 private:
  Base::ViewSphericalCamera spherical;
  Base::ViewNormalCamera normal;
  Base::ViewOrientation3D orientation;
  Base::View theView;
  Algorithm::ShotParameters theParameters;
};

}  // namespace Lumivane::Session
