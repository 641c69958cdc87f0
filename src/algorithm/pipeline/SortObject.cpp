#include "algorithm/pipeline/SortObject.h"

#include <lumivane/algorithm/Bounds2D.h>
#include <lumivane/algorithm/ProjectedPolygonData.h>
#include <lumivane/geometry/Region2d.h>

#include <memory>

namespace Lumivane::Algorithm {
namespace {

struct ReleaseRegions {
  void operator()(ObjectData::Regions* regions) const {
    for (const Geometry::Region2d* region : *regions) delete region;
    delete regions;
  }
};

struct ReleasePolygons {
  void operator()(ObjectData::ProjectedPolygons* polygons) const {
    for (const ProjectedPolygonData* polygon : *polygons) {
      delete polygon->getPoints();
      delete polygon->getBounds();
      delete polygon;
    }
    delete polygons;
  }
};

using OwnedRegions = std::unique_ptr<ObjectData::Regions, ReleaseRegions>;
using OwnedPolygons = std::unique_ptr<ObjectData::ProjectedPolygons, ReleasePolygons>;
using OwnedSources = std::unique_ptr<ObjectData::SourcePolygons>;

}  // namespace

ObjectData* SortObject::make(const std::string& sourceObject, const SortShapes& shapes,
                             std::size_t face) {
  auto object = std::make_unique<ObjectData>();
  object->sourceObject = sourceObject;
  object->shapes = &shapes;
  object->face = face;
  return object.release();
}

void SortObject::release(ObjectData* object) {
  if (object == nullptr) return;
  const OwnedRegions regions(object->lists.sourceRegions);
  const OwnedPolygons polygons(object->lists.projectedPolygons);
  const OwnedSources sources(object->lists.sourcePolygons);
  delete object->lists.projectedBounds;
  delete object;
}

}  // namespace Lumivane::Algorithm
