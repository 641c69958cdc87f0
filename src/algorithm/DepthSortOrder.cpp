// From the cells to the shot: who is hidden, who is drawn before whom, one order of all, and the
// regions and faces of the shot written anew in that order.

#include "algorithm/ClassificationMatrix.h"
#include "algorithm/CycleReport.h"
#include "algorithm/SortObjects.h"
#include "kernel/Order.h"
#include "utils/StageScope.h"

#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/ObjectData.h>
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

// The names under which a report tells of the objects.
std::vector<std::string> idsOf(const std::vector<ObjectData*>& objects) {
  std::vector<std::string> ids;
  ids.reserve(objects.size());
  for (const ObjectData* object : objects) ids.push_back(object->getId());
  return ids;
}

// The objects as far as the graph of their relations orders them. It is sorted by position; what
// Graph would tell of a cycle between their ids is told all the same.
std::vector<std::uint32_t> sortedObjects(const std::vector<ObjectData*>& objects,
                                         const std::vector<Kernel::Arrow>& arrows) {
  Kernel::TopologicalOrder order = Kernel::topologicalOrder(objects.size(), arrows);
  if (!order.remaining.empty()) reportCycle(CycleReportFile, idsOf(objects), order);
  return std::move(order.nodes);
}

// Appends the object's regions, which the shot takes over, and gives their numbers in the shot.
std::vector<int> moveRegions(ObjectData& object, Geometry::Regions2dInDrawingOrder& regions) {
  std::vector<int> numbers;
  for (Geometry::Region2d* region : *object.getSourceRegions()) {
    regions.addRegion(region);
    numbers.push_back(static_cast<int>(regions.getRegions()->size()));
  }
  object.getSourceRegions()->clear();
  return numbers;
}

void addFace(Geometry::Faces2d& faces, const std::vector<int>& regionNumbers) {
  auto* face = new Geometry::Face2d();
  *face->getRegions() = regionNumbers;
  faces.addFace(face);
}

}  // namespace

void DepthSortAlgorithmExecutor::calculateObjectsOrder() {
  if (objectDataList == nullptr) return;
  const Utils::StageScope stage(Utils::Stage::Order);
  std::vector<ObjectData*>& objects = *objectDataList;
  const std::vector<char> isHidden =
      Kernel::flagsOf(Kernel::hiddenFaces(*classificationMatrix), objects.size());
  const std::vector<std::uint32_t> order = Kernel::drawingOrder(
      sortedObjects(objects, Kernel::drawnBefore(*classificationMatrix, isHidden)), isHidden);

  std::vector<ObjectData*> drawn;
  drawn.reserve(order.size());
  for (const std::uint32_t position : order) {
    drawn.push_back(objects[position]);
    drawn.back()->setDepthIndex(static_cast<int>(drawn.size()));
  }
  for (std::size_t i = 0; i < objects.size(); ++i)
    if (isHidden[i] != 0) SortObject::release(objects[i]);
  objects = std::move(drawn);

  rewriteShot();
}

void DepthSortAlgorithmExecutor::rewriteShot() {
  Geometry::Regions2dInDrawingOrder* regions = shot->getRegions();
  if (regions != nullptr) regions->clear();
  std::unordered_map<std::string, Shot::Object2d*> objects;  // the first one of each id
  for (Shot::Object2d* object : elementsOf(shot->getObjects(), &Shot::Objects2d::getObjects)) {
    if (object == nullptr) continue;
    if (object->getFaces() != nullptr) object->getFaces()->clear();
    objects.emplace(object->getId(), object);
  }
  for (ObjectData* data : *objectDataList) {
    // A polygon of the object came from the shot's regions, so that list is there.
    const std::vector<int> numbers = moveRegions(*data, *regions);
    const auto object = objects.find(data->getSourceObject());
    if (object != objects.end() && object->second->getFaces() != nullptr)
      addFace(*object->second->getFaces(), numbers);
  }
}

}  // namespace Lumivane::Algorithm
