// The frame of the depth sort: what is ordered, and the order of the steps. The chapters:
// DepthSortClassify.cpp decides one cell for every pair of objects, with the tests of
// DepthSortRelations.cpp; DepthSortOrder.cpp makes one order of the cells and rewrites the shot.
//
// The shot is only read until the order is known, so an exception leaves it as it was.

#include "algorithm/ClassificationMatrix.h"
#include "algorithm/SceneAccess.h"
#include "algorithm/SortObjects.h"
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

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

namespace Lumivane::Algorithm {
namespace {

using Points = ProjectedPolygonData::Points;

// The coordinates of points by number.
template <class PointList>
std::unique_ptr<Points> pointsByNumber(const std::vector<int>* numbers, PointList* points) {
  auto result = std::make_unique<Points>();
  result->reserve(numbersOf(numbers).size());
  for (const int number : numbersOf(numbers))
    result->push_back(elementOfNumber(points, &PointList::getPoint, number).toVector());
  return result;
}

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

// The lists of one face while they grow.
struct FaceLists {
  OwnedRegions regions{new ObjectData::Regions()};
  OwnedSources sources{new ObjectData::SourcePolygons()};
  OwnedPolygons polygons{new ObjectData::ProjectedPolygons()};
};

// Where the numbers of faces and regions lead to.
struct Pools {
  const std::vector<Geometry::Region2d*>& regions;
  Geometry::Points2d* planePoints;
  Geometry::Points3d* scenePoints;
};

const Geometry::Region2d& addCopy(FaceLists& lists, const Geometry::Region2d& region) {
  lists.regions->push_back(nullptr);
  lists.regions->back() = new Geometry::Region2d(region);
  return *lists.regions->back();
}

void addPolygon(FaceLists& lists, std::unique_ptr<Points> points) {
  lists.polygons->push_back(new ProjectedPolygonData());
  lists.polygons->back()->setPoints(points.release());
}

// One piece of a face. A region without points stays in the list of regions all the same, which
// then is longer than the two lists of polygons.
void addPiece(FaceLists& lists, int regionNumber, const Pools& pools, const Scene::Object* object) {
  const auto position = static_cast<std::size_t>(positionOfNumber(regionNumber));
  if (position >= pools.regions.size()) Utils::throwInvalidSubscript();
  const Geometry::Region2d& region = addCopy(lists, existing(pools.regions[position]));

  std::unique_ptr<Points> points = pointsByNumber(region.getPoints(), pools.planePoints);
  if (points->empty()) return;
  addPolygon(lists, std::move(points));

  const Geometry::Region& source = elementOfNumber(
      existing(object).getRegions(), &Geometry::Regions::getRegion, region.getSourceRegionNumber());
  const std::unique_ptr<Points> corners = pointsByNumber(source.getPoints(), pools.scenePoints);
  if (!corners->empty()) lists.sources->push_back(std::move(*corners));
}

// The object of a face, which takes the lists over; null if the face has no polygon.
std::unique_ptr<ObjectData> objectOf(const Geometry::Face2d& face, const Pools& pools,
                                     const Shot::Object2d& shotObject,
                                     const Scene::Object* sceneObject) {
  FaceLists lists;
  for (const int number : numbersOf(face.getRegions())) addPiece(lists, number, pools, sceneObject);
  if (lists.polygons->empty()) return nullptr;

  auto object = std::make_unique<ObjectData>();
  object->setSourceObject(shotObject.getId());
  object->setProjectedPolygons(lists.polygons.release());  // computes the bounds as well
  object->setSourcePolygons(lists.sources.release());
  object->setSourceRegions(lists.regions.release());
  return object;
}

// The first object of each id.
std::unordered_map<std::string, const Scene::Object*> objectsById(Scene::Objects* objects) {
  std::unordered_map<std::string, const Scene::Object*> result;
  for (const Scene::Object* object : elementsOf(objects, &Scene::Objects::getObjects))
    if (object != nullptr) result.emplace(object->getId(), object);
  return result;
}

}  // namespace

void releaseSortObject(ObjectData* object) {
  const OwnedRegions regions(object->getSourceRegions());
  const OwnedPolygons polygons(object->getProjectedPolygons());
  const OwnedSources sources(object->getSourcePolygons());
  delete object->getProjectedBounds();
  delete object;
}

DepthSortAlgorithmExecutor::DepthSortAlgorithmExecutor()
    : classificationMatrix(new ClassificationMatrix()) {}

DepthSortAlgorithmExecutor::~DepthSortAlgorithmExecutor() {
  const Utils::StageScope stage(Utils::Stage::Order);
  releaseObjectDataList();
  delete classificationMatrix;
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
  releaseObjectDataList();
  objectDataList = new std::vector<ObjectData*>();

  const auto sources = objectsById(scene->getObjects());
  const Pools pools{elementsOf(shot->getRegions(), &Geometry::Regions2dInDrawingOrder::getRegions),
                    shot->getPoints(), scene->getPoints()};
  for (const Shot::Object2d* object :
       elementsOf(shot->getObjects(), &Shot::Objects2d::getObjects)) {
    if (object == nullptr) continue;
    const auto source = sources.find(object->getId());
    for (const Geometry::Face2d* face :
         elementsOf(object->getFaces(), &Geometry::Faces2d::getFaces)) {
      if (face == nullptr) continue;
      std::unique_ptr<ObjectData> data =
          objectOf(*face, pools, *object, source == sources.end() ? nullptr : source->second);
      if (data == nullptr) continue;
      objectDataList->push_back(nullptr);  // the step that can fail comes before the handing over
      objectDataList->back() = data.release();
    }
  }
  classificationMatrix->addRows(objectDataList->size());
}

void DepthSortAlgorithmExecutor::classifyObjects() {
  if (scene != nullptr && shot != nullptr) classifyObjectsByBoundingBoxes();
}

// Nobody outside can hold a pointer to what the list refers to, except to the regions that became
// the shot's; those have left their lists by then.
void DepthSortAlgorithmExecutor::releaseObjectDataList() {
  if (objectDataList == nullptr) return;
  for (ObjectData* object : *objectDataList) releaseSortObject(object);
  delete objectDataList;
  objectDataList = nullptr;
}

}  // namespace Lumivane::Algorithm
