#include "algorithm/pipeline/SortShapes.h"

#include <lumivane/algorithm/Bounds2D.h>
#include <lumivane/algorithm/ObjectData.h>
#include <lumivane/algorithm/ProjectedPolygonData.h>
#include <lumivane/geometry/Region2d.h>

#include <cstddef>

namespace Lumivane::Algorithm {

namespace {

// A new object, the union of the polygons' bounds.
Bounds2D* unionOfBounds(const ObjectData::ProjectedPolygons& polygons) {
  std::vector<Bounds2D> all;
  all.reserve(polygons.size());
  for (const ProjectedPolygonData* polygon : polygons) {
    const Bounds2D* bounds = polygon == nullptr ? nullptr : polygon->getBounds();
    all.push_back(bounds == nullptr ? Bounds2D() : *bounds);
  }
  // A single bound is copied as it is: a union would leave out what is not a number.
  return all.size() == 1 ? new Bounds2D(all.front()) : new Bounds2D(all);
}

}  // namespace

std::atomic<int> ObjectData::idCounter = 1;

ObjectData::ObjectData() : id(std::to_string(idCounter++)) {}

// The lists are shared, so they are made before they are copied.
ObjectData::ObjectData(const ObjectData& other)
    : id(other.id),
      sourceObject(other.sourceObject),
      lists(other.withLists()),
      depthIndex(other.depthIndex) {}

ObjectData& ObjectData::operator=(const ObjectData& other) {
  if (this == &other) return *this;
  lists = other.withLists();
  shapes = nullptr;
  id = other.id;
  sourceObject = other.sourceObject;
  depthIndex = other.depthIndex;
  return *this;
}

void ObjectData::makeLists() const {
  const SortShapes& flat = *shapes;
  const Kernel::FaceShapes::Face& place = flat.faces[face];
  shapes = nullptr;
  lists.sourceRegions = new Regions();
  if (flat.shotRegions != nullptr)
    for (const std::size_t position : flat.regionsOf(face))
      lists.sourceRegions->push_back(new Geometry::Region2d(*(*flat.shotRegions)[position]));
  lists.projectedPolygons = new ProjectedPolygons();
  for (std::size_t k = 0; k < place.pieceCount; ++k) {
    const Kernel::Ring ring = flat.outlines[place.firstPiece + k];
    auto* points = new ProjectedPolygonData::Points();
    for (std::size_t p = 0; p < ring.count; ++p) points->push_back({ring.x[p], ring.y[p]});
    lists.projectedPolygons->push_back(new ProjectedPolygonData());
    lists.projectedPolygons->back()->setPoints(points);
  }
  lists.sourcePolygons = new SourcePolygons();
  for (std::size_t k = 0; k < place.sourceCount; ++k) {
    const Kernel::Corners corners = flat.sources.corners(place.firstSource + k);
    lists.sourcePolygons->emplace_back();
    for (std::size_t p = 0; p < corners.count; ++p)
      lists.sourcePolygons->back().push_back({corners.x[p], corners.y[p], corners.z[p]});
  }
  lists.projectedBounds = unionOfBounds(*lists.projectedPolygons);
}

void ObjectData::setProjectedPolygons(ProjectedPolygons* value) {
  withLists().projectedPolygons = value;
  calculateProjectedBounds2D();
}

void ObjectData::calculateProjectedBounds2D() {
  Lists& made = withLists();
  if (made.projectedPolygons != nullptr && !made.projectedPolygons->empty())
    made.projectedBounds = unionOfBounds(*made.projectedPolygons);
}

bool ObjectData::compareByDepthIndex(const ObjectData* first, const ObjectData* second) {
  return first->depthIndex < second->depthIndex;
}

}  // namespace Lumivane::Algorithm
