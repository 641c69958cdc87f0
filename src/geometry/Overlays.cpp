#include "base/ElementList.ipp"

#include <lumivane/geometry/Overlays.h>

namespace Lumivane::Base {

template class ElementList<Geometry::Overlay>;

}  // namespace Lumivane::Base
