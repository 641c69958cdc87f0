#pragma once

#include <lumivane/base/ElementList.h>
#include <lumivane/export.h>
#include <lumivane/geometry/Region2d.h>

namespace Lumivane::Base {

extern template class ElementList<Geometry::Region2d>;  // instantiated in
                                                        // src/geometry/Regions2dInDrawingOrder.cpp
}  // namespace Lumivane::Base

namespace Lumivane::Geometry {

/// All polygons of a shot, the first drawn first; a region number is a position here plus 1.
class LUMIVANE_EXPORT Regions2dInDrawingOrder : public Base::ElementList<Region2d> {
 public:
  Regions2dInDrawingOrder() = default;  ///< An empty list.

  /// The vector itself, still the list's.
  Vector* getRegions() { return items; }
  /// Takes over the vector and its elements; frees nothing.
  void setRegions(Vector* newItems) { items = newItems; }
  /// The element at a position from 0, still the list's. \throws std::out_of_range
  Region2d* getRegion(int index) { return at(index); }
  /// Appends the element and owns it from now on; null and duplicates are stored as well.
  void addRegion(Region2d* element) { append(element); }
  /// Inserts before `index`, the count appending, and owns the element. \throws std::out_of_range
  void insertRegion(int index, Region2d* element) { insert(index, element); }
  /// Takes the element out; the caller owns it from now on. \throws std::out_of_range
  void removeRegion(int index) { erase(index); }
  /// Takes every occurrence of the pointer out; the caller owns it from now on.
  void removeRegion(Region2d* element) { erase(element); }
};

}  // namespace Lumivane::Geometry
