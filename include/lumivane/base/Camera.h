#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

namespace Lumivane::Geometry {
class Point3d;
class Vector3d;
}  // namespace Lumivane::Geometry

namespace Lumivane::Base {

class Color;

/// A free-standing camera record for hosts and for JSON. Shots are taken from a `View`.
///
/// Owns its four objects. Setters store the pointer and do not free the old object. Copies share
/// the objects: of two copies, destroy one.
class LUMIVANE_EXPORT Camera : public BaseLibClass {
 public:
  /// At (0, 0, 0), looking along (1, 0, 0), up (0, 0, 1), interior colour (64, 64, 64, 255),
  /// D1 0.01 and D2 1.
  Camera();
  /// Shares the four objects.
  Camera(const Camera&) = default;
  /// Shares the four objects; the old ones are not freed.
  Camera& operator=(const Camera&) = default;
  /// Deletes the four objects.
  ~Camera();

  /// Where the camera stands, in scene units.
  Geometry::Point3d* getPosition() { return Position; }
  /// Takes the point over; the old one is not freed, and so for the others.
  void setPosition(Geometry::Point3d* value) { Position = value; }
  /// The direction of looking.
  Geometry::Vector3d* getDirection() { return Direction; }
  /// Takes the vector over.
  void setDirection(Geometry::Vector3d* value) { Direction = value; }
  /// The upward direction.
  Geometry::Vector3d* getViewUp() { return ViewUp; }
  /// Takes the vector over.
  void setViewUp(Geometry::Vector3d* value) { ViewUp = value; }
  /// The colour of the interior.
  Color* getInteriorColor() { return InteriorColor; }
  /// Takes the colour over.
  void setInteriorColor(Color* value) { InteriorColor = value; }
  /// Distance limit of the camera shift, in scene units.
  double getD1() const { return D1; }
  /// Any value, not checked.
  void setD1(double value) { D1 = value; }
  /// Angle limit of the camera shift, in degrees.
  double getD2() const { return D2; }
  /// Any value, not checked.
  void setD2(double value) { D2 = value; }

  /// \return an object with "Position", "Direction", "ViewUp", "InteriorColor" (JSON null where
  ///     there is not an object), "D1" and "D2"
  Jzon::Node serialize() override;

  /// Each of the four objects whose key is present is replaced by a new one read from the value;
  /// the old one is not freed. "D1" and "D2", if present, become 0 when the value is no number.
  ///
  /// \throws std::out_of_range for a colour component outside 0 to 255; the colour then stays
  BaseLibClass* deserialize(Jzon::Node node) override;

 private:
  Geometry::Point3d* Position;
  Geometry::Vector3d* Direction;
  Geometry::Vector3d* ViewUp;
  Color* InteriorColor;
  double D1 = 0.01;
  double D2 = 1.0;
};

}  // namespace Lumivane::Base
