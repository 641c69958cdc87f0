#pragma once

#include "kernel/Planar.h"
#include "kernel/RayTree.h"
#include "kernel/Vec.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

/// Where rays meet polygons, and the boxes by which those that a ray may meet are found.
namespace Lumivane::Check {

using Kernel::Vec2;
using Kernel::Vec3;

/// The place where a ray meets a polygon's plane, as it is computed, is off the plane by some 10
/// roundings (1e-16) of the distance to it and of the coordinates, however flat the ray: what
/// rounding does to the distance along the ray moves the place within the plane. An outline that
/// holds the place, seen along an axis, is at most five times as far as the scene reaches. Boxes
/// are taken wider by far more, this share of reach and coordinates.
inline constexpr double Margin = 1e-12;

/// Corners as they lie in the arrays of a scene.
class Outline {
 public:
  Outline(const std::array<double, 3>* thePoints, const int* first, std::size_t count)
      : points(thePoints), corners(first), size(count) {}

  std::size_t count() const { return size; }
  Vec3 operator[](std::size_t i) const {
    const std::array<double, 3>& point = points[corners[i]];
    return {point[0], point[1], point[2]};
  }

 private:
  const std::array<double, 3>* points;
  const int* corners;
  std::size_t size;
};

struct Polygon {
  Outline corners;
  Vec3 normal;  ///< points to the side from which the corners run counterclockwise: its back
  Vec3 mean;
};

/// Newell's normal, and the middle of the corners.
inline Polygon polygonOf(const Outline& corners) {
  Polygon polygon{corners, {}, {}};
  const double share = 1.0 / static_cast<double>(corners.count());
  // About the first corner, so that coordinates far from the origin lose nothing.
  const Vec3 origin = corners[0];
  polygon.normal =
      Kernel::twiceAreaVector(corners.count(), origin, [&](std::size_t i) { return corners[i]; });
  for (std::size_t i = 0; i < corners.count(); ++i)
    polygon.mean = polygon.mean + share * (corners[i] - origin);
  polygon.mean = polygon.mean + origin;
  return polygon;
}

/// A vector without one of its coordinates.
inline Vec2 without(Vec3 v, int leftOut) {
  return {leftOut == 0 ? v.y : v.x, leftOut == 2 ? v.y : v.z};
}

inline int longestAxis(Vec3 v) {
  const double x = std::abs(v.x);
  const double y = std::abs(v.y);
  const double z = std::abs(v.z);
  if (x >= y && x >= z) return 0;
  return y >= z ? 1 : 2;
}

inline double longest(Vec3 v) { return std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)}); }

/// Seen along the axis that is left out.
inline bool contains(const Polygon& polygon, Vec3 point, int leftOut) {
  return Kernel::isInOutline(polygon.corners.count(), without(point, leftOut),
                             [&](std::size_t i) { return without(polygon.corners[i], leftOut); });
}

/// How far along a ray a polygon is met; infinity if it is not.
inline double distanceTo(const Polygon& polygon, Vec3 from, Vec3 direction) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double slope = Kernel::dot(polygon.normal, direction);
  if (slope == 0.0) return infinity;
  const double distance = Kernel::dot(polygon.normal, polygon.mean - from) / slope;
  if (!(distance > 0.0)) return infinity;
  const Vec3 at = from + distance * direction;
  return contains(polygon, at, longestAxis(polygon.normal)) ? distance : infinity;
}

inline bool mayBeAbove(const Outline& corners, Vec3 point) {
  bool isHigher = false;
  bool isLeft = false;
  bool isRight = false;
  bool isInFront = false;
  bool isBehind = false;
  for (std::size_t i = 0; i < corners.count(); ++i) {
    const Vec3 at = corners[i];
    isHigher |= at.z > point.z;
    isLeft |= at.x <= point.x;
    isRight |= at.x >= point.x;
    isInFront |= at.y <= point.y;
    isBehind |= at.y >= point.y;
  }
  return isHigher && isLeft && isRight && isInFront && isBehind;
}

inline Kernel::SpaceBox boxOf(const Outline& corners) {
  Kernel::SpaceBox box;
  for (std::size_t i = 0; i < corners.count(); ++i) take(box, corners[i]);
  return box;
}

/// False of what is not a number.
inline bool isBelow(Vec3 v, double limit) {
  return std::abs(v.x) < limit && std::abs(v.y) < limit && std::abs(v.z) < limit;
}

/// Whether a polygon can be found by its box: not where numbers are beyond those of the tree, or
/// where products of them would be beyond those of doubles.
inline bool isOrdinary(const Polygon& polygon) {
  for (std::size_t i = 0; i < polygon.corners.count(); ++i)
    if (!isBelow(polygon.corners[i], 1e30)) return false;
  return isBelow(polygon.normal, 1e61) && !isBelow(polygon.normal, 1e-60);
}

/// Around the corners, and around the plane as far as it lies over them.
inline Kernel::SpaceBox boxWithPlane(const Polygon& polygon) {
  Kernel::SpaceBox box = boxOf(polygon.corners);
  const Vec3 low = box.low - polygon.mean;
  const Vec3 high = box.high - polygon.mean;
  const Vec3 reach = {std::max(-low.x, high.x), std::max(-low.y, high.y), std::max(-low.z, high.z)};
  const Vec3 n = {std::abs(polygon.normal.x), std::abs(polygon.normal.y),
                  std::abs(polygon.normal.z)};
  Vec3 off;
  switch (longestAxis(n)) {
    case 0:
      off.x = (n.y * reach.y + n.z * reach.z) / n.x;
      break;
    case 1:
      off.y = (n.x * reach.x + n.z * reach.z) / n.y;
      break;
    default:
      off.z = (n.x * reach.x + n.y * reach.y) / n.z;
  }
  take(box, polygon.mean - off);
  take(box, polygon.mean + off);
  return box;
}

}  // namespace Lumivane::Check
