#pragma once

#include "visibility/IndexState.h"
#include "visibility/LookPolygons.h"
#include "visibility/MapParts.h"

#include <lumivane/visibility/VisibleMap.h>

namespace Lumivane::Visibility {

/// Makes the map of the joined parts of all faces: joins pieces of one edge, closes rings, measures
/// cells. Fills all but the map's view and
/// names. The map does not depend on the number of threads.
void buildMap(MapParts& parts, const LookSetup& setup, size_t threads, VisibleMap& map);

}  // namespace Lumivane::Visibility
