#pragma once

// The border between the public bounds and the kernels' boxes.

#include "kernel/Bounds.h"
#include "utils/Shapes.h"

#include <lumivane/algorithm/Bounds2D.h>

#include <vector>

namespace Lumivane::Algorithm {

inline Kernel::Box toBox(const Bounds2D& bounds) {
  return {bounds.getXMin(), bounds.getXMax(), bounds.getYMin(), bounds.getYMax()};
}

inline Bounds2D toBounds(const Kernel::Box& box) {
  return {box.xMin, box.xMax, box.yMin, box.yMax};
}

/// The bounds of points.
///
/// \throws std::out_of_range "invalid vector subscript" if a point has fewer than 2 coordinates
inline Bounds2D boundsOf(const std::vector<std::vector<double>>& points) {
  Kernel::Box box;
  for (const std::vector<double>& point : points) Kernel::take(box, Utils::toVec2(point));
  return toBounds(box);
}

}  // namespace Lumivane::Algorithm
