#pragma once

#include "kernel/Vec.h"

#include <lumivane/pictures/DrawingOptions.h>
#include <lumivane/visibility/SceneIndex.h>

#include <cstddef>
#include <memory>
#include <vector>

/// From maps to lines, before any projection. Places are directions in the axes of the picture: x
/// to the right, y upwards, z forward; along parallel lines of sight they are (x, y, 1), in scene
/// units. In both a straight edge of the scene is the arc between the directions of its ends.
namespace Lumivane::Pictures {

/// A map of either kind, in the axes of the picture.
struct FlatMap {
  struct Cell {
    Visibility::Label label;
    std::size_t firstRing = 0;
    std::size_t ringCount = 0;
  };
  bool isParallel = false;
  bool isHemisphere = false;
  Kernel::Vec3 eye;    ///< not of parallel ones
  Kernel::Vec3 right;  ///< axes of the picture, in the scene
  Kernel::Vec3 up;
  Kernel::Vec3 forward;
  std::vector<Kernel::Vec3> places;  ///< vertices
  std::vector<Cell> cells;
  std::vector<std::size_t> ringOffsets;
  std::vector<int> ringVertices;
  std::vector<Visibility::VisibleMap::Edge> edges;
  std::vector<int> edgeSources;
  std::shared_ptr<const Visibility::VisibleMap::Names> names;

  Kernel::Vec3 placeOf(const Visibility::Vector& point) const;
  const Kernel::Vec3& at(int vertex) const { return places[static_cast<std::size_t>(vertex)]; }
};

FlatMap flatMap(const Visibility::VisibleMap& map);
FlatMap flatMap(const Visibility::ParallelMap& map);

/// An arc that is drawn.
struct DrawnLine {
  Kernel::Vec3 from;
  Kernel::Vec3 to;
  LineKind kind = LineKind::Outline;
  int cell = -1;       ///< that it belongs to, of the map; -1 for hidden ones
  int otherCell = -1;  ///< on its other side, or -1
  int region = -1;     ///< of hidden ones: position in the names' regions
};

/// What the regions of a scene are like where they meet.
class RegionPlanes {
 public:
  RegionPlanes(const std::vector<Visibility::SceneEdge>& edges, std::size_t regionCount);
  /// The plane of a region; null without one, or with several.
  struct Plane {
    Kernel::Vec3 normal;
    Kernel::Vec3 point;
    bool known = false;
    bool bent = false;  ///< the region is not flat: one of its planes
  };
  const Plane& operator[](int region) const { return planes[static_cast<std::size_t>(region)]; }

 private:
  std::vector<Plane> planes;
};

/// The position of a label in the names' regions; -1 for none.
int regionOf(const Visibility::VisibleMap::Names& names, const Visibility::Label& label);

/// The lines of a map, each once, with their kinds.
std::vector<DrawnLine> visibleLines(const FlatMap& map,
                                    const std::vector<Visibility::SceneEdge>& edges,
                                    const RegionPlanes& planes, double creaseAngle);

/// The parts of the scene's edges, and of the lines in which its regions run through each other,
/// that are not seen: each without the parts that are edges of the map, and without what coincides
/// in the picture with another line. Edges within a surface are left out, unless it turns away from
/// the eye there.
std::vector<DrawnLine> hiddenLines(const FlatMap& map,
                                   const std::vector<Visibility::SceneEdge>& edges,
                                   const std::vector<Visibility::SceneCrossing>& crossings,
                                   const std::vector<DrawnLine>& visible, double creaseAngle);

}  // namespace Lumivane::Pictures
