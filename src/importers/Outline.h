#pragma once

#include "kernel/Vec.h"

#include <vector>

namespace Lumivane::Importers {

using Loop = std::vector<int>;

/// Half the area vector of an outline (Newell's method): its direction is the normal to the side
/// from which the outline runs counter-clockwise, its length the area.
Kernel::Vec3 areaVector(const Loop& loop, const std::vector<Kernel::Vec3>& vertices);

/// The plane of a polygon: the normal of its outline through the middle of its corners.
struct OutlinePlane {
  Kernel::Vec3 normal;  ///< length 1; zero if the outline has no area
  Kernel::Vec3 origin;
  double area = 0.0;

  double distance(Kernel::Vec3 point) const { return Kernel::dot(point - origin, normal); }
};
OutlinePlane planeOf(const Loop& loop, const std::vector<Kernel::Vec3>& vertices);

/// How far the corner farthest off the plane lies from it.
double greatestDistance(const OutlinePlane& plane, const Loop& loop,
                        const std::vector<Kernel::Vec3>& vertices);

/// Whether the outline crosses or touches itself: then it cannot be one polygon of a scene.
bool visitsAVertexTwice(const Loop& loop);

/// The distance of the corner farthest from the first one.
double extentOf(const Loop& loop, const std::vector<Kernel::Vec3>& vertices);

/// Whether no corner turns the other way. An outline that winds round several times passes.
bool isConvex(const OutlinePlane& plane, const Loop& loop,
              const std::vector<Kernel::Vec3>& vertices);

}  // namespace Lumivane::Importers
