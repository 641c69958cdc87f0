#include "base/ElementList.ipp"

#include <lumivane/base/Scales.h>

namespace Lumivane::Base {

template class ElementList<Scale>;

}  // namespace Lumivane::Base
