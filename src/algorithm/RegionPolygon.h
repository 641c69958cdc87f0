#pragma once

#include "kernel/Vec.h"

#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>

#include <vector>

namespace Lumivane::Algorithm {

/// Reads the polygon of a region into `polygon`, which is emptied first; after a message, it stays
/// empty for a region of fewer than 3 points.
///
/// \throws std::out_of_range for a point number that is not in `points`
void readRegionPolygon(Geometry::Region* region, Geometry::Points3d* points,
                       std::vector<Kernel::Vec3>& polygon);

}  // namespace Lumivane::Algorithm
