#pragma once

#include "kernel/Vec.h"

#include <vector>

/// View factors between flat polygons with nothing between them. All corners run counter-clockwise
/// as seen from the side that sends out or receives, to which the normal, a unit vector, points.
namespace Lumivane::Measure {

using Corners = std::vector<Kernel::Vec3>;

/// A polygon and the plane n.x = n.point.
struct FlatPolygon {
  Corners corners;
  Kernel::Vec3 normal;
  Kernel::Vec3 point;
};

/// What of an outline lies in front of a plane (I. E. Sutherland and G. W. Hodgman, 1974). Parts
/// hang together by edges in the plane, walked twice, that cancel each other in contour integrals.
Corners inFront(const Corners& corners, Kernel::Vec3 normal, Kernel::Vec3 point);

/// The vector area.
Kernel::Vec3 vectorArea(const Corners& corners);

/// From a small plane element at `from`, facing `normal`, to an outline in front of its plane (J.
/// H. Lambert, Photometria, 1760).
double pointFactor(Kernel::Vec3 from, Kernel::Vec3 normal, const Corners& receiver);

struct PairFactor {
  double exchange = 0.0;  ///< the exchange area A_i F_ij
  double error = 0.0;     ///< an estimate of its error
};

/// The exchange area of two polygons, to within about `wanted`.
PairFactor pairFactor(const FlatPolygon& from, const FlatPolygon& to, double wanted);

}  // namespace Lumivane::Measure
