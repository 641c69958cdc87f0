#include "geometry/Fields.h"

#include <lumivane/geometry/Faces2d.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/utils/Aliases.h>

namespace Lumivane::Shot {

using Utils::Aliases;

Object2d::~Object2d() { delete faces; }

Jzon::Node Object2d::serialize() {
  Jzon::Node node = Jzon::objectWithRoom(2);
  if (!id.empty()) node.add(Aliases::ID, Jzon::Node(id));
  Geometry::writeList(node, Aliases::FACES, faces);
  return node;
}

Base::BaseLibClass* Object2d::deserialize(Jzon::Node node) {
  const Jzon::Node idNode = node.get(Aliases::ID);
  if (idNode.isString()) id = idNode.toString("");
  Geometry::readArrayList(node, Aliases::FACES, faces);
  return this;
}

}  // namespace Lumivane::Shot
