#pragma once

#include "exchange/PictureFrame.h"

#include <lumivane/exchange/VectorPicture.h>

#include <vector>

namespace Lumivane::Exchange {

/// The axes of a projection, in the order and the looks of the library's own drawing.
std::vector<VectorPicture::Path> radialAxes(const PictureFrame& frame);
std::vector<VectorPicture::Path> squareAxes(const PictureFrame& frame);

}  // namespace Lumivane::Exchange
