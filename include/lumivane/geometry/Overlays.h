#pragma once

#include <lumivane/base/ElementList.h>
#include <lumivane/export.h>
#include <lumivane/geometry/Overlay.h>

namespace Lumivane::Base {

extern template class ElementList<Geometry::Overlay>;  // instantiated in src/geometry/Overlays.cpp

}  // namespace Lumivane::Base

namespace Lumivane::Geometry {

/// The overlays of a scene object.
class LUMIVANE_EXPORT Overlays : public Base::ElementList<Overlay> {
 public:
  Overlays() = default;  ///< An empty list.

  /// The vector itself, still the list's.
  Vector* getOverlays() { return items; }
  /// Takes over the vector and its elements; frees nothing.
  void setOverlays(Vector* newItems) { items = newItems; }
  /// The element at a position from 0, still the list's. \throws std::out_of_range
  Overlay* getOverlay(int index) { return at(index); }
  /// Appends the element and owns it from now on; null and duplicates are stored as well.
  void addOverlay(Overlay* element) { append(element); }
  /// Inserts before `index`, the count appending, and owns the element. \throws std::out_of_range
  void insertOverlay(int index, Overlay* element) { insert(index, element); }
  /// Takes the element out; the caller owns it from now on. \throws std::out_of_range
  void removeOverlay(int index) { erase(index); }
  /// Takes every occurrence of the pointer out; the caller owns it from now on.
  void removeOverlay(Overlay* element) { erase(element); }
};

}  // namespace Lumivane::Geometry
