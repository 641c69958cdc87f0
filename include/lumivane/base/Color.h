#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

namespace Lumivane::Base {

/// A colour of four integer components, 0 to 255 each. A JSON array `[red, green, blue, alpha]`.
class LUMIVANE_EXPORT Color : public BaseLibClass {
 public:
  /// Opaque black.
  Color();
  /// Stores the components as they are, without any check.
  Color(int r, int g, int b, int a);

  /// The red component; only a constructor can make it leave 0 to 255, and so for the others.
  int getRed() const { return red; }
  /// The green component.
  int getGreen() const { return green; }
  /// The blue component.
  int getBlue() const { return blue; }
  /// The opacity: 0 is transparent, 255 opaque.
  int getAlpha() const { return alpha; }

  /// \throws std::out_of_range unless 0 <= value <= 255; the component then keeps its old value
  void setRed(int value);
  /// \throws std::out_of_range unless 0 <= value <= 255; the component then keeps its old value
  void setGreen(int value);
  /// \throws std::out_of_range unless 0 <= value <= 255; the component then keeps its old value
  void setBlue(int value);
  /// \throws std::out_of_range unless 0 <= value <= 255; the component then keeps its old value
  void setAlpha(int value);

  /// \return `[red, green, blue, alpha]`
  Jzon::Node serialize() override;

  /// Reads an array of exactly 4 elements; elements that are no numbers are passed over.
  ///
  /// \throws std::out_of_range as the setters do; the components before the bad one are kept
  BaseLibClass* deserialize(Jzon::Node node) override;

 protected:
  /// Reads the first four elements of an array node, as `deserialize` does.
  void readComponents(const Jzon::Node& node);

 private:
  int red = 0;
  int green = 0;
  int blue = 0;
  int alpha = 255;
};

}  // namespace Lumivane::Base
