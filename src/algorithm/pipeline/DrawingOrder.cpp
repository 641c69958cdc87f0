// From the cells to the shot: who is hidden, who is drawn before whom, one order of all, and the
// regions and faces of the shot written anew in that order.

#include "algorithm/pipeline/DrawingOrder.h"

#include "algorithm/pipeline/CycleReport.h"
#include "algorithm/pipeline/SortFacts.h"
#include "algorithm/pipeline/SortObject.h"
#include "kernel/Cycle.h"

#include <lumivane/geometry/Face2d.h>
#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Lumivane::Algorithm {
namespace {

// The names under which a report lists the objects.
std::vector<std::string> idsOf(const std::vector<ObjectData*>& objects) {
  std::vector<std::string> ids;
  ids.reserve(objects.size());
  for (const ObjectData* object : objects) ids.push_back(object->getId());
  return ids;
}

// A region of the shot that the object has, by which its face is named; null if it has none.
const Geometry::Region2d* firstRegion(const ObjectData& object, const SortShapes& shapes) {
  if (const std::size_t* const face = SortObject::faceOf(object)) {
    const SortShapes::Positions positions = shapes.regionsOf(*face);
    return positions.first == positions.last ? nullptr : (*shapes.shotRegions)[*positions.first];
  }
  const ObjectData::Regions* const regions = object.getSourceRegions();
  return regions == nullptr || regions->empty() ? nullptr : regions->front();
}

// The faces that no order suits, by their numbers.
void noteCycle(const std::vector<ObjectData*>& objects, const SortShapes& shapes,
               const std::vector<Kernel::Arrow>& remaining) {
  for (const std::uint32_t position : Kernel::nodesOfCycles(objects.size(), remaining))
    if (const Geometry::Region2d* region = firstRegion(*objects[position], shapes))
      sortFacts().cycle.push_back({region->getObjectNumber(), region->getFaceNumber()});
}

// The objects as far as the graph of their relations orders them. It is sorted by position; what
// Graph would report of a cycle between their ids is reported all the same.
std::vector<std::uint32_t> sortedObjects(const std::vector<ObjectData*>& objects,
                                         const SortShapes& shapes,
                                         const std::vector<Kernel::Arrow>& arrows) {
  Kernel::TopologicalOrder order = Kernel::topologicalOrder(objects.size(), arrows);
  if (!order.remaining.empty()) {
    noteCycle(objects, shapes, order.remaining);
    reportCycle(CycleReportFile, idsOf(objects), order);
  }
  return std::move(order.nodes);
}

// The regions that a shot had before they are put into their order. Each is handed out once as it
// is, and copied where it is asked for again; what nobody asked for is destroyed.
class RegionStock {
 public:
  explicit RegionStock(Geometry::Regions2dInDrawingOrder* list) {
    if (list == nullptr || list->getRegions() == nullptr) return;
    regions.swap(*list->getRegions());
    isTaken.assign(regions.size(), 0);
  }
  RegionStock(const RegionStock&) = delete;
  RegionStock& operator=(const RegionStock&) = delete;
  ~RegionStock() {
    for (std::size_t k = 0; k < regions.size(); ++k)
      if (isTaken[k] == 0) delete regions[k];
  }

  Geometry::Region2d* take(std::size_t position) {
    Geometry::Region2d* const region = regions[position];
    // A region is handed on as a copy is, and that has both lists.
    const bool isWhole = region->getPoints() != nullptr && region->getDockingEdges() != nullptr;
    if (isTaken[position] != 0 || !isWhole) return new Geometry::Region2d(*region);
    isTaken[position] = 1;
    return region;
  }

 private:
  std::vector<Geometry::Region2d*> regions;
  std::vector<char> isTaken;
};

// Moves what the shot takes over to the end of its regions, and gives the numbers there.
class RegionMover {
 public:
  RegionMover(const SortShapes& sortShapes, Geometry::Regions2dInDrawingOrder* list)
      : shapes(sortShapes), stock(list), regions(list) {}

  std::vector<int> move(ObjectData& object) {
    std::vector<int> numbers;
    if (const std::size_t* const face = SortObject::faceOf(object)) {
      for (const std::size_t position : shapes.regionsOf(*face))
        numbers.push_back(append(stock.take(position)));
    } else {
      for (Geometry::Region2d* region : *object.getSourceRegions())
        numbers.push_back(append(region));
      object.getSourceRegions()->clear();
    }
    return numbers;
  }

 private:
  int append(Geometry::Region2d* region) {
    regions->addRegion(region);
    return static_cast<int>(regions->getRegions()->size());
  }

  const SortShapes& shapes;
  RegionStock stock;
  Geometry::Regions2dInDrawingOrder* regions;
};

void addFace(Geometry::Faces2d& faces, std::vector<int> regionNumbers) {
  auto* face = new Geometry::Face2d();
  *face->getRegions() = std::move(regionNumbers);
  faces.addFace(face);
}

}  // namespace

SortFacts& sortFacts() {
  thread_local SortFacts facts;
  return facts;
}

void orderObjects(std::vector<ObjectData*>& objects, const SortShapes& shapes,
                  const Kernel::SparseCells& cells) {
  const std::vector<char> isHidden = Kernel::flagsOf(Kernel::hiddenFaces(cells), objects.size());
  const std::vector<std::uint32_t> order = Kernel::drawingOrder(
      sortedObjects(objects, shapes, Kernel::drawnBefore(cells, isHidden)), isHidden);

  std::vector<ObjectData*> drawn;
  drawn.reserve(order.size());
  for (const std::uint32_t position : order) {
    drawn.push_back(objects[position]);
    drawn.back()->setDepthIndex(static_cast<int>(drawn.size()));
  }
  for (std::size_t i = 0; i < objects.size(); ++i)
    if (isHidden[i] != 0) SortObject::release(objects[i]);
  objects = std::move(drawn);
}

void rewriteShot(Shot::Shot2d& shot, SortShapes& shapes,
                 const std::vector<ObjectData*>& sortedObjects) {
  // A polygon of an object came from the shot's regions, so with an object that list is there.
  RegionMover mover(shapes, shot.getRegions());
  shapes.shotRegions = nullptr;
  std::unordered_map<std::string, Shot::Object2d*> objects;  // the first one of each id
  for (Shot::Object2d* object : elementsOf(shot.getObjects(), &Shot::Objects2d::getObjects)) {
    if (object == nullptr) continue;
    if (object->getFaces() != nullptr) object->getFaces()->clear();
    objects.emplace(object->getId(), object);
  }
  for (ObjectData* data : sortedObjects) {
    std::vector<int> numbers = mover.move(*data);
    const auto object = objects.find(data->getSourceObject());
    if (object != objects.end() && object->second->getFaces() != nullptr)
      addFace(*object->second->getFaces(), std::move(numbers));
  }
}

}  // namespace Lumivane::Algorithm
