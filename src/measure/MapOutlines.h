#pragma once

#include "kernel/Vec.h"

#include <lumivane/algorithm/ProjectionType.h>

#include <cstddef>
#include <vector>

namespace Lumivane::Visibility {
struct VisibleMap;
}

namespace Lumivane::Measure {

/// The cells of a map of a hemisphere, but those of the sky, as closed lines of straight pieces.
///
/// Cells lie where their directions land in a shot's picture: the one exception of the square
/// picture, that what is exactly above or below its middle lands on its left side, is left out. On
/// the upper and lower sides of the square, which are one direction each, lines run along the side.
struct MapOutlines {
  struct Ring {
    std::size_t cell = 0;
    std::vector<int> points;  ///< numbers from 1; the first is not repeated
  };

  std::vector<Kernel::Vec2> points;  ///< of the picture, each used by all rings that meet there
  std::vector<Ring> rings;           ///< by cell
};

/// \param tolerance  how far a piece may be off its arc, in units of the picture; each arc is cut
///                   into pieces once, whatever cells it bounds
MapOutlines mapOutlines(const Visibility::VisibleMap& map, Algorithm::ProjectionType projection,
                        double tolerance);

}  // namespace Lumivane::Measure
