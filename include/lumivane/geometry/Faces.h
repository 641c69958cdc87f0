#pragma once

#include <lumivane/base/ElementList.h>
#include <lumivane/export.h>
#include <lumivane/geometry/Face.h>

namespace Lumivane {

extern template class Base::ElementList<Geometry::Face>;  // instantiated in src/geometry/Faces.cpp

namespace Geometry {

/// The faces of a scene object; a face number is a position here plus 1. Reading makes plain faces
/// only. A VFace that a host adds is owned like any face and is freed with all it holds.
class LUMIVANE_EXPORT Faces : public Base::ElementList<Face> {
 public:
  Faces();
  Faces(const Faces&) = default;             ///< Shares the vector and its elements.
  Faces& operator=(const Faces&) = default;  ///< Shares the vector; frees nothing.
  ~Faces();                                  ///< Deletes the faces, then the vector.

  void clear();  ///< Deletes every face and keeps the vector, now empty.

  /// The vector itself, still the list's.
  Vector* getFaces() { return items; }
  /// Takes over the vector and its elements; frees nothing.
  void setFaces(Vector* newItems) { items = newItems; }
  /// The element at a position from 0, still the list's. \throws std::out_of_range
  Face* getFace(int index) { return at(index); }
  /// Appends the element and owns it from now on; null and duplicates are stored as well.
  void addFace(Face* element) { append(element); }
  /// Inserts before `index`, the count appending, and owns the element. \throws std::out_of_range
  void insertFace(int index, Face* element) { insert(index, element); }
  /// Takes the element out; the caller owns it from now on. \throws std::out_of_range
  void removeFace(int index) { erase(index); }
  /// Takes every occurrence of the pointer out; the caller owns it from now on.
  void removeFace(Face* element) { erase(element); }

 private:
  void deleteValueFaces();
};

}  // namespace Geometry
}  // namespace Lumivane
