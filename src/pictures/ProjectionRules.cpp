#include "pictures/ProjectionRules.h"

#include "kernel/SphereContour.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace Lumivane::Pictures {
namespace {

using Kernel::Vec2;
using Kernel::Vec3;

constexpr double Quarter = Kernel::Pi / 2.0;  // of a turn, radians

std::optional<Vec3> fisheyeDirection(Vec2 p) {
  if (!(p.x * p.x + p.y * p.y <= 1.0)) return {};
  return Kernel::directionOfDisc(p);
}

Vec2 unitDisc(Visibility::Field) { return {1.0, 1.0}; }

Vec2 equirectangularPlace(Vec3 d) {
  const Vec2 angles = Kernel::anglesOfDirection(d);
  return {angles.x / Quarter, angles.y / Quarter};
}

std::optional<Vec3> equirectangularDirection(Vec2 p) {
  if (!(std::abs(p.x) <= 2.0 && std::abs(p.y) <= 1.0)) return {};
  return Kernel::directionOfAngles({p.x * Quarter, p.y * Quarter});
}

Vec2 anglesOf(Visibility::Field field) {
  return {field == Visibility::Field::Hemisphere ? 1.0 : 2.0, 1.0};
}

}  // namespace

const std::vector<ProjectionRule>& projectionRules() {
  static const std::vector<ProjectionRule> rules = {
      {MapProjection::Fisheye, "fisheye", PlaneShape::Disc, Kernel::discOfDirection,
       fisheyeDirection, unitDisc},
      {MapProjection::Equirectangular, "equirectangular", PlaneShape::Band, equirectangularPlace,
       equirectangularDirection, anglesOf},
  };
  return rules;
}

const ProjectionRule& ruleOf(MapProjection projection) {
  const std::vector<ProjectionRule>& rules = projectionRules();
  const auto found = std::find_if(rules.begin(), rules.end(), [projection](const auto& rule) {
    return rule.projection == projection;
  });
  if (found == rules.end()) throw std::invalid_argument("there is no such projection of a map");
  return *found;
}

const std::vector<MapProjectionName>& mapProjections() {
  static const std::vector<MapProjectionName> names = [] {
    std::vector<MapProjectionName> result;
    for (const ProjectionRule& rule : projectionRules())
      result.push_back({rule.projection, rule.name});
    return result;
  }();
  return names;
}

}  // namespace Lumivane::Pictures
