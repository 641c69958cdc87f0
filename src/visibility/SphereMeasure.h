#pragma once

#include "kernel/Planar.h"
#include "kernel/Trigonometry.h"
#include "kernel/Vec.h"
#include "visibility/EyePlane.h"
#include "visibility/WideEdge.h"

#include <algorithm>
#include <cmath>

/// Solid angles, view factors and distances of what arcs of great circles bound. Directions are
/// unit vectors; a ring runs around its inside counterclockwise as the eye sees it from within the
/// sphere.
namespace Lumivane::Visibility {

/// Solid angle of the triangle of three directions, signed: positive if they run counterclockwise
/// as the eye sees them (A. van Oosterom and J. Strackee, The Solid Angle of a Plane Triangle,
/// 1983).
inline double triangleSolidAngle(Kernel::Vec3 a, Kernel::Vec3 b, Kernel::Vec3 c) {
  // With differences small triangles keep all their digits.
  const double volume = -Kernel::dot(a, Kernel::cross(b - a, c - a));
  const double denominator = 1.0 + Kernel::dot(a, b) + Kernel::dot(b, c) + Kernel::dot(c, a);
  return 2.0 * Kernel::arcTangent(volume, denominator);
}

/// What an arc adds to the view factor about `forward` of the inside of its ring (J. H. Lambert,
/// Photometria, 1760).
inline double arcViewFactor(Kernel::Vec3 a, Kernel::Vec3 b, Kernel::Vec3 forward) {
  const Kernel::Vec3 normal = Kernel::cross(b, a);
  const double sine = Kernel::length3(normal);
  if (sine == 0.0) return 0.0;
  const double angle = Kernel::arcTangent(sine, Kernel::dot(a, b));
  return angle / sine * Kernel::dot(normal, forward) / (2.0 * Kernel::Pi);
}

/// The point of the straight line between two points that is nearest to the origin.
inline Kernel::Vec3 nearestOfSegment(Kernel::Vec3 a, Kernel::Vec3 b) {
  const Kernel::Vec3 along = b - a;
  double square = Kernel::dot(along, along);
  double inner = Kernel::dot(a, along);
  if (!(square > 0x1p-900 && square < 0x1p900)) {
    const Kernel::Vec3 scaled = inRange(along);
    square = Kernel::dot(scaled, along);
    inner = Kernel::dot(a, scaled);
  }
  const double t = square > 0.0 ? std::clamp(-inner / square, 0.0, 1.0) : 0.0;
  return a + t * along;
}

/// Least distance from the origin of the straight line between two points.
inline double distanceToSegment(Kernel::Vec3 a, Kernel::Vec3 b) {
  return lengthInRange(nearestOfSegment(a, b));
}

}  // namespace Lumivane::Visibility
