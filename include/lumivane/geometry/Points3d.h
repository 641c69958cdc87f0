#pragma once

#include <lumivane/base/ElementList.h>
#include <lumivane/export.h>
#include <lumivane/geometry/Point3d.h>

namespace Lumivane::Base {

extern template class ElementList<Geometry::Point3d>;  // instantiated in src/geometry/Points3d.cpp

}  // namespace Lumivane::Base

namespace Lumivane::Geometry {

/// The points of a scene; a point number is a position here plus 1.
class LUMIVANE_EXPORT Points3d : public Base::ElementList<Point3d> {
 public:
  Points3d() = default;  ///< An empty list.

  /// The vector itself, still the list's.
  Vector* getPoints() { return items; }
  /// Takes over the vector and its elements; frees nothing.
  void setPoints(Vector* newItems) { items = newItems; }
  /// The element at a position from 0, still the list's. \throws std::out_of_range
  Point3d* getPoint(int index) { return at(index); }
  /// Appends the element and owns it from now on; null and duplicates are stored as well.
  void addPoint(Point3d* element) { append(element); }
  /// Inserts before `index`, the count appending, and owns the element. \throws std::out_of_range
  void insertPoint(int index, Point3d* element) { insert(index, element); }
  /// Takes the element out; the caller owns it from now on. \throws std::out_of_range
  void removePoint(int index) { erase(index); }
  /// Takes every occurrence of the pointer out; the caller owns it from now on.
  void removePoint(Point3d* element) { erase(element); }
};

}  // namespace Lumivane::Geometry
