#include <lumivane/base/ViewSphericalCamera.h>

namespace Lumivane::Base {

ViewSphericalCamera::ViewSphericalCamera() : ViewCamera(ViewCameraKind::Spherical, 180.0, 180.0) {}

}  // namespace Lumivane::Base
