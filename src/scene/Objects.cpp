#include "base/ElementList.ipp"

#include <lumivane/scene/Objects.h>

namespace Lumivane::Base {

template class ElementList<Scene::Object>;

}  // namespace Lumivane::Base
