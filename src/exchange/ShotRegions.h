#pragma once

#include "exchange/PlaneFrame.h"

#include <lumivane/base/ViewDisplayStyle.h>
#include <lumivane/exchange/VectorPicture.h>

#include <vector>

namespace Lumivane::Exchange {

/// A region as it is drawn, with what tells whether it docks to others.
struct DrawnRegion {
  VectorPicture::Region region;
  std::vector<int> points;  ///< numbers, turning as the region does
  bool docks = false;       ///< whether any of its edges is left out
};

/// The regions of a shot in drawing order, without those of fewer than two points.
/// \throws std::runtime_error as VectorPicture says
std::vector<DrawnRegion> drawnRegions(Shot::Shot2d& shot, const PlaneFrame& frame,
                                      Base::ViewDisplayStyle style);

}  // namespace Lumivane::Exchange
