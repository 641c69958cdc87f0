#include "base/ElementList.ipp"

#include <lumivane/geometry/Points2d.h>

#include <cmath>

namespace Lumivane::Base {

template class ElementList<Geometry::Point2d>;

}  // namespace Lumivane::Base

namespace Lumivane::Geometry {

int Points2d::indexOf(Point2d* point) {
  if (point == nullptr || items == nullptr) return -1;
  for (std::size_t i = 0; i < items->size(); ++i) {
    const Point2d* element = (*items)[i];
    if (element == nullptr) continue;
    if (std::abs(point->getX() - element->getX()) < Point2d::Precision &&
        std::abs(point->getY() - element->getY()) < Point2d::Precision)
      return static_cast<int>(i);
  }
  return -1;
}

}  // namespace Lumivane::Geometry
