#pragma once

#include "kernel/Vec.h"

#include <lumivane/exchange/VectorOptions.h>
#include <lumivane/exchange/VectorPicture.h>

namespace Lumivane::Exchange {

/// Where the plane of the shot lies in the picture.
class PlaneFrame {
 public:
  explicit PlaneFrame(const VectorOptions& options)
      : middle{options.width * 0.5, options.height * 0.5},
        pixelsPerUnit(options.height * 0.5 / options.extent) {}

  VectorPicture::Point at(Kernel::Vec2 place) const {
    return {middle.x + place.x * pixelsPerUnit, middle.y - place.y * pixelsPerUnit};
  }
  double length(double units) const { return units * pixelsPerUnit; }

 private:
  Kernel::Vec2 middle;
  double pixelsPerUnit;
};

}  // namespace Lumivane::Exchange
