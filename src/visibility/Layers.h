#pragma once

#include "visibility/IndexState.h"

namespace Lumivane::Visibility {

/// Finds out which polygons lie in one plane, and fills `layers`, `layerPlanes` and
/// `layersOfSeveral` of a state whose polygons are complete.
///
/// Two polygons are coplanar if all corners of each lie within `coplanar` times the larger one's
/// size of the other's plane. What coplanar polygons join, directly or through others, is a group.
/// Of a group the first in the scene's order makes a layer of all whose corners lie within 10
/// `coplanar` of their own size of its plane; so does the first of the rest, up to the last.
///
/// Layers do not depend on the order of the scene but for which polygon is the first of its group.
void findLayers(double coplanar, IndexState& state);

}  // namespace Lumivane::Visibility
