#pragma once

#include "measure/ContourRule.h"
#include "measure/Tile.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace Lumivane::Measure {

/// Sums by region; entry 0 is the open picture.
struct Totals {
  std::vector<double> areas;
  std::vector<Content> contents;
};

/// A region of each set, or the set's open picture, told by one number. Two open pictures are 0.
class RegionPairs {
 public:
  struct Pair {
    RegionNumber first = 0;
    RegionNumber second = 0;
  };

  RegionNumber numberOf(RegionNumber first, RegionNumber second);
  const std::vector<Pair>& all() const { return pairs; }  ///< By number.

 private:
  std::vector<Pair> pairs = {{0, 0}};
  std::unordered_map<std::uint64_t, RegionNumber> numbers = {{0, 0}};
  RegionNumber latest = 0;  // stretches of a slab repeat the pairs of the one before
};

/// Sweeps tiles by slabs and finds the seams, stretches of edges with one region visible on their
/// left and another on their right. What seams enclose is what is visible.
///
/// A slab reaches from one height at which an edge of the tile ends, or two cross, to the next:
/// within it edges keep their order from left to right. Between two edges the topmost region that
/// winds around the stretch is visible. Where rounding misplaces a crossing, edges are out of order
/// only as far as they are apart by rounding, and areas err by no more.
///
/// Of two sets of regions each stretch has the topmost region of either, and sums are by their
/// pairs.
class TileSweep {
 public:
  /// \param theLastOfFirst  the last number of a region of the first set; `OneSet` if there is one
  /// set
  TileSweep(const std::vector<SweepEdge>& theEdges, const ContourRule& theRule,
            RegionNumber theLastOfFirst = OneSet);

  /// Sweeps the tile from its bottom. Returns the height reached: the top, or the height from which
  /// on so many edges cross that it is better parted.
  double sweep(const Tile& tile);

  /// Sweeps a tile too small to matter, as if its edges kept their order of the middle height.
  void sweepAsOneSlab(const Tile& tile);

  /// After all tiles: adds what the seams enclose, but the contents only where there is room.
  void sumUp(Totals& totals) const;
  const RegionPairs& regionPairs() const { return pairs; }  ///< Of two sets, by their numbers.

 private:
  struct Local {
    RegionNumber region;
    int winding;
  };
  // A fragment that reaches through the slab, with its x at bottom and top.
  struct Active {
    const SweepEdge* edge;
    int fragment;
    int local;
    double x0, x1;
    bool isBefore(const Active& other) const {
      const double middle = x0 + x1;
      const double otherMiddle = other.x0 + other.x1;
      return middle != otherMiddle ? middle < otherMiddle : fragment < other.fragment;
    }
  };
  // What comes of an active fragment in the slab above: itself, or what its outline goes on with.
  struct Next {
    const SweepEdge* edge;
    int fragment;
    double x0, x1;
  };
  // The regions on the sides of an active fragment.
  struct Lane {
    RegionNumber left, right;
  };
  // A fragment by the height at which it starts.
  struct Start {
    double low;
    int fragment;
  };
  struct Seam {
    int edge = 0;
    RegionNumber left = NoRegion;
    RegionNumber right = NoRegion;
    double y0 = 0.0;
    double y1 = 0.0;
  };
  static constexpr RegionNumber NoRegion = -1;

  void enter(const Tile& tile);
  void findLocals(const Tile& tile);
  void findStarts(const Tile& tile);
  void findHeights(const Tile& tile);
  bool onlyGoesOn(const Tile& tile, double y0, double y1);
  bool findNexts(const Tile& tile, double y0, double y1);
  bool findNext(const Tile& tile, const Active& active, double y);
  void takeNext(size_t place, double y0);
  const SweepEdge* edgeOf(const Tile& tile, int fragment) const;
  void activate(const Tile& tile, double y0, double y1);
  Active activeAt(const Tile& tile, int fragment, double y) const;
  void reachUpTo(double y1);
  void goOn();
  bool inOrder() const;
  void findCrossings(double y0, double y1, size_t most);

  void sweepSlab(const Tile& tile, double y0, double y1);
  bool coversChange(const Tile& tile, double y) const;
  void setCovers(const Tile& tile, double y);
  void change(int local, int winding);
  // The place among the locals of the topmost region of a set, from the place of the set's first;
  // one less if there is none.
  int topFrom(int top, int firstPlace) const {
    while (top >= firstPlace && locals[static_cast<size_t>(top)].winding == 0) --top;
    return top;
  }
  RegionNumber topmost() {
    const RegionNumber first = topLocal < 0 ? base : locals[static_cast<size_t>(topLocal)].region;
    if (lastOfFirst == OneSet) return first;
    const bool isOpen = topSecond < secondPlace;
    return pairs.numberOf(first,
                          isOpen ? secondBase : locals[static_cast<size_t>(topSecond)].region);
  }

  void bound(const Active& active, RegionNumber left, RegionNumber right, double y);
  void closeSeam(Seam& seam, double y);
  void closeSeams(double y);
  std::vector<int> orderOfSeams() const;
  void addTo(Totals& totals, const Seam& seam) const;
  Content contentOf(const Seam& seam) const;

  const std::vector<SweepEdge>& edges;
  const ContourRule& rule;
  RegionNumber lastOfFirst;  // number of a region
  RegionPairs pairs;
  std::vector<Seam> closed;  // of all tiles

  RegionNumber base = 0;
  RegionNumber secondBase = 0;
  int topLocal = -1;
  int topSecond = -1;
  int secondPlace = 0;              // place among the locals of the second set's first
  std::vector<Local> locals;        // the tile's regions, ascending
  std::vector<int> fragmentLocals;  // by fragment
  std::vector<int> coverLocals;     // by cover
  std::vector<Seam> seams;          // by fragment; those with regions are open
  std::vector<Start> starting;      // fragments by their lower ends
  std::vector<Start> later;
  size_t started = 0;  // how many of those have been active
  std::vector<double> heights;
  std::vector<double> crossings;
  std::vector<Active> actives;  // from left to right at the middle of the slab
  std::vector<Active> swapped;
  std::vector<Next> nexts;  // by place among the actives
  std::vector<Lane> lanes;  // of the actives, once they are swept
};

}  // namespace Lumivane::Measure
