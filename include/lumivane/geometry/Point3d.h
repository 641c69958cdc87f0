#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

#include <vector>

namespace Lumivane::Geometry {

/// A point of a scene, in scene units; also the store of a scene's vertices. In a file:
/// `[x, y, z]`.
class LUMIVANE_EXPORT Point3d : public Base::BaseLibClass {
 public:
  /// How far two points may lie apart on each axis, strictly, and still be one point when a face is
  /// made from loops. Read each time it is needed, so a host may change it between two calls.
  static double Precision;

  /// The point (0, 0, 0).
  Point3d() = default;
  /// Stores the coordinates as given, without a check.
  Point3d(double xValue, double yValue, double zValue) : x(xValue), y(yValue), z(zValue) {}

  double getX() const { return x; }       ///< The first coordinate.
  void setX(double value) { x = value; }  ///< Any value, NaN included.
  double getY() const { return y; }       ///< The second coordinate.
  void setY(double value) { y = value; }  ///< Any value, NaN included.
  double getZ() const { return z; }       ///< The third coordinate.
  void setZ(double value) { z = value; }  ///< Any value, NaN included.

  /// The three coordinates `[x, y, z]`, as the maths operations take them.
  std::vector<double> toVector() const { return {x, y, z}; }

  /// An array of the three coordinates.
  Jzon::Node serialize() override;
  /// Reads an array of exactly three elements, each one if it is a number; anything else leaves the
  /// point as it is.
  Base::BaseLibClass* deserialize(Jzon::Node node) override;

 private:
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

}  // namespace Lumivane::Geometry
