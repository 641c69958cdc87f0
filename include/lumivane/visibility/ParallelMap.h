#pragma once

#include <lumivane/visibility/PolygonScene.h>
#include <lumivane/visibility/VisibleMap.h>
#include <lumivane/visibility/export.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

namespace Lumivane::Visibility {

/// How a scene is looked at along parallel lines of sight.
struct ParallelOptions {
  Vector direction{0.0, 0.0, -1.0};  ///< of sight, of any length but zero
  /// Upwards in the picture. A vector along `direction`, or zero, is replaced by the axis of the
  /// scene that is farthest from `direction`, z first, then y.
  Vector up{0.0, 0.0, 1.0};
  bool twoSided = false;                         ///< whether polygons are seen from behind, too
  int threads = 1;                               ///< as `LookOptions::threads`
  const std::atomic<bool>* cancelled = nullptr;  ///< as `LookOptions::cancelled`
};

/// The exact partition of a plane across parallel lines of sight into what is seen: plans,
/// elevations, axonometries. Cells are bounded by straight lines. A plain value.
///
/// A point P of the scene lies at (right.P, up.P) in the plane, in scene units; `right`, `up` and
/// the opposite of `direction` are at right angles to each other, in this order right-handed.
struct LUMIVANE_VISIBILITY_EXPORT ParallelMap {
  /// A point of the plane: along `right`, along `up`.
  using Point = std::array<double, 2>;

  /// One connected part of the plane in which one region is seen, or nothing.
  struct Cell {
    Label label;                ///< 0, 0, 0 where nothing is seen
    double area = 0.0;          ///< in the plane; infinite for what lies around all
    std::size_t firstRing = 0;  ///< position in `ringOffsets`; the first ring is the outer one, but
                                ///< what lies around all has holes alone
    std::size_t ringCount = 0;  ///< outer ring and holes; 0 if nothing at all is seen
  };

  Vector direction{0.0, 0.0, -1.0};  ///< unit vector
  Vector right{1.0, 0.0, 0.0};       ///< unit vector
  Vector up{0.0, 1.0, 0.0};          ///< unit vector
  bool twoSided = false;             ///< whether polygons were seen from behind, too

  std::vector<Point> points;             ///< vertices
  std::vector<Cell> cells;               ///< by object, region, then by place; nothing last
  std::vector<std::size_t> ringOffsets;  ///< as `VisibleMap::ringOffsets`
  std::vector<int> ringVertices;         ///< as `VisibleMap::ringVertices`
  std::vector<VisibleMap::Edge> edges;   ///< every edge once
  std::vector<int> edgeSources;          ///< as `VisibleMap::edgeSources`
  std::shared_ptr<const VisibleMap::Names> names;  ///< never null for a map that `lookAlong` made
};

}  // namespace Lumivane::Visibility
