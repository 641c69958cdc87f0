#pragma once

#include "kernel/Vec.h"

#include <cmath>

namespace Lumivane::Kernel {

/// Whether two points agree on each axis to less than a tolerance. (1) A difference of exactly the
/// tolerance is none of less. (2) Swapping the points keeps the result. (3) NaN agrees with
/// nothing.
inline bool samePoint(Vec2 a, Vec2 b, double tolerance) {
  return tolerance > std::abs(a.x - b.x) && tolerance > std::abs(a.y - b.y);
}

/// The same in space.
inline bool samePoint(Vec3 a, Vec3 b, double tolerance) {
  return tolerance > std::abs(a.x - b.x) && tolerance > std::abs(a.y - b.y) &&
         tolerance > std::abs(a.z - b.z);
}

}  // namespace Lumivane::Kernel
