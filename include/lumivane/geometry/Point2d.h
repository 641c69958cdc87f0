#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

#include <vector>

namespace Lumivane::Geometry {

/// A point of the flat plane of a shot; both coordinates lie within -1 to 1 in a finished shot,
/// x to the right of the picture and y upward. In a file: `[x, y]`.
class LUMIVANE_EXPORT Point2d : public Base::BaseLibClass {
 public:
  /// How far two points may lie apart on each axis, strictly, and still be one point. Read each
  /// time it is needed, so a host may change it between two calls.
  static double Precision;

  /// The point (0, 0).
  Point2d() = default;
  /// Stores the coordinates as given, without a check.
  Point2d(double xValue, double yValue) : x(xValue), y(yValue) {}

  double getX() const { return x; }       ///< The coordinate to the right.
  void setX(double value) { x = value; }  ///< Any value, NaN included.
  double getY() const { return y; }       ///< The coordinate upward.
  void setY(double value) { y = value; }  ///< Any value, NaN included.

  /// The two coordinates `[x, y]`, as the maths operations take them.
  std::vector<double> toVector() const { return {x, y}; }

  /// An array of the two coordinates.
  Jzon::Node serialize() override;
  /// Reads an array of exactly two elements, each one if it is a number; anything else leaves the
  /// point as it is.
  Base::BaseLibClass* deserialize(Jzon::Node node) override;

 private:
  double x = 0.0;
  double y = 0.0;
};

}  // namespace Lumivane::Geometry
