#include "geometry/Fields.h"

#include <lumivane/geometry/Face.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/utils/Aliases.h>

namespace Lumivane::Geometry {

Face::Face() : normal(new Vector3d(0.0, 0.0, 1.0)) {}

Face::~Face() { delete normal; }

Jzon::Node Face::serialize() {
  Jzon::Node node = Part::serialize();
  writeList(node, Utils::Aliases::NORMAL, normal);
  return node;
}

Base::BaseLibClass* Face::deserialize(Jzon::Node node) {
  Part::deserialize(node);
  if (!node.has(Utils::Aliases::NORMAL)) return this;
  normal = new Vector3d();  // the old one stays with whoever holds it
  normal->deserialize(node.get(Utils::Aliases::NORMAL));
  return this;
}

}  // namespace Lumivane::Geometry
