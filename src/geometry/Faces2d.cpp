#include "base/ElementList.ipp"

#include <lumivane/geometry/Faces2d.h>

namespace Lumivane::Base {

template class ElementList<Geometry::Face2d>;

}  // namespace Lumivane::Base

namespace Lumivane::Geometry {

int Faces2d::indexOf(Face2d* face) {
  if (face == nullptr || items == nullptr) return -1;
  for (std::size_t i = 0; i < items->size(); ++i) {
    const Face2d* element = (*items)[i];
    if (element != nullptr && element->getRegions() == face->getRegions())
      return static_cast<int>(i);
  }
  return -1;
}

}  // namespace Lumivane::Geometry
