#pragma once

#include "pictures/PictureFrame.h"

#include <lumivane/base/ViewDisplayStyle.h>
#include <lumivane/pictures/VectorPicture.h>

#include <cstddef>
#include <vector>

namespace Lumivane::Pictures {

/// A region as it is drawn, with what says where it docks to others.
struct DrawnRegion {
  VectorPicture::Region region;
  std::vector<int> points;                ///< numbers, turning as the region does
  std::vector<std::size_t> dockingEdges;  ///< positions where edges that are left out start

  int edgeStart(std::size_t edge) const { return points[edge]; }
  int edgeEnd(std::size_t edge) const { return points[(edge + 1) % points.size()]; }
};

/// The regions of a shot in drawing order, without those of fewer than two points.
/// \throws std::runtime_error as VectorPicture says
std::vector<DrawnRegion> drawnRegions(Shot::Shot2d& shot, const PictureFrame& frame,
                                      Base::ViewDisplayStyle style);

}  // namespace Lumivane::Pictures
