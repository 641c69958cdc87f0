#include <lumivane/base/ViewCamera.h>
#include <lumivane/jzon/Node.h>

namespace Lumivane::Base {

ViewCamera::ViewCamera() = default;

ViewCamera::ViewCamera(ViewCameraKind cameraKind, double horizontalDegrees, double verticalDegrees)
    : kind(cameraKind), horizontalAngle(horizontalDegrees), verticalAngle(verticalDegrees) {}

Jzon::Node ViewCamera::serialize() {
  Jzon::Node node = Jzon::array();
  node.add(Jzon::Node(static_cast<int>(kind)));
  node.add(Jzon::Node(horizontalAngle));
  node.add(Jzon::Node(verticalAngle));
  return node;
}

}  // namespace Lumivane::Base
