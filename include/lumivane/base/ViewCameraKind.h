#pragma once

namespace Lumivane::Base {

/// The kind of a view's camera, which selects the projection of a shot.
enum class ViewCameraKind : int {
  Undefined = 0,  ///< gives no shot
  Spherical = 1,  ///< radial projection onto the unit disc
  Normal = 2,     ///< square projection onto the square from -1 to 1
};

}  // namespace Lumivane::Base
