#pragma once

#include "measure/ContourRule.h"
#include "measure/Outlines.h"

#include <vector>

namespace Lumivane::Measure {

/// Sums by region; entry 0 is the open picture.
struct Totals {
  std::vector<double> areas;
  std::vector<Content> contents;
};

/// A stretch of an edge with one region visible on its left and another on its right.
struct Boundary {
  static constexpr RegionNumber None = -1;

  int edge = 0;
  RegionNumber left = None;
  RegionNumber right = None;
  double y0 = 0.0;
  double y1 = 0.0;

  bool exists() const { return left != None; }
};

/// The same as a line in the sweep's frame, from its lower to its upper end.
struct Stretch {
  int edge = 0;
  RegionNumber left = 0;
  RegionNumber right = 0;
  Kernel::Vec2 low;
  Kernel::Vec2 high;
};

/// Gathers the visible boundaries of all tiles and sums up what they enclose: by Green's theorem
/// each stretch adds to the region on its left and takes from that on its right. Stretches of an
/// edge that tiles have parted are joined first, so that sums do not depend on the tiles.
class BoundarySums {
 public:
  BoundarySums(const std::vector<SweepEdge>& theEdges, const ContourRule& theRule);

  void add(const Boundary& boundary) { boundaries.push_back(boundary); }
  /// Adds what is enclosed, but the contents only where there is room.
  void sumUp(Totals& totals) const;
  /// All boundaries, edge by edge and upwards along each.
  std::vector<Stretch> stretches() const;

 private:
  template <class Each>
  void forEachJoined(const Each& each) const;
  std::vector<int> inOrder() const;
  void addTo(Totals& totals, const Boundary& boundary) const;
  Content contentOf(const Boundary& boundary) const;

  const std::vector<SweepEdge>& edges;
  const ContourRule& rule;
  std::vector<Boundary> boundaries;
};

}  // namespace Lumivane::Measure
