#pragma once

#include "kernel/Projection.h"
#include "kernel/SphereContour.h"

#include <cmath>

namespace Lumivane::Kernel {

/// The equidistant fisheye: a direction at the angle t from forward lies t from the centre, a right
/// angle at 1. Many lenses of all-sky cameras are near it.
namespace EquidistantFisheyeMap {

constexpr double RightAngle = Pi / 2.0;  // radians

inline Vec2 place(Vec3 d) {
  const double across = std::hypot(d.x, d.y);
  if (across == 0.0) return {};
  const double radius = std::atan2(across, d.z) / RightAngle;
  return {radius * d.x / across, radius * d.y / across};
}

inline std::optional<Vec3> direction(Vec2 p) {
  const double radius = std::hypot(p.x, p.y);
  if (!(radius <= 1.0)) return {};
  const double angle = radius * RightAngle;
  const double across = RightAngle * cardinalSine(angle);
  return Vec3{across * p.x, across * p.y, std::cos(angle)};
}

inline Vec2 halfSize(bool) { return {1.0, 1.0}; }

inline double areaElement(Vec2 p) {
  return RightAngle * RightAngle * cardinalSine(std::hypot(p.x, p.y) * RightAngle);
}

}  // namespace EquidistantFisheyeMap

inline constexpr Projection EquidistantFisheye = {"equidistant",
                                                  PlaneShape::Disc,
                                                  EquidistantFisheyeMap::place,
                                                  EquidistantFisheyeMap::direction,
                                                  EquidistantFisheyeMap::halfSize,
                                                  EquidistantFisheyeMap::areaElement,
                                                  1.0,
                                                  PlaneGrid::Rings};

}  // namespace Lumivane::Kernel
