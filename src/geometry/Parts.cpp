#include "base/ElementList.ipp"

#include <lumivane/geometry/Parts.h>

namespace Lumivane::Base {

template class ElementList<Geometry::Part>;

}  // namespace Lumivane::Base
