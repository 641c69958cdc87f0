#pragma once

#include <lumivane/base/ElementList.h>
#include <lumivane/base/Scale.h>
#include <lumivane/export.h>

namespace Lumivane::Base {

extern template class ElementList<Scale>;

/// The scales of a scene; a scale number is a position here plus 1.
class LUMIVANE_EXPORT Scales : public ElementList<Scale> {
 public:
  /// An empty list with a vector of its own.
  Scales() = default;

  /// The list's own vector, not a copy; null after the setter took null.
  Vector* getScales() { return items; }
  /// Takes the vector over; the old one is not freed.
  void setScales(Vector* scales) { items = scales; }
  /// The element at a position from 0, which the list still owns.
  /// \throws std::out_of_range unless 0 <= index < count
  Scale* getScale(int index) { return at(index); }
  /// Takes the scale over; null and duplicates are stored as well.
  void addScale(Scale* scale) { append(scale); }
  /// Takes the scale over and inserts it before `index`; the count itself appends.
  /// \throws std::out_of_range unless 0 <= index <= count
  void insertScale(int index, Scale* scale) { insert(index, scale); }
  /// Takes the scale out; the caller owns it from now on.
  /// \throws std::out_of_range unless 0 <= index < count
  void removeScale(int index) { erase(index); }
  /// Takes every occurrence out; the caller owns the scale from now on.
  void removeScale(Scale* scale) { erase(scale); }
};

}  // namespace Lumivane::Base
