#pragma once

#include "pictures/ShotRegions.h"

#include <lumivane/pictures/VectorPicture.h>

#include <vector>

namespace Lumivane::Pictures {

/// Gathers the regions that follow each other as pieces of one face, and closes the seams between
/// them. The order of the regions stays.
std::vector<VectorPicture::Surface> surfacesOf(std::vector<DrawnRegion> regions);

}  // namespace Lumivane::Pictures
