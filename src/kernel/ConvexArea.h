#pragma once

#include "kernel/Angle.h"
#include "kernel/Vec.h"

#include <cmath>
#include <cstddef>
#include <vector>

namespace Lumivane::Kernel {

/// Whether a point of a convex polygon's plane lies in the polygon: the angles under which it sees
/// the sides, each rounded to 4 decimals, add up to 360 degrees, to within 0.1. On a corner, where
/// two angles have no side, the answer is no; so it is above the plane by more than a little.
///
/// \param toCorner  gives the vector from the point to the corner at a position; it is asked for
/// the
///                  two ends of each side in turn
template <class ToCorner>
bool isInConvexArea(std::size_t corners, ToCorner toCorner) {
  double sum = 0.0;
  for (std::size_t i = 0; i < corners; ++i) {
    const Vec3 a = toCorner(i);
    const Vec3 b = toCorner((i + 1) % corners);
    sum += roundD(angleDegrees(a, b), 4);
  }
  return 0.1 > std::abs(sum - 360.0);
}

inline bool isInConvexArea(Vec3 point, const std::vector<Vec3>& polygon) {
  return isInConvexArea(polygon.size(), [&](std::size_t i) { return polygon[i] - point; });
}

}  // namespace Lumivane::Kernel
