#pragma once

#include <lumivane/visibility/PolygonScene.h>

#include <array>
#include <cstdint>

namespace Lumivane::Visibility {

/// An edge of the scene's polygons, which all polygons between its two ends share. A region that is
/// not flat counts as the triangles that it is taken as.
struct SceneEdge {
  /// A polygon at the edge.
  struct Side {
    int region = -1;               ///< position in `VisibleMap::Names::regions`; -1 for none
    Vector normal{0.0, 0.0, 0.0};  ///< unit vector; the seen side is the one it points away from
    bool runsForward = false;      ///< whether the outline runs from `from` to `to`
  };

  Vector from{0.0, 0.0, 0.0};  ///< as read
  Vector to{0.0, 0.0, 0.0};    ///< as read
  int polygonCount = 0;        ///< of polygons at the edge; 1 at the rim of an open surface
  std::array<Side, 2> sides;   ///< the first two of them
  bool inner = false;          ///< a docking edge of all its polygons, or inside a region
};

}  // namespace Lumivane::Visibility
