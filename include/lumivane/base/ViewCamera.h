#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/base/ViewCameraKind.h>
#include <lumivane/export.h>

namespace Lumivane::Base {

/// The camera of a view: its kind and its opening. Built as `ViewSphericalCamera` or
/// `ViewNormalCamera` only. It is written to JSON but never read back.
class LUMIVANE_EXPORT ViewCamera : public BaseLibClass {
 public:
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
  ViewCamera(ViewCameraKind cameraKind, double horizontalDegrees, double verticalDegrees);
  ViewCamera(const ViewCamera&) = default;
  ViewCamera& operator=(const ViewCamera&) = default;

  void setHorizontalAngle(double degrees) { horizontalAngle = degrees; }
  void setVerticalAngle(double degrees) { verticalAngle = degrees; }

 private:
  ViewCameraKind kind = ViewCameraKind::Undefined;
  double horizontalAngle = 60.0;
  double verticalAngle = 60.0;
};

}  // namespace Lumivane::Base
