#include "base/SerializeOrNull.h"

#include <lumivane/base/ViewOrientation3D.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Vector3d.h>

namespace Lumivane::Base {

ViewOrientation3D::ViewOrientation3D()
    : ViewOrientation3D(new Geometry::Point3d(0, 0, 0), new Geometry::Vector3d(1, 0, 0),
                        new Geometry::Vector3d(0, 0, 1)) {}

ViewOrientation3D::ViewOrientation3D(Geometry::Point3d* eye, Geometry::Vector3d* forward,
                                     Geometry::Vector3d* up)
    : eyePosition(eye), forwardDirection(forward), upDirection(up) {}

ViewOrientation3D::~ViewOrientation3D() {
  delete eyePosition;
  delete forwardDirection;
  delete upDirection;
  eyePosition = nullptr;
  forwardDirection = nullptr;
  upDirection = nullptr;
}

Jzon::Node ViewOrientation3D::serialize() {
  Jzon::Node node = Jzon::array();
  node.add(serializeOrNull(eyePosition));
  node.add(serializeOrNull(forwardDirection));
  node.add(serializeOrNull(upDirection));
  return node;
}

}  // namespace Lumivane::Base
