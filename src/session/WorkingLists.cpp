#include "scene/Deferred.h"

#include <lumivane/geometry/EdgeStartPoint2d.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/WorkingLists.h>

namespace Lumivane::Session {
namespace {

// Each projected point stands in one polygon of one list.
void releaseProjectedPolygons(Scene::Object& object) {
  const auto* const lists = object.getRegionsProjectedPolygons();
  if (lists == nullptr) return;
  for (const auto& polygons : *lists)
    for (const auto& polygon : polygons)
      for (const Geometry::EdgeStartPoint2d* point : polygon) delete point;
  delete lists;
  object.setRegionsProjectedPolygons(nullptr);
}

void releaseWorkingLists(Scene::Object& object) {
  Scene::DeferredAccess::dropUnmade(object);  // rather than making them to be freed
  delete object.getRegionsPolyData();
  object.setRegionsPolyData(nullptr);
  delete object.getRegionsClippedPolyData();
  object.setRegionsClippedPolyData(nullptr);
  delete object.getRegionsVisiblePolygons();
  object.setRegionsVisiblePolygons(nullptr);
  releaseProjectedPolygons(object);
  object.setCameraInRegionIndex(-1);
}

}  // namespace

void releaseWorkingLists(Scene::Scene3D& scene) {
  if (scene.getObjects() == nullptr || scene.getObjects()->getObjects() == nullptr) return;
  for (Scene::Object* const object : *scene.getObjects()->getObjects())
    if (object != nullptr) releaseWorkingLists(*object);
}

}  // namespace Lumivane::Session
