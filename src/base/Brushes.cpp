#include "base/ElementList.ipp"

#include <lumivane/base/Brushes.h>

namespace Lumivane::Base {

template class ElementList<Brush>;

}  // namespace Lumivane::Base
