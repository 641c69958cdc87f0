#pragma once

#include <lumivane/visibility/VisibleMap.h>

#include <vector>

namespace Lumivane::Truth {

/// A cell of a map that is made by hand: its label and its rings, outer ring first.
struct HandMadeCell {
  Visibility::Label label;
  std::vector<std::vector<int>> rings;
};

/// A map of vertices, of any length, and rings; edges and measures follow from them.
Visibility::VisibleMap handMadeMap(Visibility::Field field,
                                   const std::vector<Visibility::Vector>& vertices,
                                   const std::vector<HandMadeCell>& cells);

/// A cube about the eye as the whole sphere sees it: six cells, of regions 1 to 6 of object 1, in
/// the order -z, z, -y, y, -x, x.
Visibility::VisibleMap cubeMap();

/// The hemisphere about x with a square window, of object 1, in the sky. The window's corners are
/// (2, +-1, +-1).
Visibility::VisibleMap windowMap();

}  // namespace Lumivane::Truth
