#include "base/ElementList.ipp"

#include <lumivane/geometry/Regions.h>

namespace Lumivane::Base {

template class ElementList<Geometry::Region>;

}  // namespace Lumivane::Base
