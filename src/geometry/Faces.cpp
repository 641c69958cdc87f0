#include "base/ElementList.ipp"

#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/VFace.h>

namespace Lumivane::Base {

void ElementTraits<Geometry::Face>::destroyElement(Geometry::Face* face) {
  if (auto* valued = dynamic_cast<Geometry::VFace*>(face)) {
    delete valued;
  } else {
    delete face;
  }
}

template class ElementList<Geometry::Face>;

}  // namespace Lumivane::Base
