#pragma once

#include <lumivane/base/ElementList.h>
#include <lumivane/export.h>
#include <lumivane/geometry/Face2d.h>

namespace Lumivane::Base {

extern template class ElementList<Geometry::Face2d>;  // instantiated in src/geometry/Faces2d.cpp

}  // namespace Lumivane::Base

namespace Lumivane::Geometry {

/// The faces of an object of a shot; a face number is a position here plus 1.
class LUMIVANE_EXPORT Faces2d : public Base::ElementList<Face2d> {
 public:
  Faces2d() = default;  ///< An empty list.

  /// The vector itself, still the list's.
  Vector* getFaces() { return items; }
  /// Takes over the vector and its elements; frees nothing.
  void setFaces(Vector* newItems) { items = newItems; }
  /// The element at a position from 0, still the list's. \throws std::out_of_range
  Face2d* getFace(int index) { return at(index); }
  /// Appends the element and owns it from now on; null and duplicates are stored as well.
  void addFace(Face2d* element) { append(element); }
  /// Inserts before `index`, the count appending, and owns the element. \throws std::out_of_range
  void insertFace(int index, Face2d* element) { insert(index, element); }
  /// Takes the element out; the caller owns it from now on. \throws std::out_of_range
  void removeFace(int index) { erase(index); }
  /// Takes every occurrence of the pointer out; the caller owns it from now on.
  void removeFace(Face2d* element) { erase(element); }

  /// The position of the first element that holds the very vector of regions that `face` holds: the
  /// face itself or a shallow copy of it, not one with the same numbers. Null elements are skipped.
  /// \return -1 for a null face, and if there is none
  int indexOf(Face2d* face);
};

}  // namespace Lumivane::Geometry
