#include "pictures/MapPlane.h"

#include <algorithm>
#include <cmath>

namespace Lumivane::Pictures {

using Kernel::Vec3;

namespace {
constexpr double OnBorder = 1e-12;  // what rounding leaves of a direction at a right angle
}  // namespace

std::unique_ptr<MapPlane> MapPlane::make(const Visibility::VisibleMap& map,
                                         const Kernel::Projection& rule, double tolerance) {
  switch (rule.shape) {
    case Kernel::PlaneShape::Disc:
      return makeDiscPlane(map, rule, tolerance);
    case Kernel::PlaneShape::Band:
      return makeBandPlane(map, rule, tolerance);
  }
  return nullptr;
}

std::vector<Vec3> eyeDirections(const Visibility::VisibleMap& map) {
  const Vec3 forward = {map.forward[0], map.forward[1], map.forward[2]};
  const Vec3 up = {map.up[0], map.up[1], map.up[2]};
  const Vec3 right = Kernel::cross(forward, up);
  std::vector<Vec3> result;
  result.reserve(map.vertices.size());
  for (const Visibility::Vector& vertex : map.vertices) {
    const Vec3 v = {vertex[0], vertex[1], vertex[2]};
    Vec3 d = {Kernel::dot(v, right), Kernel::dot(v, up), Kernel::dot(v, forward)};
    if (map.field == Visibility::Field::Hemisphere) d.z = std::max(d.z, 0.0);
    if (std::abs(d.z) < OnBorder) d.z = 0.0;
    result.push_back(d);
  }
  return result;
}

}  // namespace Lumivane::Pictures
