// The frame of the depth sort: what is ordered, and the order of the steps. The chapters:
// DepthSortClassify.cpp decides one cell for every pair of objects, with the tests of
// DepthSortRelations.cpp; DepthSortOrder.cpp makes one order of the cells and rewrites the shot.
//
// The shot is only read until the order is known, so an exception leaves it as it was.

#include "algorithm/pipeline/ClassificationMatrix.h"
#include "algorithm/pipeline/SceneAccess.h"
#include "algorithm/pipeline/ShotBudget.h"
#include "algorithm/pipeline/SortObject.h"
#include "algorithm/pipeline/SortShapes.h"
#include "utils/Shapes.h"
#include "utils/StageScope.h"

#include <lumivane/algorithm/Bounds2D.h>
#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/ObjectData.h>
#include <lumivane/algorithm/ProjectedPolygonData.h>
#include <lumivane/cmd/Log.h>
#include <lumivane/geometry/Face2d.h>
#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

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

// Where the numbers of faces and regions lead to.
struct Pools {
  const std::vector<Geometry::Region2d*>& regions;
  Geometry::Points2d* planePoints;
  Geometry::Points3d* scenePoints;
};

Kernel::Vec2 planePoint(Geometry::Points2d* points, int number) {
  const Geometry::Point2d& point = elementOfNumber(points, &Geometry::Points2d::getPoint, number);
  return {point.getX(), point.getY()};
}

// Takes the faces of a shot into the flat lists of a sort.
class ShapeCollector {
 public:
  ShapeCollector(const Pools& poolsOfNumbers, SortShapes& target)
      : pools(poolsOfNumbers), shapes(target) {}

  // The object of a face; null if the face has no polygon.
  ObjectData* objectOf(const Geometry::Face2d& face, const std::string& id,
                       const Scene::Object* source) {
    shapes.beginFace();
    for (const int number : numbersOf(face.getRegions())) addPiece(number, source);
    if (shapes.faces.back().pieceCount != 0)
      return SortObject::make(id, shapes, shapes.faces.size() - 1);
    shapes.dropFace();
    return nullptr;
  }

 private:
  // One piece of the last face. A region without points stays in the list of regions all the same,
  // which then is longer than the two lists of polygons.
  void addPiece(int regionNumber, const Scene::Object* object) {
    const auto position = static_cast<std::size_t>(positionOfNumber(regionNumber));
    if (position >= pools.regions.size()) Utils::throwInvalidSubscript();
    const Geometry::Region2d& region = existing(pools.regions[position]);
    shapes.addRegion(position);

    const std::vector<int>& numbers = numbersOf(region.getPoints());
    if (numbers.empty()) return;
    shapes.addPiece(numbers.size(),
                    [&](std::size_t k) { return planePoint(pools.planePoints, numbers[k]); });
    addSource(elementOfNumber(existing(object).getRegions(), &Geometry::Regions::getRegion,
                              region.getSourceRegionNumber()));
  }

  void addSource(const Geometry::Region& source) {
    corners.clear();
    for (const int number : numbersOf(source.getPoints()))
      corners.push_back(scenePoint(pools.scenePoints, number));
    if (!corners.empty()) shapes.addSource(corners);
  }

  const Pools& pools;
  SortShapes& shapes;
  std::vector<Kernel::Vec3> corners;  // of one polygon after the other
};

std::size_t pointCountOf(const std::vector<Geometry::Region2d*>& regions) {
  std::size_t points = 0;
  for (const Geometry::Region2d* region : regions)
    if (region != nullptr) points += numbersOf(region->getPoints()).size();
  return points;
}

// The first object of each id.
std::unordered_map<std::string, const Scene::Object*> objectsById(Scene::Objects* objects) {
  std::unordered_map<std::string, const Scene::Object*> result;
  for (const Scene::Object* object : elementsOf(objects, &Scene::Objects::getObjects))
    if (object != nullptr) result.emplace(object->getId(), object);
  return result;
}

// Destroys a list with its objects. Nobody outside can hold a pointer to what the list refers to,
// except to the regions that became the shot's; those have left their lists by then. The objects go
// in the order of their making, as far as addresses tell it: neighbours in memory are fast to free
// one after the other.
void releaseObjects(std::vector<ObjectData*>* list) {
  std::sort(list->begin(), list->end(), std::less<>());
  std::for_each(list->begin(), list->end(), SortObject::release);
  delete list;
}

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

DepthSortAlgorithmExecutor::DepthSortAlgorithmExecutor()
    : classificationMatrix(std::make_shared<ClassificationMatrix>()),
      shapes(std::make_shared<SortShapes>()) {}

DepthSortAlgorithmExecutor::~DepthSortAlgorithmExecutor() {
  const Utils::StageScope stage(Utils::Stage::Order);
  objectDataList.reset();
  classificationMatrix.reset();
  shapes.reset();
}

void DepthSortAlgorithmExecutor::run() {
  Cmd::logMessage("Calculating objects order\n\n");
  if (scene == nullptr || shot == nullptr) return;
  const Utils::StageScope stage(Utils::Stage::Classification);
  fillObjectDataList();
  classifyObjects();
  calculateObjectsOrder();
}

void DepthSortAlgorithmExecutor::fillObjectDataList() {
  if (scene == nullptr || shot == nullptr) return;
  // All made anew, since a copy may still refer to the old ones.
  shapes = std::make_shared<SortShapes>();
  objectDataList = {new std::vector<ObjectData*>(), releaseObjects};
  classificationMatrix = std::make_shared<ClassificationMatrix>(*classificationMatrix);

  const auto sources = objectsById(scene->getObjects());
  const Pools pools{elementsOf(shot->getRegions(), &Geometry::Regions2dInDrawingOrder::getRegions),
                    shot->getPoints(), scene->getPoints()};
  shapes->shotRegions = &pools.regions;
  shapes->reserve(pools.regions.size(), pointCountOf(pools.regions));
  ShapeCollector collector(pools, *shapes);
  for (const Shot::Object2d* object :
       elementsOf(shot->getObjects(), &Shot::Objects2d::getObjects)) {
    if (object == nullptr) continue;
    const std::string id = object->getId();
    const auto found = sources.find(id);
    const Scene::Object* source = found == sources.end() ? nullptr : found->second;
    for (const Geometry::Face2d* face :
         elementsOf(object->getFaces(), &Geometry::Faces2d::getFaces)) {
      if (face == nullptr) continue;
      objectDataList->push_back(nullptr);  // what can fail comes before the handing over
      objectDataList->back() = collector.objectOf(*face, id, source);
      if (objectDataList->back() == nullptr) objectDataList->pop_back();
    }
  }
  sortedFaces() = objectDataList->size();
  classificationMatrix->addRows(objectDataList->size());
}

void DepthSortAlgorithmExecutor::classifyObjects() {
  if (scene != nullptr && shot != nullptr) classifyObjectsByBoundingBoxes();
}

}  // namespace Lumivane::Algorithm
