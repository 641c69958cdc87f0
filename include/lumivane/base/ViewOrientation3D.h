#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

namespace Lumivane::Geometry {
class Point3d;
class Vector3d;
}  // namespace Lumivane::Geometry

namespace Lumivane::Base {

/// Where the eye stands and how it is turned. It is written to JSON but never read back.
///
/// Owns its three objects. Setters store the pointer and do not free the old object. Copies share
/// the objects: of two copies, destroy one.
class LUMIVANE_EXPORT ViewOrientation3D : public BaseLibClass {
 public:
  /// Eye at (0, 0, 0), forward (1, 0, 0), up (0, 0, 1).
  ViewOrientation3D();
  /// Takes the three objects over.
  ViewOrientation3D(Geometry::Point3d* eye, Geometry::Vector3d* forward, Geometry::Vector3d* up);
  ViewOrientation3D(const ViewOrientation3D&) = default;
  ViewOrientation3D& operator=(const ViewOrientation3D&) = default;
  ~ViewOrientation3D();

  Geometry::Point3d* getEyePosition() { return eyePosition; }
  void setEyePosition(Geometry::Point3d* position) { eyePosition = position; }
  Geometry::Vector3d* getForwardDirection() { return forwardDirection; }
  void setForwardDirection(Geometry::Vector3d* direction) { forwardDirection = direction; }
  Geometry::Vector3d* getUpDirection() { return upDirection; }
  void setUpDirection(Geometry::Vector3d* direction) { upDirection = direction; }

  /// \return `[eyePosition, forwardDirection, upDirection]`, JSON null where there is no object
  Jzon::Node serialize() override;

 private:
  Geometry::Point3d* eyePosition;
  Geometry::Vector3d* forwardDirection;
  Geometry::Vector3d* upDirection;
};

}  // namespace Lumivane::Base
