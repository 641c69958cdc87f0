#include <lumivane/base/ViewNormalCamera.h>

namespace Lumivane::Base {

ViewNormalCamera::ViewNormalCamera() : ViewCamera(ViewCameraKind::Normal, 60.0, 60.0) {}

}  // namespace Lumivane::Base
