#pragma once

#include <lumivane/base/ElementList.h>
#include <lumivane/export.h>
#include <lumivane/geometry/Point2d.h>

namespace Lumivane::Base {

extern template class ElementList<Geometry::Point2d>;  // instantiated in src/geometry/Points2d.cpp

}  // namespace Lumivane::Base

namespace Lumivane::Geometry {

/// The points of a shot; a point number is a position here plus 1.
class LUMIVANE_EXPORT Points2d : public Base::ElementList<Point2d> {
 public:
  Points2d() = default;  ///< An empty list.

  /// The vector itself, still the list's.
  Vector* getPoints() { return items; }
  /// Takes over the vector and its elements; frees nothing.
  void setPoints(Vector* newItems) { items = newItems; }
  /// The element at a position from 0, still the list's. \throws std::out_of_range
  Point2d* getPoint(int index) { return at(index); }
  /// Appends the element and owns it from now on; null and duplicates are stored as well.
  void addPoint(Point2d* element) { append(element); }
  /// Inserts before `index`, the count appending, and owns the element. \throws std::out_of_range
  void insertPoint(int index, Point2d* element) { insert(index, element); }
  /// Takes the element out; the caller owns it from now on. \throws std::out_of_range
  void removePoint(int index) { erase(index); }
  /// Takes every occurrence of the pointer out; the caller owns it from now on.
  void removePoint(Point2d* element) { erase(element); }

  /// The position of the first element that lies within Point2d::Precision of `point`, strictly and
  /// on each axis; null elements are skipped.
  /// \return -1 for a null point, and if there is none
  int indexOf(Point2d* point);
};

}  // namespace Lumivane::Geometry
