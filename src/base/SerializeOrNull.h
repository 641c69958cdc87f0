#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/jzon/Node.h>

namespace Lumivane::Base {

// The object as JSON, or JSON null where there is none.
inline Jzon::Node serializeOrNull(BaseLibClass* object) {
  return object == nullptr ? Jzon::null() : object->serialize();
}

}  // namespace Lumivane::Base
