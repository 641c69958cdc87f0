#pragma once

#include "kernel/Projection.h"
#include "kernel/SphereContour.h"

#include <cmath>

namespace Lumivane::Kernel {

/// Azimuth to the right and elevation upwards, both linear: 180 by 180 degrees for the hemisphere,
/// 360 by 180 for the sphere, cut behind the eye.
namespace EquirectangularMap {

constexpr double Quarter = Pi / 2.0;  // of a turn, radians

inline Vec2 place(Vec3 d) {
  const Vec2 angles = anglesOfDirection(d);
  return {angles.x / Quarter, angles.y / Quarter};
}

inline std::optional<Vec3> direction(Vec2 p) {
  if (!(std::abs(p.x) <= 2.0 && std::abs(p.y) <= 1.0)) return {};
  return directionOfAngles({p.x * Quarter, p.y * Quarter});
}

inline Vec2 halfSize(bool isWholeSphere) { return {isWholeSphere ? 2.0 : 1.0, 1.0}; }

inline double areaElement(Vec2 p) { return Quarter * Quarter * std::cos(p.y * Quarter); }

}  // namespace EquirectangularMap

inline constexpr Projection Equirectangular = {"equirectangular",
                                               PlaneShape::Band,
                                               EquirectangularMap::place,
                                               EquirectangularMap::direction,
                                               EquirectangularMap::halfSize,
                                               EquirectangularMap::areaElement,
                                               2.0,
                                               PlaneGrid::Lines};

}  // namespace Lumivane::Kernel
