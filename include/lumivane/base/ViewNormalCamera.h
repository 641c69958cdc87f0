#pragma once

#include <lumivane/base/ViewCamera.h>
#include <lumivane/export.h>

namespace Lumivane::Base {

/// A camera with an opening of its own: 60 degrees both ways, unless set otherwise.
class LUMIVANE_EXPORT ViewNormalCamera : public ViewCamera {
 public:
  /// Normal kind, 60 degrees both ways.
  ViewNormalCamera();

  /// Horizontal opening in degrees, not checked.
  using ViewCamera::setHorizontalAngle;
  /// Vertical opening in degrees, not checked.
  using ViewCamera::setVerticalAngle;
};

}  // namespace Lumivane::Base
