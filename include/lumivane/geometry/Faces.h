#pragma once

#include <lumivane/base/ElementList.h>
#include <lumivane/export.h>
#include <lumivane/geometry/Face.h>

namespace Lumivane::Base {

/// Reading a face leaves its earlier normal unfreed, and no class of the model has a virtual
/// destructor: the list sees to both.
template <>
struct LUMIVANE_EXPORT ElementTraits<Geometry::Face> {
  /// Reads a new face, and frees the normal that it was made with if reading put another there.
  static Geometry::Face* readElement(Geometry::Face* face, const Jzon::Node& node);
  /// Deletes the face as what it is: a VFace with its values, anything else as a Face.
  static void destroyElement(Geometry::Face* face);
};

extern template class ElementList<Geometry::Face>;  // instantiated in src/geometry/Faces.cpp

}  // namespace Lumivane::Base

namespace Lumivane::Geometry {

/// The faces of a scene object; a face number is a position here plus 1. Reading makes plain faces
/// only. A VFace that a host adds is destroyed as one.
class LUMIVANE_EXPORT Faces : public Base::ElementList<Face> {
 public:
  Faces() = default;  ///< An empty list.

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
};

}  // namespace Lumivane::Geometry
