#pragma once

#include <lumivane/base/ElementList.h>
#include <lumivane/export.h>
#include <lumivane/shot/Object2d.h>

namespace Lumivane::Base {

extern template class ElementList<Shot::Object2d>;  // instantiated in src/shot/Objects2d.cpp

}  // namespace Lumivane::Base

namespace Lumivane::Shot {

/// The objects of a shot; an object number is a position here plus 1.
class LUMIVANE_EXPORT Objects2d : public Base::ElementList<Object2d> {
 public:
  Objects2d() = default;  ///< An empty list.

  /// The vector itself, still the list's.
  Vector* getObjects() { return items; }
  /// Takes over the vector and its elements; frees nothing.
  void setObjects(Vector* newItems) { items = newItems; }
  /// The element at a position from 0, still the list's. \throws std::out_of_range
  Object2d* getObject(int index) { return at(index); }
  /// Appends the element and owns it from now on; null and duplicates are stored as well.
  void addObject(Object2d* element) { append(element); }
  /// Inserts before `index`, the count appending, and owns the element. \throws std::out_of_range
  void insertObject(int index, Object2d* element) { insert(index, element); }
  /// Takes the element out; the caller owns it from now on. \throws std::out_of_range
  void removeObject(int index) { erase(index); }
  /// Takes every occurrence of the pointer out; the caller owns it from now on.
  void removeObject(Object2d* element) { erase(element); }
};

}  // namespace Lumivane::Shot
