#pragma once

#include "kernel/Vec.h"
#include "measure/SkyCells.h"

#include <cmath>
#include <vector>

namespace Lumivane::Measure {

/// A stretch of the border of the sky in sight, the sky on its left as the eye sees it.
struct SkyBorder {
  Kernel::Vec3 from;
  Kernel::Vec3 to;
};

inline std::vector<SkyBorder> skyBorders(const SkyCells& cells) {
  std::vector<SkyBorder> result;
  for (const Visibility::VisibleMap::Edge& edge : cells.map().edges) {
    const bool isLeft = cells.isSky(edge.left);
    if (isLeft == cells.isSky(edge.right)) continue;
    const Kernel::Vec3 from = cells.vertex(edge.from);
    const Kernel::Vec3 to = cells.vertex(edge.to);
    result.push_back(isLeft ? SkyBorder{from, to} : SkyBorder{to, from});
  }
  return result;
}

}  // namespace Lumivane::Measure
