#include <lumivane/base/BaseLibClass.h>
#include <lumivane/jzon/Node.h>

namespace Lumivane::Base {

Jzon::Node BaseLibClass::serialize() { return Jzon::object(); }

BaseLibClass* BaseLibClass::deserialize(Jzon::Node) { return this; }

}  // namespace Lumivane::Base
