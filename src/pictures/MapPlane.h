#pragma once

#include "kernel/ArcFlattening.h"
#include "kernel/Projection.h"

#include <lumivane/visibility/VisibleMap.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace Lumivane::Pictures {

using Kernel::ArcFlattening;
using Kernel::Places;

/// A map in the plane of a projection. Each edge is flattened once, whichever cell asks, so that
/// the cells on its two sides have the same points.
class MapPlane {
 public:
  /// \param tolerance  how far a chord may be off its arc, in units of the plane
  static std::unique_ptr<MapPlane> make(const Visibility::VisibleMap& map,
                                        const Kernel::Projection& rule, double tolerance);
  virtual ~MapPlane() = default;
  MapPlane(const MapPlane&) = delete;
  MapPlane& operator=(const MapPlane&) = delete;

  /// Closed lines, the cell on the left of each; none if nothing of it is in the picture.
  virtual std::vector<Places> outline(std::size_t cell) = 0;
  /// Open lines, between two vertices of an edge.
  virtual std::vector<Places> arc(int from, int to) = 0;

 protected:
  MapPlane() = default;
};

/// The directions of a map's vertices in the axes of the eye: x right, y up, z forward. Those of a
/// hemisphere have no z below 0, and one near 0 is 0.
std::vector<Kernel::Vec3> eyeDirections(const Visibility::VisibleMap& map);

std::unique_ptr<MapPlane> makeDiscPlane(const Visibility::VisibleMap& map,
                                        const Kernel::Projection& rule, double tolerance);
std::unique_ptr<MapPlane> makeBandPlane(const Visibility::VisibleMap& map,
                                        const Kernel::Projection& rule, double tolerance);

}  // namespace Lumivane::Pictures
