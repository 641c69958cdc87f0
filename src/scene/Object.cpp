#include "geometry/Fields.h"

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

Jzon::Node Object::serialize() {
  Jzon::Node node = Jzon::object();
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
