#pragma once

#include "kernel/Vec.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

/// The plane of a whole outline, which need not be quite flat nor simple.
namespace Lumivane::Kernel {

struct OutlinePlane {
  /// Unit vector to the side from which the corners run counter-clockwise; zero if there is none.
  Vec3 normal;
  Vec3 mean;          ///< the mean of the corners
  double size = 0.0;  ///< the greatest extent of the corners' box along an axis

  bool exists() const { return normal != Vec3{}; }
};

/// The mean of some points, \pre at least one, summed up from the first so that it does not lose
/// digits far from the origin.
inline Vec3 meanOf(const Vec3* points, std::size_t count) {
  Vec3 sum;
  for (std::size_t i = 1; i < count; ++i) sum = sum + (points[i] - points[0]);
  const double n = static_cast<double>(count);
  return points[0] + Vec3{sum.x / n, sum.y / n, sum.z / n};
}

/// The greatest extent of the box of some points, \pre at least one, along an axis.
inline double greatestExtent(const Vec3* points, std::size_t count) {
  Vec3 low = points[0];
  Vec3 high = points[0];
  for (std::size_t i = 0; i < count; ++i) {
    const Vec3 p = points[i];
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
  return std::max({high.x - low.x, high.y - low.y, high.z - low.z});
}

/// Newell's normal through the mean of the corners (I. Sutherland, R. Sproull, R. Schumacker, A
/// Characterization of Ten Hidden-Surface Algorithms, 1974). Corners count from their mean, and
/// lengths in powers of two of the size, so that neither place nor unit matters.
///
/// There is no normal where each component of the vector area is no more than what rounding may
/// leave of nothing: outlines without area and symmetric bow-ties.
inline OutlinePlane outlinePlane(const Vec3* points, std::size_t count) {
  OutlinePlane plane;
  if (count == 0) return plane;
  plane.mean = meanOf(points, count);
  plane.size = greatestExtent(points, count);
  if (count < 3 || plane.size == 0.0) return plane;

  const double scale = std::exp2(-std::ilogb(plane.size));
  Vec3 area;
  Vec3 terms;  // of the products' absolute values
  Vec3 p = scale * (points[count - 1] - plane.mean);
  for (std::size_t i = 0; i < count; ++i) {
    const Vec3 q = scale * (points[i] - plane.mean);
    area = area + cross(p, q);
    terms = terms + Vec3{std::abs(p.y * q.z) + std::abs(p.z * q.y),
                         std::abs(p.z * q.x) + std::abs(p.x * q.z),
                         std::abs(p.x * q.y) + std::abs(p.y * q.x)};
    p = q;
  }
  constexpr double Unit = 1.1102230246251565e-16;  // half a last digit
  const double noise = (static_cast<double>(count) + 8.0) * Unit;
  const bool isArea = std::abs(area.x) > noise * terms.x || std::abs(area.y) > noise * terms.y ||
                      std::abs(area.z) > noise * terms.z;
  if (isArea) plane.normal = normalise(area).direction;
  return plane;
}

}  // namespace Lumivane::Kernel
