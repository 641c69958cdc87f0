#pragma once

#include "kernel/Vec.h"

#include <vector>

namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::Measure {

class ContourRule;

/// Number of a region in drawing order, from 1; 0 is the open picture behind all of them.
using RegionNumber = int;

/// An edge of a region's outline in the sweep's frame, from its lower end to its upper one.
struct SweepEdge {
  Kernel::Vec2 low;
  Kernel::Vec2 high;
  double slope = 0.0;  ///< x by y
  RegionNumber region = 0;
  int winding = 0;  ///< +1 if the outline runs upward here, else -1

  double xAt(double y) const {
    if (y <= low.y) return low.x;
    if (y >= high.y) return high.x;
    return low.x + slope * (y - low.y);
  }
};

/// The edges of all regions, region by region. Level edges bound nothing from the side and are left
/// out; points that are no finite numbers as well.
/// \throws std::out_of_range for a point number that is not in the shot
std::vector<SweepEdge> sweepEdges(const Shot::Shot2d& shot, const ContourRule& rule);

}  // namespace Lumivane::Measure
