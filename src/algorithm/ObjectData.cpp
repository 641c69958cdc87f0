#include <lumivane/algorithm/Bounds2D.h>
#include <lumivane/algorithm/ObjectData.h>
#include <lumivane/algorithm/ProjectedPolygonData.h>

namespace Lumivane::Algorithm {

int ObjectData::idCounter = 1;

ObjectData::ObjectData() : id(std::to_string(idCounter++)) {}

void ObjectData::setProjectedPolygons(ProjectedPolygons* value) {
  projectedPolygons = value;
  calculateProjectedBounds2D();
}

void ObjectData::calculateProjectedBounds2D() {
  if (projectedPolygons == nullptr || projectedPolygons->empty()) return;
  std::vector<Bounds2D> all;
  all.reserve(projectedPolygons->size());
  for (const ProjectedPolygonData* polygon : *projectedPolygons) {
    const Bounds2D* bounds = polygon == nullptr ? nullptr : polygon->getBounds();
    all.push_back(bounds == nullptr ? Bounds2D() : *bounds);
  }
  // A single bound is copied as it is: a union would leave out what is not a number.
  projectedBounds = all.size() == 1 ? new Bounds2D(all.front()) : new Bounds2D(all);
}

bool ObjectData::compareByDepthIndex(const ObjectData* first, const ObjectData* second) {
  return first->depthIndex < second->depthIndex;
}

}  // namespace Lumivane::Algorithm
