#pragma once

#include "kernel/Vec.h"

#include <optional>

namespace Lumivane::Kernel {

/// What bounds the picture of all directions, and so how outlines are cut that reach over it.
enum class PlaneShape {
  Disc,  ///< a disc around forward, which holds the hemisphere in front
  Band   ///< a rectangle: x is linear in the azimuth, the upper and lower sides are the poles
};

/// What is drawn over a picture to read directions off.
enum class PlaneGrid {
  Rings,  ///< circles around forward
  Lines   ///< upright and level lines
};

/// All that is known of a projection. One is a constant of this type in a file of
/// kernel/projections/, and nothing else in the code asks which one it is: what differs between
/// projections is a field here.
///
/// Directions have the axes of the eye: x to the right, y upwards, z forward. They need not be unit
/// vectors. In a band a quarter of a turn is 1.
///
/// The plane points of a shot are made by the formulas of Hemisphere.h, whose bits are promised;
/// those here are the same projections with smaller rounding errors.
struct Projection {
  const char* name;  ///< on the command line
  PlaneShape shape;
  Vec2 (*place)(Vec3 direction);                 ///< the forward map
  std::optional<Vec3> (*direction)(Vec2 place);  ///< its inverse, a unit vector; none outside
  Vec2 (*halfSize)(bool isWholeSphere);          ///< of the box around the border
  double (*areaElement)(Vec2 place);             ///< solid angle for an area of the plane there
  double lengthUnit;                             ///< how long a shot's length limit of 1 is
  PlaneGrid grid;
};

}  // namespace Lumivane::Kernel
