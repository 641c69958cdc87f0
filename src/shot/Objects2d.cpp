#include "base/ElementList.ipp"

#include <lumivane/shot/Objects2d.h>

namespace Lumivane::Base {

template class ElementList<Shot::Object2d>;

}  // namespace Lumivane::Base
