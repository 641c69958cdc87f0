#include "geometry/Fields.h"
#include "scene/Deferred.h"

#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Overlays.h>
#include <lumivane/geometry/Parts.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/utils/Aliases.h>

namespace Lumivane::Scene {

using Utils::Aliases;

Object::~Object() {
  delete faces;
  delete parts;
  delete regions;
  delete overlays;
}

using PolyDataList = DeferredAccess::PolyDataList;
using RegionPolygons = DeferredAccess::RegionPolygons;
using RegionProjections = DeferredAccess::RegionProjections;

PolyDataList* Object::getRegionsPolyData() const {
  return deferredPolyData ? deferredPolyData->get() : regionsPolyData;
}

void Object::setRegionsPolyData(PolyDataList* value) {
  deferredPolyData.reset();
  regionsPolyData = value;
}

PolyDataList* Object::getRegionsClippedPolyData() const {
  return deferredClippedPolyData ? deferredClippedPolyData->get() : regionsClippedPolyData;
}

void Object::setRegionsClippedPolyData(PolyDataList* value) {
  deferredClippedPolyData.reset();
  regionsClippedPolyData = value;
}

RegionPolygons* Object::getRegionsVisiblePolygons() const {
  return deferredVisiblePolygons ? deferredVisiblePolygons->get() : regionsVisiblePolygons;
}

void Object::setRegionsVisiblePolygons(RegionPolygons* value) {
  deferredVisiblePolygons.reset();
  regionsVisiblePolygons = value;
}

RegionProjections* Object::getRegionsProjectedPolygons() const {
  return deferredProjectedPolygons ? deferredProjectedPolygons->get() : regionsProjectedPolygons;
}

void Object::setRegionsProjectedPolygons(RegionProjections* value) {
  deferredProjectedPolygons.reset();
  regionsProjectedPolygons = value;
}

Jzon::Node Object::serialize() {
  Jzon::Node node = Jzon::objectWithRoom(7);
  if (!id.empty()) node.add(Aliases::ID, Jzon::Node(id));
  Geometry::writeNumber(node, Aliases::PARTS_COUNT, partsCount);
  Geometry::writeNumber(node, Aliases::PEN, penNumber);
  Geometry::writeList(node, Aliases::FACES, faces);
  Geometry::writeList(node, Aliases::PARTS, parts);
  Geometry::writeList(node, Aliases::REGIONS, regions);
  Geometry::writeList(node, Aliases::OVERLAYS, overlays);
  return node;
}

Base::BaseLibClass* Object::deserialize(Jzon::Node node) {
  const Jzon::Node idNode = node.get(Aliases::ID);
  if (idNode.isString()) id = idNode.toString("");
  Geometry::readNumber(node, Aliases::PARTS_COUNT, partsCount);
  Geometry::readNumber(node, Aliases::PEN, penNumber);
  Geometry::readArrayList(node, Aliases::FACES, faces);
  Geometry::readArrayList(node, Aliases::PARTS, parts);
  Geometry::readArrayList(node, Aliases::REGIONS, regions);
  Geometry::readArrayList(node, Aliases::OVERLAYS, overlays);
  return this;
}

}  // namespace Lumivane::Scene
