#pragma once

#include "kernel/Vec.h"

#include <lumivane/pictures/VectorOptions.h>
#include <lumivane/pictures/VectorPicture.h>

#include <algorithm>

namespace Lumivane::Pictures {

/// \throws std::invalid_argument for sides or an extent out of range
void checkPictureSize(int width, int height, double extent);

/// Where the plane of a projection lies in the picture.
class PictureFrame {
 public:
  /// That of a shot: the extent is half the height of the picture.
  explicit PictureFrame(const VectorOptions& options)
      : middle{options.width * 0.5, options.height * 0.5},
        pixelsPerUnit(options.height * 0.5 / options.extent) {}
  /// A box around the origin, enlarged by the extent, that just fits into the picture.
  PictureFrame(int width, int height, double extent, Kernel::Vec2 halfSize)
      : middle{width * 0.5, height * 0.5},
        pixelsPerUnit(std::min(middle.x / halfSize.x, middle.y / halfSize.y) / extent) {}

  VectorPicture::Point at(Kernel::Vec2 place) const {
    return {middle.x + place.x * pixelsPerUnit, middle.y - place.y * pixelsPerUnit};
  }
  double length(double units) const { return units * pixelsPerUnit; }

 private:
  Kernel::Vec2 middle;
  double pixelsPerUnit;
};

}  // namespace Lumivane::Pictures
