#pragma once

#include <lumivane/base/ElementList.h>
#include <lumivane/export.h>
#include <lumivane/geometry/Part.h>

namespace Lumivane::Base {

extern template class ElementList<Geometry::Part>;  // instantiated in src/geometry/Parts.cpp

}  // namespace Lumivane::Base

namespace Lumivane::Geometry {

/// The parts of a scene object.
class LUMIVANE_EXPORT Parts : public Base::ElementList<Part> {
 public:
  Parts() = default;  ///< An empty list.

  /// The vector itself, still the list's.
  Vector* getParts() { return items; }
  /// Takes over the vector and its elements; frees nothing.
  void setParts(Vector* newItems) { items = newItems; }
  /// The element at a position from 0, still the list's. \throws std::out_of_range
  Part* getPart(int index) { return at(index); }
  /// Appends the element and owns it from now on; null and duplicates are stored as well.
  void addPart(Part* element) { append(element); }
  /// Inserts before `index`, the count appending, and owns the element. \throws std::out_of_range
  void insertPart(int index, Part* element) { insert(index, element); }
  /// Takes the element out; the caller owns it from now on. \throws std::out_of_range
  void removePart(int index) { erase(index); }
  /// Takes every occurrence of the pointer out; the caller owns it from now on.
  void removePart(Part* element) { erase(element); }
};

}  // namespace Lumivane::Geometry
