#pragma once

#include "truth/Pieces.h"

#include <cstddef>
#include <vector>

namespace Lumivane::Truth {

/// Numbers the layers of coplanar pieces. \return how many of them have two members or more
std::size_t findLayers(const Visibility::PolygonScene& scene, const Tolerances& tolerances,
                       std::vector<Piece>& pieces);

}  // namespace Lumivane::Truth
