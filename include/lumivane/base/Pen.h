#pragma once

#include <lumivane/base/Color.h>
#include <lumivane/export.h>

namespace Lumivane::Base {

/// A line colour with a line width. A JSON array `[red, green, blue, alpha, width]`.
class LUMIVANE_EXPORT Pen : public Color {
 public:
  /// Opaque black, of width 1.
  Pen();
  /// Stores what it is given as it is, without any check; even a negative width.
  Pen(int r, int g, int b, int a, double width);

  /// The line width; 1 unless set.
  double getWidth() const { return width; }

  /// Not a number passes the check and is stored.
  ///
  /// \throws std::runtime_error "pen width < 0" for a value below 0; the width then stays
  void setWidth(double value);

  /// \return `[red, green, blue, alpha, width]`
  Jzon::Node serialize() override;

  /// Reads an array of exactly 5 elements; elements that are no numbers are passed over.
  ///
  /// \throws std::out_of_range, std::runtime_error as the setters do; what stands before the bad
  /// element is kept
  BaseLibClass* deserialize(Jzon::Node node) override;

 private:
  double width = 1.0;
};

}  // namespace Lumivane::Base
