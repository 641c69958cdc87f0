#include "pictures/ProjectionRules.h"

#include "kernel/projections/EquidistantFisheye.h"
#include "kernel/projections/Equirectangular.h"
#include "kernel/projections/OrthographicFisheye.h"

#include <stdexcept>

namespace Lumivane::Pictures {
namespace {

struct Rule {
  MapProjection projection;
  const Kernel::Projection* rule;
};

// The list of the option: the default one first.
constexpr Rule Rules[] = {
    {MapProjection::Fisheye, &Kernel::OrthographicFisheye},
    {MapProjection::Equirectangular, &Kernel::Equirectangular},
    {MapProjection::EquidistantFisheye, &Kernel::EquidistantFisheye},
};

}  // namespace

const Kernel::Projection& ruleOf(MapProjection projection) {
  for (const Rule& entry : Rules)
    if (entry.projection == projection) return *entry.rule;
  throw std::invalid_argument("there is no such projection of a map");
}

const std::vector<MapProjectionName>& mapProjections() {
  static const std::vector<MapProjectionName> names = [] {
    std::vector<MapProjectionName> result;
    for (const Rule& entry : Rules) result.push_back({entry.projection, entry.rule->name});
    return result;
  }();
  return names;
}

double mapAspect(MapProjection projection, Visibility::Field field) {
  const Kernel::Vec2 half = ruleOf(projection).halfSize(field == Visibility::Field::Sphere);
  return half.x / half.y;
}

}  // namespace Lumivane::Pictures
