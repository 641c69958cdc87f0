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
  /// Shares the three objects.
  ViewOrientation3D(const ViewOrientation3D&) = default;
  /// Shares the three objects; the old ones are not freed.
  ViewOrientation3D& operator=(const ViewOrientation3D&) = default;
  /// Deletes the three objects.
  ~ViewOrientation3D();

  /// Where the eye stands, in scene units; making a shot may move it.
  Geometry::Point3d* getEyePosition() { return eyePosition; }
  /// Takes the point over; the old one is not freed, and so for the others.
  void setEyePosition(Geometry::Point3d* position) { eyePosition = position; }
  /// The direction of looking, of any length.
  Geometry::Vector3d* getForwardDirection() { return forwardDirection; }
  /// Takes the vector over.
  void setForwardDirection(Geometry::Vector3d* direction) { forwardDirection = direction; }
  /// The upward direction, of any length.
  Geometry::Vector3d* getUpDirection() { return upDirection; }
  /// Takes the vector over.
  void setUpDirection(Geometry::Vector3d* direction) { upDirection = direction; }

  /// \return `[eyePosition, forwardDirection, upDirection]`, JSON null where there is not an object
  Jzon::Node serialize() override;

 private:
  Geometry::Point3d* eyePosition;
  Geometry::Vector3d* forwardDirection;
  Geometry::Vector3d* upDirection;
};

}  // namespace Lumivane::Base
