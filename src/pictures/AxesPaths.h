#pragma once

#include "pictures/PictureFrame.h"

#include <lumivane/pictures/VectorPicture.h>

#include <vector>

namespace Lumivane::Pictures {

/// The axes of a projection, in the order and the looks of the library's own drawing.
std::vector<VectorPicture::Path> radialAxes(const PictureFrame& frame);
std::vector<VectorPicture::Path> squareAxes(const PictureFrame& frame);

}  // namespace Lumivane::Pictures
