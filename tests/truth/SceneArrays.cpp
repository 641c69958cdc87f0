#include "truth/SceneArrays.h"

#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>

#include <algorithm>

namespace Lumivane::Truth {
namespace {

using Visibility::PolygonScene;

void addRegion(const Geometry::Region& region, const Visibility::Label& label,
               PolygonScene& result) {
  const std::size_t first = result.corners.size();
  for (const int point : *region.getPoints()) result.corners.push_back(point - 1);
  result.docking.resize(result.corners.size());
  for (const int edge : *region.getDockingEdges())
    if (edge >= 1 && first + static_cast<std::size_t>(edge) <= result.corners.size())
      result.docking[first + static_cast<std::size_t>(edge) - 1] = 1;
  result.offsets.push_back(result.corners.size());
  result.labels.push_back(label);
}

}  // namespace

PolygonScene arraysOf(const Scene::Scene3D& scene) {
  PolygonScene result;
  result.offsets = {0};
  if (scene.getPoints() != nullptr)
    for (const Geometry::Point3d* point : *scene.getPoints()->getPoints())
      result.points.push_back({point->getX(), point->getY(), point->getZ()});
  if (scene.getObjects() == nullptr) return result;
  int object = 0;
  for (const Scene::Object* each : *scene.getObjects()->getObjects()) {
    ++object;
    result.objectIds.push_back(each->getId());
    if (each->getRegions() == nullptr) continue;
    int number = 0;
    for (const Geometry::Region* region : *each->getRegions()->getRegions()) {
      ++number;
      addRegion(*region, {object, region->getFaceNumber(), number}, result);
    }
  }
  return result;
}

}  // namespace Lumivane::Truth
