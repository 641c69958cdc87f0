// From the cells to the shot: who is hidden, who is drawn before whom, one order of all, and the
// regions and faces of the shot written anew in that order.

#include "algorithm/SortObjects.h"
#include "kernel/Order.h"
#include "utils/StageScope.h"

#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/Graph.h>
#include <lumivane/algorithm/ObjectData.h>
#include <lumivane/geometry/Face2d.h>
#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

#include <algorithm>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace Lumivane::Algorithm {
namespace {

// The graph knows nodes by name: the ids of the objects.
using Ids = std::vector<std::string>;

Ids idsOf(const std::vector<ObjectData*>& objects) {
  Ids ids;
  ids.reserve(objects.size());
  for (const ObjectData* object : objects) ids.push_back(object->getId());
  return ids;
}

// The positions of the objects in the order of the graph, as far as it has them.
std::vector<std::size_t> sortedPositions(const std::vector<Kernel::Arrow>& arrows, const Ids& ids) {
  std::vector<Ids> rows;
  rows.reserve(arrows.size());
  for (const Kernel::Arrow& arrow : arrows) rows.push_back({ids[arrow.first], ids[arrow.second]});
  const std::unique_ptr<Ids> sorted(Graph(rows).topologicalSort());

  std::unordered_map<std::string, std::size_t> positions;
  for (std::size_t i = 0; i < ids.size(); ++i) positions.emplace(ids[i], i);
  std::vector<std::size_t> result;
  result.reserve(sorted->size());
  for (const std::string& id : *sorted) result.push_back(positions.at(id));
  return result;
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
  const Ids ids = idsOf(*objectDataList);
  const std::vector<char> isHidden =
      Kernel::flagsOf(Kernel::hiddenFaces(*classificationMatrix, ids.size()), ids.size());
  const std::vector<Kernel::Arrow> arrows = Kernel::drawnBefore(*classificationMatrix, isHidden);
  const std::vector<std::size_t> order =
      Kernel::drawingOrder(sortedPositions(arrows, ids), isHidden);

  for (std::size_t k = 0; k < order.size(); ++k)
    (*objectDataList)[order[k]]->setDepthIndex(static_cast<int>(k) + 1);
  // The hidden, still at -1, come first and tie; all others differ.
  std::sort(objectDataList->begin(), objectDataList->end(), ObjectData::compareByDepthIndex);
  const auto firstDrawn = objectDataList->end() - static_cast<std::ptrdiff_t>(order.size());
  std::for_each(objectDataList->begin(), firstDrawn, releaseSortObject);
  objectDataList->erase(objectDataList->begin(), firstDrawn);

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
