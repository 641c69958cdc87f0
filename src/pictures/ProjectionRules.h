#pragma once

#include "kernel/Vec.h"

#include <lumivane/pictures/MapPicture.h>
#include <lumivane/visibility/LookOptions.h>

#include <optional>
#include <vector>

namespace Lumivane::Pictures {

/// What bounds the picture of all directions, and so how cells are cut that reach over it.
enum class PlaneShape {
  Disc,  ///< a disc around forward, which holds the hemisphere in front
  Band   ///< a rectangle: x is linear in the azimuth, the upper and lower sides are the poles
};

/// All that is known of a projection: another one is another row of the table.
///
/// Directions have the axes of the eye: x to the right, y upwards, z forward. They need not be unit
/// vectors. In a band a quarter of a turn is 1.
struct ProjectionRule {
  MapProjection projection;
  const char* name;  ///< on the command line
  PlaneShape shape;
  Kernel::Vec2 (*place)(Kernel::Vec3 direction);
  std::optional<Kernel::Vec3> (*direction)(Kernel::Vec2 place);  ///< a unit vector; the inverse
  Kernel::Vec2 (*halfSize)(Visibility::Field field);             ///< of the box around the border
};

const std::vector<ProjectionRule>& projectionRules();
const ProjectionRule& ruleOf(MapProjection projection);

}  // namespace Lumivane::Pictures
