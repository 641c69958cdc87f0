#pragma once

#include <lumivane/algorithm/ShotParameters.h>
#include <lumivane/base/View.h>
#include <lumivane/base/ViewNormalCamera.h>
#include <lumivane/base/ViewOrientation3D.h>
#include <lumivane/base/ViewSphericalCamera.h>

#include <string>

namespace Lumivane::Host {

struct ViewOptions;

/// A view with the camera and the orientation that it refers to.
class ViewSetup {
 public:
  explicit ViewSetup(const ViewOptions& options);
  ViewSetup(const ViewSetup&) = delete;
  ViewSetup& operator=(const ViewSetup&) = delete;

  Base::View* view() { return &theView; }
  Algorithm::ShotParameters* parameters() { return &theParameters; }

 private:
  Base::ViewSphericalCamera spherical;
  Base::ViewNormalCamera normal;
  Base::ViewOrientation3D orientation;
  Base::View theView;
  Algorithm::ShotParameters theParameters;
};

/// Why no shot can be made from this view; empty if one can.
std::string viewFault(const ViewOptions& options);

/// Hands the splitting options over to the library, which reads them from its command driver.
void setSplitting(const ViewOptions& options);

}  // namespace Lumivane::Host
