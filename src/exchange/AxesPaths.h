#pragma once

#include "exchange/PlaneFrame.h"

#include <lumivane/exchange/VectorPicture.h>

#include <vector>

namespace Lumivane::Exchange {

/// The axes of a projection, in the order and the looks of the library's own drawing.
std::vector<VectorPicture::Path> radialAxes(const PlaneFrame& frame);
std::vector<VectorPicture::Path> squareAxes(const PlaneFrame& frame);

}  // namespace Lumivane::Exchange
