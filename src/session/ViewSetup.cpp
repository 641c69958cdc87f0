#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/session/ViewSetup.h>

namespace Lumivane::Session {

ViewSetup::ViewSetup(const ViewSettings& settings)
    : orientation(
          new Geometry::Point3d(settings.eye[0], settings.eye[1], settings.eye[2]),
          new Geometry::Vector3d(settings.forward[0], settings.forward[1], settings.forward[2]),
          new Geometry::Vector3d(settings.up[0], settings.up[1], settings.up[2])) {
  if (settings.camera == Base::ViewCameraKind::Normal) theView.setCamera(&normal);
  if (settings.camera == Base::ViewCameraKind::Spherical) theView.setCamera(&spherical);
  theView.setOrientation(&orientation);
  theView.setDisplayStyle(settings.style);
  theParameters.setPropertyNum(settings.property);
  theParameters.setScaleNum(settings.scale);
  theParameters.setD1(settings.d1);
  theParameters.setD2(settings.d2);
}

ViewSetup::~ViewSetup() = default;

Vector ViewSetup::eye() {
  const Geometry::Point3d* const point = orientation.getEyePosition();
  return {point->getX(), point->getY(), point->getZ()};
}

}  // namespace Lumivane::Session
