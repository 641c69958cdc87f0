#pragma once

#include "measure/ContourRule.h"
#include "measure/Tile.h"

#include <vector>

namespace Lumivane::Measure {

/// Sums by region; entry 0 is the open picture.
struct Totals {
  std::vector<double> areas;
  std::vector<Content> contents;
};

/// Sweeps tiles by slabs and adds up what is visible in them.
///
/// A slab reaches from one height at which an edge of the tile ends, or two cross, to the next:
/// within it edges keep their order from left to right. Of each stretch between two edges the
/// topmost region that winds around it takes all. Where rounding misplaces a crossing, edges are
/// out of order only as far as they are apart by rounding, and areas err by no more.
class TileSweep {
 public:
  TileSweep(const std::vector<SweepEdge>& theEdges, const ContourRule& theRule, Totals& theTotals);

  /// Sweeps the tile from its bottom. Returns the height reached: the top, or the height from which
  /// on so many edges cross that it is better parted.
  double sweep(const Tile& tile);

  /// Sweeps a tile too small to matter, as if its edges kept their order of the middle height.
  void sweepAsOneSlab(const Tile& tile);

 private:
  struct Local {
    RegionNumber region;
    int winding;
  };
  struct Active {
    size_t fragment;
    double x0, x1;
    double middle() const { return x0 + x1; }
  };
  // A stretch of a fragment with one region on its left and another on its right.
  struct Seam {
    int edge = 0;
    RegionNumber left = -1;
    RegionNumber right = -1;
    double y0 = 0.0;
    double y1 = 0.0;
  };

  void enter(const Tile& tile);
  void gather(const Tile& tile, double y0, double y1);
  void placeActives(const Tile& tile, double y0, double y1);
  bool inOrder() const;
  void findCrossings(double y0, double y1, size_t most);
  void sweepSlab(const Tile& tile, double y0, double y1);
  void setCovers(const Tile& tile, double y);
  void change(size_t local, int winding);
  RegionNumber topmost() const {
    return topLocal < 0 ? base : locals[static_cast<size_t>(topLocal)].region;
  }
  void addArea(RegionNumber region, double twiceWidth, double height);
  void addSeam(size_t fragment, int edge, RegionNumber left, RegionNumber right, double y0,
               double y1);
  void close(size_t fragment);
  const Content& bulge(int edge);
  size_t localOf(RegionNumber region) const;

  const std::vector<SweepEdge>& edges;
  const ContourRule& rule;
  Totals& totals;
  std::vector<Content> bulges;     // of edges, as far as they are known
  std::vector<char> bulgeIsKnown;  // by edge

  RegionNumber base = 0;
  int topLocal = -1;
  std::vector<Local> locals;           // the tile's regions, ascending
  std::vector<size_t> fragmentLocals;  // by fragment
  std::vector<Seam> seams;             // by fragment
  std::vector<double> heights;
  std::vector<double> crossings;
  std::vector<Active> actives;  // from left to right at the middle of the slab
  std::vector<Active> swapped;
};

}  // namespace Lumivane::Measure
