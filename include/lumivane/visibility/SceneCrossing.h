#pragma once

#include <lumivane/visibility/PolygonScene.h>

#include <array>

namespace Lumivane::Visibility {

/// A part of the line in which two polygons of the scene run through each other. A region that is
/// not flat counts as the triangles that it is taken as.
struct SceneCrossing {
  Vector from{0.0, 0.0, 0.0};          ///< where it begins, to rounding
  Vector to{0.0, 0.0, 0.0};            ///< where it ends
  std::array<int, 2> regions{-1, -1};  ///< positions in `VisibleMap::Names::regions`, ascending
};

}  // namespace Lumivane::Visibility
