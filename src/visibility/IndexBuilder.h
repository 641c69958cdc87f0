#pragma once

#include "visibility/IndexState.h"

#include <lumivane/visibility/PolygonScene.h>
#include <lumivane/visibility/SceneIndex.h>

namespace Lumivane::Visibility {

/// Fills an empty state with all that looks ask of a scene.
/// \pre `checkArrays` takes the scene. \throws std::invalid_argument for options below 0 or not
///      finite
void buildIndex(PolygonScene scene, const IndexOptions& options, IndexState& state);

}  // namespace Lumivane::Visibility
