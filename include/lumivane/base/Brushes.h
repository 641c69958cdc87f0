#pragma once

#include <lumivane/base/Brush.h>
#include <lumivane/base/ElementList.h>
#include <lumivane/export.h>

namespace Lumivane::Base {

extern template class ElementList<Brush>;

/// The brushes of a scene or shot; a brush number is a position here plus 1.
class LUMIVANE_EXPORT Brushes : public ElementList<Brush> {
 public:
  /// An empty list with a vector of its own.
  Brushes() = default;

  /// The list's own vector, not a copy; null after the setter took null.
  Vector* getBrushes() { return items; }
  /// Takes the vector over; the old one is not freed.
  void setBrushes(Vector* brushes) { items = brushes; }
  /// The element at a position from 0, which the list still owns.
  /// \throws std::out_of_range unless 0 <= index < count
  Brush* getBrush(int index) { return at(index); }
  /// Takes the brush over; null and duplicates are stored as well.
  void addBrush(Brush* brush) { append(brush); }
  /// Takes the brush over and inserts it before `index`; the count itself appends.
  /// \throws std::out_of_range unless 0 <= index <= count
  void insertBrush(int index, Brush* brush) { insert(index, brush); }
  /// Takes the brush out; the caller owns it from now on.
  /// \throws std::out_of_range unless 0 <= index < count
  void removeBrush(int index) { erase(index); }
  /// Takes every occurrence out; the caller owns the brush from now on.
  void removeBrush(Brush* brush) { erase(brush); }
};

}  // namespace Lumivane::Base
