#pragma once

// The border between the public bounds and the kernels' boxes.

#include "kernel/Bounds.h"

#include <lumivane/algorithm/Bounds2D.h>

namespace Lumivane::Algorithm {

inline Kernel::Box toBox(const Bounds2D& bounds) {
  return {bounds.getXMin(), bounds.getXMax(), bounds.getYMin(), bounds.getYMax()};
}

inline Bounds2D toBounds(const Kernel::Box& box) {
  return {box.xMin, box.xMax, box.yMin, box.yMax};
}

}  // namespace Lumivane::Algorithm
