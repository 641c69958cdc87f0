#include "base/ElementList.ipp"

#include <lumivane/geometry/Regions2dInDrawingOrder.h>

namespace Lumivane::Base {

template class ElementList<Geometry::Region2d>;

}  // namespace Lumivane::Base
