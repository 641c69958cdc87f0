#pragma once

#include <lumivane/base/ElementList.h>
#include <lumivane/export.h>
#include <lumivane/geometry/Region.h>

namespace Lumivane::Base {

extern template class ElementList<Geometry::Region>;  // instantiated in src/geometry/Regions.cpp

}  // namespace Lumivane::Base

namespace Lumivane::Geometry {

/// The polygons of a scene object; a region number is a position here plus 1.
class LUMIVANE_EXPORT Regions : public Base::ElementList<Region> {
 public:
  Regions() = default;  ///< An empty list.

  /// The vector itself, still the list's.
  Vector* getRegions() { return items; }
  /// Takes over the vector and its elements; frees nothing.
  void setRegions(Vector* newItems) { items = newItems; }
  /// The element at a position from 0, still the list's. \throws std::out_of_range
  Region* getRegion(int index) { return at(index); }
  /// Appends the element and owns it from now on; null and duplicates are stored as well.
  void addRegion(Region* element) { append(element); }
  /// Inserts before `index`, the count appending, and owns the element. \throws std::out_of_range
  void insertRegion(int index, Region* element) { insert(index, element); }
  /// Takes the element out; the caller owns it from now on. \throws std::out_of_range
  void removeRegion(int index) { erase(index); }
  /// Takes every occurrence of the pointer out; the caller owns it from now on.
  void removeRegion(Region* element) { erase(element); }
};

}  // namespace Lumivane::Geometry
