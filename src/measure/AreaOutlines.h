#pragma once

#include "kernel/Vec.h"

#include <vector>

namespace Lumivane::Measure {

/// A straight piece of what bounds an area, which lies on its left.
struct BorderPiece {
  Kernel::Vec2 from;
  Kernel::Vec2 to;
};

/// A connected area.
struct OutlinedArea {
  double area = 0.0;
  /// The outer line counter-clockwise, then holes clockwise; first points are not repeated.
  std::vector<std::vector<Kernel::Vec2>> rings;
};

/// Joins all that bounds an area, in any order, to closed lines, and holes to what they are cut out
/// of. Pieces go on where others end at the very same height, and there at the same place but for
/// rounding: as many end as start at each height. Where rounding has it otherwise, the ends left
/// over are joined in the order of their heights, so that nothing is lost.
std::vector<OutlinedArea> outlinedAreas(const std::vector<BorderPiece>& pieces);

}  // namespace Lumivane::Measure
