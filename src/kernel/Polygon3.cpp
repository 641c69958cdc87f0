// The sides of all points of a polygon at once, a group of lanes at a time.

#include "kernel/Polygon3.h"

#include <cstdint>

namespace Lumivane::Kernel {
namespace {

Sides sidesAgainst(const Facing& facing, const Corners& points) {
  std::int64_t front = 0;
  std::int64_t behind = 0;
  for (std::size_t k = 0; k < padded(points.count); ++k) {
    const double side = sideOf(facing, {points.x[k], points.y[k], points.z[k]});
    front |= side < 0.0 ? 1 : 0;
    behind |= side > 0.0 ? 1 : 0;
  }
  return {front != 0, behind != 0};
}

}  // namespace

LUMIVANE_LANES Location locationOf(const Corners& first, const Facing& firstFacing,
                                   const Corners& second, const Facing& secondFacing) {
  Location result;
  const auto asked = [&result](const Facing& facing, const Corners& points) {
    if (facing.normal.zeroLength) result.zeroLengthAsked += points.count;
    return sidesAgainst(facing, points);
  };
  result.value = locationBy([&] { return asked(firstFacing, second); },
                            [&] { return asked(secondFacing, first); });
  return result;
}

Location locationOf(const std::vector<Vec3>& first, const std::vector<Vec3>& second) {
  FacingPolygons polygons;
  polygons.add(first);
  polygons.add(second);
  return locationOf(polygons.corners(0), polygons.facing(0), polygons.corners(1),
                    polygons.facing(1));
}

}  // namespace Lumivane::Kernel
