#pragma once

#include <lumivane/pictures/export.h>

#include <string>

namespace Lumivane::Pictures {

class VectorPicture;

/// Writes vector pictures as PDF, EPS and PNG, none of which needs a display. Equal pictures give
/// equal bytes: no file holds a date.
///
/// \throws std::runtime_error from each if there is not enough memory
class LUMIVANE_PICTURES_EXPORT CairoWriter {
 public:
  /// One page of the picture's size, at 96 pixels to the inch.
  static std::string pdf(const VectorPicture& picture);
  /// Encapsulated PostScript, language level 3. It knows no transparency: the axes get opaque
  /// colours, and where transparent regions overlap, that part is stored as an image.
  static std::string eps(const VectorPicture& picture);
  /// Smooth edges; white under everything if the picture has no background of its own.
  ///
  /// \param scale  pixels of the image for each of the picture, above 0
  /// \throws std::invalid_argument for a scale that makes a side below 1 or above
  ///         `VectorOptions::LargestSide` pixels
  static std::string png(const VectorPicture& picture, double scale = 1.0);
};

}  // namespace Lumivane::Pictures
