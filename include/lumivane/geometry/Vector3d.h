#pragma once

#include <lumivane/export.h>
#include <lumivane/geometry/Point3d.h>

namespace Lumivane::Geometry {

/// A direction in space: the data and the file form of a Point3d.
class LUMIVANE_EXPORT Vector3d : public Point3d {
 public:
  /// The zero vector.
  Vector3d() = default;
  /// Stores the components as given, without a check; nothing is normalised.
  Vector3d(double xValue, double yValue, double zValue) : Point3d(xValue, yValue, zValue) {}
};

}  // namespace Lumivane::Geometry
