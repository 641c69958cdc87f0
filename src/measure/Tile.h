#pragma once

#include "measure/Outlines.h"

#include <limits>
#include <vector>

namespace Lumivane::Measure {

/// The part of an edge that lies in a tile, given by its heights.
struct Fragment {
  int edge = 0;  ///< its index among all edges
  RegionNumber region = 0;
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

/// Regions may be of two sets that lie over each other without hiding one another: those of numbers
/// up to a last one of the first set, and those after it. With this as the last number there is one
/// set.
constexpr RegionNumber OneSet = std::numeric_limits<RegionNumber>::max();

/// An upright rectangle of the picture with all that is needed to find what is visible in it.
///
/// Fragments stand region by region in ascending order, covers likewise. The heights of fragments
/// and covers of a region fit each other exactly, in every tile: parting a tile copies heights and
/// never computes one twice, so that no outline leaks whatever the rounding.
struct Tile {
  double left = 0.0;
  double right = 0.0;
  double bottom = 0.0;
  double top = 0.0;
  RegionNumber base = 0;        ///< the topmost region known to cover all of it
  RegionNumber secondBase = 0;  ///< the same of a second set of regions
  std::vector<Fragment> fragments;
  std::vector<Cover> covers;

  double width() const { return right - left; }
  double height() const { return top - bottom; }

  /// Finds the topmost region of each set that covers all of the tile, and drops what lies under it
  /// in its set.
  void dropHidden(RegionNumber lastOfFirst);

  /// Leaves the part above a height within.
  void cutBelow(double y);

 private:
  void dropHidden(RegionNumber after, RegionNumber upTo, RegionNumber& covering);
};

/// Parts tiles in two. What the parts held before is replaced, and their memory used again.
class TileParter {
 public:
  explicit TileParter(const std::vector<SweepEdge>& theEdges) : edges(theEdges) {}

  void atMiddleHeight(const Tile& tile, Tile& lower, Tile& upper) const;
  void across(const Tile& tile, Tile& leftHalf, Tile& rightHalf);

 private:
  // A change of winding at a height of the left side of a tile.
  struct Step {
    RegionNumber region;
    double y;
    int change;
  };

  void partAcross(const Fragment& fragment, double x, Tile& leftHalf, Tile& rightHalf);
  void addLeft(const Fragment& fragment, Tile& leftHalf);
  void addSteps(RegionNumber region, double low, double high, int winding);
  void addCoversUpTo(RegionNumber region, const std::vector<Cover>& covers);
  void coverBySteps(std::vector<Cover>& covers);

  const std::vector<SweepEdge>& edges;
  std::vector<Step> steps;  // region by region
  size_t nextCover = 0;     // the tile's first cover that is not among the steps yet
};

}  // namespace Lumivane::Measure
