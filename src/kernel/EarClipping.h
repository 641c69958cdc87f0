#pragma once

#include "kernel/Vec.h"

#include <array>
#include <cstddef>
#include <vector>

namespace Lumivane::Kernel {

/// Three positions in an outline, in its order.
using CornerTriple = std::array<std::size_t, 3>;

/// Cuts a polygon into triangles by clipping ears (G. H. Meisters, Polygons Have Ears, 1975):
/// always the ear with the largest least angle, ties to the lowest position. Angles whose tangents
/// differ by less than 1e-9 tie, so that a turned outline is cut as before it was turned. Sides are
/// decided exactly.
///
/// Corners at one place and edges that touch, as where a hole is joined to the outline by an edge
/// walked twice, are taken as they are. An ear with another corner on the edge that cuts it off is
/// clipped only where there is no other.
///
/// Where there is no ear, the corner with the lowest position is cut off all the same: so it is
/// with what is left of outlines that cross themselves or run clockwise, and of corners on a line.
/// The triangles then overlap, run clockwise or have no area, but their vector areas still add up
/// to that of the outline.
///
/// \param outline  corners that run counter-clockwise, without repetition of the first
/// \return the triangles in the order of clipping: two fewer than corners, none for fewer than 3
std::vector<CornerTriple> clippedEars(const std::vector<Vec2>& outline);

}  // namespace Lumivane::Kernel
