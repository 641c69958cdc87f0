#pragma once

namespace Lumivane::Algorithm {

/// How points of the hemisphere before the eye are carried onto the plane.
enum class ProjectionType : int {
  Radial = 0,  ///< onto the unit disc, for a spherical camera
  Square = 1,  ///< onto the square from -1 to 1, for a normal camera
};

}  // namespace Lumivane::Algorithm
