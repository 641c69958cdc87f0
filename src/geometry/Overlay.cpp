#include "geometry/Fields.h"

#include <lumivane/geometry/Overlay.h>
#include <lumivane/utils/Aliases.h>

namespace Lumivane::Geometry {

Jzon::Node Overlay::serialize() {
  Jzon::Node node = Jzon::object();
  writeNumber(node, Utils::Aliases::OBJECT, objectNumber);
  writeNumber(node, Utils::Aliases::FACE, faceNumber);
  return node;
}

Base::BaseLibClass* Overlay::deserialize(Jzon::Node node) {
  readNumber(node, Utils::Aliases::OBJECT, objectNumber);
  readNumber(node, Utils::Aliases::FACE, faceNumber);
  return this;
}

}  // namespace Lumivane::Geometry
