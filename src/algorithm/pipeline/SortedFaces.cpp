// From the numbers of a shot's faces to flat arrays of their outlines, and of the scene's polygons
// that they were made of: the sort looks at a pair of faces very often, and at a number once.

#include "algorithm/pipeline/SortedFaces.h"

#include "algorithm/pipeline/SceneAccess.h"
#include "algorithm/pipeline/SortObject.h"
#include "utils/Shapes.h"

#include <lumivane/geometry/Face2d.h>
#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Point2d.h>
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

#include <cstddef>
#include <string>
#include <unordered_map>

namespace Lumivane::Algorithm {
namespace {

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

}  // namespace

void collectFaces(Scene::Scene3D& scene, Shot::Shot2d& shot, SortShapes& shapes,
                  std::vector<ObjectData*>& objects) {
  const auto sources = objectsById(scene.getObjects());
  const Pools pools{elementsOf(shot.getRegions(), &Geometry::Regions2dInDrawingOrder::getRegions),
                    shot.getPoints(), scene.getPoints()};
  shapes.shotRegions = &pools.regions;
  shapes.reserve(pools.regions.size(), pointCountOf(pools.regions));
  ShapeCollector collector(pools, shapes);
  for (const Shot::Object2d* object : elementsOf(shot.getObjects(), &Shot::Objects2d::getObjects)) {
    if (object == nullptr) continue;
    const std::string id = object->getId();
    const auto found = sources.find(id);
    const Scene::Object* source = found == sources.end() ? nullptr : found->second;
    for (const Geometry::Face2d* face :
         elementsOf(object->getFaces(), &Geometry::Faces2d::getFaces)) {
      if (face == nullptr) continue;
      objects.push_back(nullptr);  // what can fail comes before the handing over
      objects.back() = collector.objectOf(*face, id, source);
      if (objects.back() == nullptr) objects.pop_back();
    }
  }
}

}  // namespace Lumivane::Algorithm
