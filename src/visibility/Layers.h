#pragma once

#include "visibility/IndexState.h"

namespace Lumivane::Visibility {

/// Fills `layers`, `layerPlanes` and `layersOfSeveral` of a state whose polygons are complete.
void findLayers(double coplanar, IndexState& state);

}  // namespace Lumivane::Visibility
