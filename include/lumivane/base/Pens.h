#pragma once

#include <lumivane/base/ElementList.h>
#include <lumivane/base/Pen.h>
#include <lumivane/export.h>

namespace Lumivane::Base {

extern template class ElementList<Pen>;

/// The pens of a scene or shot; a pen number is a position here plus 1.
class LUMIVANE_EXPORT Pens : public ElementList<Pen> {
 public:
  /// An empty list with a vector of its own.
  Pens() = default;

  /// The list's own vector, not a copy; null after the setter took null.
  Vector* getPens() { return items; }
  /// Takes the vector over; the old one is not freed.
  void setPens(Vector* pens) { items = pens; }
  /// The element at a position from 0, which the list still owns.
  /// \throws std::out_of_range unless 0 <= index < count
  Pen* getPen(int index) { return at(index); }
  /// Takes the pen over; null and duplicates are stored as well.
  void addPen(Pen* pen) { append(pen); }
  /// Takes the pen over and inserts it before `index`; the count itself appends.
  /// \throws std::out_of_range unless 0 <= index <= count
  void insertPen(int index, Pen* pen) { insert(index, pen); }
  /// Takes the pen out; the caller owns it from now on.
  /// \throws std::out_of_range unless 0 <= index < count
  void removePen(int index) { erase(index); }
  /// Takes every occurrence out; the caller owns the pen from now on.
  void removePen(Pen* pen) { erase(pen); }
};

}  // namespace Lumivane::Base
