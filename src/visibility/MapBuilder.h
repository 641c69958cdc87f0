#pragma once

#include "visibility/IndexState.h"
#include "visibility/LookPolygons.h"
#include "visibility/MapParts.h"

#include <lumivane/visibility/VisibleMap.h>

#include <atomic>
#include <cstddef>

namespace Lumivane::Visibility {

/// How a map is made.
struct BuildOptions {
  size_t threads;                      ///< what is made does not depend on it
  const std::atomic<bool>* cancelled;  ///< may be null
  bool edgeSources = false;            ///< whether to say on which edges of the scene edges lie
};

/// Makes the map of the joined parts of all faces: joins pieces of one edge, closes rings, measures
/// cells. Fills all but the map's view and
/// names. \throws Cancelled
void buildMap(MapParts& parts, const LookSetup& setup, const BuildOptions& options,
              VisibleMap& map);

}  // namespace Lumivane::Visibility
