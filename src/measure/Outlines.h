#pragma once

#include "kernel/Vec.h"

#include <algorithm>
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
    const double between = low.x + slope * (y - low.y);  // a choice of values, without a branch
    const double notBelow = y <= low.y ? low.x : between;
    return y >= high.y ? high.x : notBelow;
  }
  /// How far along the edge a height is, 0 to 1.
  double wayTo(double y) const { return std::clamp((y - low.y) / (high.y - low.y), 0.0, 1.0); }
};

/// A closed line of numbers, from 1, of points, with the region that it bounds.
struct Outline {
  RegionNumber region = 0;
  const std::vector<int>* points = nullptr;
};

/// The edges of all regions, region by region, none of them level. Edges without length are left
/// out, points that are no finite numbers as well. \throws std::out_of_range for a point number
/// that is not in the shot
std::vector<SweepEdge> sweepEdges(const Shot::Shot2d& shot, const ContourRule& rule);

/// The same of any outlines, which stand in the ascending order of their regions, and of points in
/// the sweep's frame.
std::vector<SweepEdge> sweepEdges(std::vector<Kernel::Vec2> points,
                                  const std::vector<Outline>& outlines);

}  // namespace Lumivane::Measure
