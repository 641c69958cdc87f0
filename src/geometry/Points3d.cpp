#include "base/ElementList.ipp"

#include <lumivane/geometry/Points3d.h>

namespace Lumivane::Base {

template class ElementList<Geometry::Point3d>;

}  // namespace Lumivane::Base
