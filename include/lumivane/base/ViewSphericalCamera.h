#pragma once

#include <lumivane/base/ViewCamera.h>
#include <lumivane/export.h>

namespace Lumivane::Base {

/// A camera that sees the whole hemisphere in front of it: 180 degrees both ways.
class LUMIVANE_EXPORT ViewSphericalCamera : public ViewCamera {
 public:
  /// Spherical kind, 180 degrees both ways.
  ViewSphericalCamera();
};

}  // namespace Lumivane::Base
