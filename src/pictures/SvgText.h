#pragma once

#include <lumivane/pictures/VectorPicture.h>

#include <string>

namespace Lumivane::Pictures {

/// Numbers of an SVG document: rounded to a count of decimals, no zeros at their end, a point
/// whatever the locale. Numbers too large to have decimals may have an exponent; what is not finite
/// stands as 0.
class SvgNumbers {
 public:
  explicit SvgNumbers(int decimalCount);
  /// For coordinates: a step is at most a millionth of the picture's half height.
  static SvgNumbers forHeight(int pictureHeight);

  std::string text(double value) const;
  /// Path data: "M1 2 3 4z".
  std::string data(const VectorPicture::Path& path) const;

 private:
  void append(std::string& target, double value) const;

  int decimals;
  double steps = 1.0;  // in a pixel
};

/// "#rgb" or "#rrggbb", without the opacity.
std::string svgColor(const VectorPicture::Color& color);

/// The bytes as text that an XML document may hold: UTF-8, without control characters. Each byte
/// that is none becomes U+FFFD.
std::string xmlText(const std::string& bytes);

/// The same as text between tags: with &, < and > as entities.
std::string htmlText(const std::string& bytes);

}  // namespace Lumivane::Pictures
