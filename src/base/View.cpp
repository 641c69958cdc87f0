#include <lumivane/base/View.h>
#include <lumivane/jzon/Node.h>

namespace Lumivane::Base {

View::View() = default;

// Deliberate: the camera, the orientation and the display style are not written.
Jzon::Node View::serialize() { return Jzon::object(); }

}  // namespace Lumivane::Base
