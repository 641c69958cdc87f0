#pragma once

#include "measure/Outlines.h"

#include <utility>
#include <vector>

namespace Lumivane::Measure {

/// The part of an edge that lies in a tile, told by its heights.
struct Fragment {
  int edge = 0;  ///< its index among all edges
  double low = 0.0;
  double high = 0.0;
};

/// How often a region's outline winds around the points just right of a tile's left side, between
/// two heights.
struct Cover {
  RegionNumber region = 0;
  double low = 0.0;
  double high = 0.0;
  int winding = 0;
};

/// An upright rectangle of the picture with all that is needed to tell what is visible in it.
///
/// Fragments stand region by region in ascending order, covers likewise. The heights of fragments
/// and covers of a region fit each other exactly, in every tile: parting a tile copies heights and
/// never computes one twice, so that no outline leaks whatever the rounding.
struct Tile {
  double left = 0.0;
  double right = 0.0;
  double bottom = 0.0;
  double top = 0.0;
  RegionNumber base = 0;  ///< the topmost region known to cover all of it
  std::vector<Fragment> fragments;
  std::vector<Cover> covers;

  double width() const { return right - left; }
  double height() const { return top - bottom; }

  /// Finds the topmost region that covers all of the tile, and drops what lies under it.
  void dropHidden(const std::vector<SweepEdge>& edges);

  /// The lower and the upper part, parted at a height within.
  std::pair<Tile, Tile> partedAtHeight(double y) const;

  /// The left and the right half.
  std::pair<Tile, Tile> partedAcross(const std::vector<SweepEdge>& edges) const;
};

}  // namespace Lumivane::Measure
