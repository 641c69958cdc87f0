#include "base/ElementList.ipp"

#include <lumivane/base/Pens.h>

namespace Lumivane::Base {

template class ElementList<Pen>;

}  // namespace Lumivane::Base
