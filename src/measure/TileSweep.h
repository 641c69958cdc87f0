#pragma once

#include "measure/ActiveEdges.h"
#include "measure/BoundarySums.h"
#include "measure/ContourRule.h"
#include "measure/Tile.h"
#include "measure/WindingIntervals.h"

#include <vector>

namespace Lumivane::Measure {

/// Sweeps tiles by slabs and finds the visible boundaries, stretches of edges with one region
/// visible on their left and another on their right. What they enclose is what is visible.
///
/// A slab reaches from one height at which an edge of the tile ends, or two cross, to the next:
/// within it edges keep their order from left to right. Where rounding misplaces a crossing, edges
/// are out of order only as far as they are apart by rounding, and areas err by no more.
///
/// `ActiveEdges` knows which edges reach through a slab and in which order, `WindingIntervals`
/// which region is topmost between two of them, and `BoundarySums` what the boundaries come to.
class TileSweep {
 public:
  /// \param lastOfFirst  the last number of a region of the first set; `OneSet` if there is one set
  TileSweep(const std::vector<SweepEdge>& theEdges, const ContourRule& rule,
            RegionNumber lastOfFirst = OneSet);

  /// Sweeps the tile from its bottom. Returns the height reached: the top, or the height from which
  /// on so many edges cross that it is better parted.
  double sweep(const Tile& tile);

  /// Sweeps a tile too small to matter, as if its edges kept their order of the middle height.
  void sweepAsOneSlab(const Tile& tile);

  /// After all tiles: adds what the boundaries enclose, but the contents only where there is room.
  void sumUp(Totals& totals) const { sums.sumUp(totals); }
  /// After all tiles: the boundaries themselves.
  std::vector<Stretch> stretches() const { return sums.stretches(); }
  /// Of two sets, by their numbers.
  const RegionPairs& regionPairs() const { return intervals.regionPairs(); }

 private:
  // The regions on the sides of an active edge.
  struct Lane {
    RegionNumber left, right;
  };

  void enter(const Tile& tile);
  void findHeights(const Tile& tile);
  bool onlyGoesOn(double y0, double y1);
  void sweepSlab(double y0, double y1);
  void bound(const ActiveEdges::Active& active, Lane lane, double y);
  void close(int fragment, double y);
  void closeAll(double y);

  const std::vector<SweepEdge>& edges;
  WindingIntervals intervals;
  ActiveEdges active;
  BoundarySums sums;
  std::vector<Boundary> open;  // by fragment; those that exist are not closed yet
  std::vector<double> heights;
  std::vector<double> crossings;
  std::vector<Lane> lanes;  // of the active edges, once they are swept
};

}  // namespace Lumivane::Measure
