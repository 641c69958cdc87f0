// The first normal is made by the face itself. While nobody else has seen the pointer, reading may
// free it; afterwards a caller may keep it, and it is left alone.

#include "geometry/Fields.h"

#include <lumivane/geometry/Face.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/utils/Aliases.h>

namespace Lumivane::Geometry {

Face::Face() : normal(new Vector3d(0.0, 0.0, 1.0)) {}

Face::Face(const Face& other) : Part(other), normal(other.getNormal()), normalIsKnown(true) {}

Face& Face::operator=(const Face& other) {
  if (this == &other) return *this;
  Part::operator=(other);
  setNormal(other.getNormal());
  return *this;
}

Face::~Face() { delete normal; }

Vector3d* Face::getNormal() const {
  normalIsKnown = true;
  return normal;
}

void Face::setNormal(Vector3d* newNormal) {
  normal = newNormal;
  normalIsKnown = true;
}

Jzon::Node Face::serialize() {
  Jzon::Node node = Part::serialize();
  writeList(node, Utils::Aliases::NORMAL, normal);
  return node;
}

Base::BaseLibClass* Face::deserialize(Jzon::Node node) {
  Part::deserialize(node);
  if (!node.has(Utils::Aliases::NORMAL)) return this;
  if (!normalIsKnown) delete normal;
  normal = new Vector3d();
  normalIsKnown = false;
  normal->deserialize(node.get(Utils::Aliases::NORMAL));
  return this;
}

}  // namespace Lumivane::Geometry
