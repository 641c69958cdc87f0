#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/base/ViewCameraKind.h>
#include <lumivane/export.h>

namespace Lumivane::Base {

/// The camera of a view: its kind and its opening. Built as `ViewSphericalCamera` or
/// `ViewNormalCamera` only. It is written to JSON but never read back.
class LUMIVANE_EXPORT ViewCamera : public BaseLibClass {
 public:
  /// The kind, which the class sets for good.
  ViewCameraKind getKind() const { return kind; }
  /// Horizontal opening in degrees.
  double getHorizontalAngle() const { return horizontalAngle; }
  /// Vertical opening in degrees.
  double getVerticalAngle() const { return verticalAngle; }

  /// \return `[kind, horizontalAngle, verticalAngle]`
  Jzon::Node serialize() override;

 protected:
  /// Undefined kind, 60 degrees both ways.
  ViewCamera();
  /// A camera of that kind; the opening in degrees.
  ViewCamera(ViewCameraKind cameraKind, double horizontalDegrees, double verticalDegrees);
  /// Copies all fields.
  ViewCamera(const ViewCamera&) = default;
  /// Copies all fields.
  ViewCamera& operator=(const ViewCamera&) = default;

  /// Horizontal opening in degrees, not checked.
  void setHorizontalAngle(double degrees) { horizontalAngle = degrees; }
  /// Vertical opening in degrees, not checked.
  void setVerticalAngle(double degrees) { verticalAngle = degrees; }

 private:
  ViewCameraKind kind = ViewCameraKind::Undefined;
  double horizontalAngle = 60.0;
  double verticalAngle = 60.0;
};

}  // namespace Lumivane::Base
