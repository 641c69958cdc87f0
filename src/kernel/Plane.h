#pragma once

#include "kernel/Vec.h"

#include <cstddef>

/// Planes: the normals of polygons, and a line's meeting point with a plane.
namespace Lumivane::Kernel {

/// The unit normal of a polygon with the first corner p0, p1, p2; further points do not count.
/// `zeroLength` if the three lie on a line.
inline Normalised polygonNormal(Vec3 p0, Vec3 p1, Vec3 p2) {
  return normalise(cross(p1 - p0, p2 - p1));
}

/// The opposite direction: the same corner walked backwards.
inline Normalised polygonNormalReversed(Vec3 p0, Vec3 p1, Vec3 p2) {
  return normalise(cross(p1 - p2, p0 - p1));
}

/// The same for points in a row, `count` of them; fewer than 3 have the zero vector for a normal,
/// and then no message is due.
inline Normalised polygonNormal(const Vec3* points, std::size_t count) {
  return count < 3 ? Normalised{} : polygonNormal(points[0], points[1], points[2]);
}

inline Normalised polygonNormalReversed(const Vec3* points, std::size_t count) {
  return count < 3 ? Normalised{} : polygonNormalReversed(points[0], points[1], points[2]);
}

/// Where a line meets a plane. A line parallel to the plane is not detected: its result holds
/// infinities or not-a-number values.
inline Vec3 intersectLineAndPlane(Vec3 normal, Vec3 planePoint, Vec3 linePoint,
                                  Vec3 lineDirection) {
  const double numerator = (planePoint.y - linePoint.y) * normal.y +
                           (planePoint.x - linePoint.x) * normal.x +
                           (planePoint.z - linePoint.z) * normal.z;
  const double denominator =
      lineDirection.y * normal.y + lineDirection.x * normal.x + lineDirection.z * normal.z;
  const double t = numerator / denominator;
  return {t * lineDirection.x + linePoint.x, t * lineDirection.y + linePoint.y,
          t * lineDirection.z + linePoint.z};
}

}  // namespace Lumivane::Kernel
