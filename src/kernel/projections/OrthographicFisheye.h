#pragma once

#include "kernel/Projection.h"
#include "kernel/SphereContour.h"

namespace Lumivane::Kernel {

/// The orthographic fisheye (Nusselt's projection): a direction at the angle t from forward lies
/// sin t from the centre. Areas are view factors, after W. Nusselt, Graphische Bestimmung des
/// Winkelverhaeltnisses bei der Waermestrahlung (1928).
namespace OrthographicFisheyeMap {

inline std::optional<Vec3> direction(Vec2 p) {
  if (!(p.x * p.x + p.y * p.y <= 1.0)) return {};
  return directionOfDisc(p);
}

inline Vec2 halfSize(bool) { return {1.0, 1.0}; }

/// Infinite on the rim, where the hemisphere stands upright on the plane.
inline double areaElement(Vec2 p) { return 1.0 / heightOnHemisphere(p); }

}  // namespace OrthographicFisheyeMap

inline constexpr Projection OrthographicFisheye = {"fisheye",
                                                   PlaneShape::Disc,
                                                   discOfDirection,
                                                   OrthographicFisheyeMap::direction,
                                                   OrthographicFisheyeMap::halfSize,
                                                   OrthographicFisheyeMap::areaElement,
                                                   1.0,
                                                   PlaneGrid::Rings};

}  // namespace Lumivane::Kernel
