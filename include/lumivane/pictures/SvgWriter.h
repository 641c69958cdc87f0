#pragma once

#include <lumivane/pictures/export.h>

#include <string>

namespace Lumivane::Pictures {

class VectorPicture;

/// Writes vector pictures as SVG 1.1 text. See docs/vector-pictures.md for what stands in it.
class LUMIVANE_PICTURES_EXPORT SvgWriter {
 public:
  /// What the text holds besides the picture.
  struct Options {
    /// Whether each region has a `<title>`, which browsers show at the pointer.
    bool titles = true;
    /// Whether it starts with an XML declaration; not inside another document.
    bool declaration = true;
    /// What the ids of the elements start with, where several pictures stand in one document.
    std::string idPrefix;
    /// Decimals of the coordinates, 0 to 6; -1 for as many as make a step of at most a millionth
    /// of the half height.
    int decimals = -1;
  };

  /// The document. Equal pictures give equal bytes, whatever the locale. Ids of objects may hold
  /// any bytes: what is no text is written as U+FFFD.
  /// \throws std::invalid_argument for a count of decimals out of range
  static std::string write(const VectorPicture& picture, const Options& options);
  static std::string write(const VectorPicture& picture);  ///< With the default options.
};

}  // namespace Lumivane::Pictures
