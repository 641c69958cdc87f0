#include "base/ElementList.ipp"

#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/VFace.h>
#include <lumivane/geometry/Vector3d.h>

namespace Lumivane::Base {

Geometry::Face* ElementTraits<Geometry::Face>::readElement(Geometry::Face* face,
                                                           const Jzon::Node& node) {
  const Geometry::Vector3d* const first = face->getNormal();
  face->deserialize(node);
  if (face->getNormal() != first) delete first;  // the face is new: nobody else holds it
  return face;
}

void ElementTraits<Geometry::Face>::destroyElement(Geometry::Face* face) {
  if (auto* valued = dynamic_cast<Geometry::VFace*>(face)) {
    delete valued;
  } else {
    delete face;
  }
}

template class ElementList<Geometry::Face>;

}  // namespace Lumivane::Base
