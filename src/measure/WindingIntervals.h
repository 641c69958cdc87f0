#pragma once

#include "measure/Tile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace Lumivane::Measure {

/// A region of each set, or the set's open picture, given by one number. Two open pictures are 0.
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

/// Which region is visible between two edges of a slab: of those that wind around the interval the
/// topmost, the last one drawn. From left to right only windings change.
///
/// Of two sets of regions each interval has the topmost region of either, given by their pair.
class WindingIntervals {
 public:
  /// \param theLastOfFirst  the last number of a region of the first set; `OneSet` if there is one
  /// set
  explicit WindingIntervals(RegionNumber theLastOfFirst) : lastOfFirst(theLastOfFirst) {}

  void enter(const Tile& tile);
  /// A region's place for `cross`, by fragment.
  const std::vector<int>& placesOfFragments() const { return fragmentLocals; }

  bool coversChange(double y) const;
  /// Begins at the left end of the slab of a height.
  void begin(double y);
  /// Crosses an edge of a region.
  void cross(int place, int winding) {
    locals[static_cast<std::size_t>(place)].winding += winding;
    if (place < secondPlace)
      topLocal = topFrom(std::max(topLocal, place), 0);
    else
      topSecond = topFrom(std::max(topSecond, place), secondPlace);
  }
  RegionNumber topmost() {
    const RegionNumber first =
        topLocal < 0 ? tile->base : locals[static_cast<std::size_t>(topLocal)].region;
    if (lastOfFirst == OneSet) return first;
    const bool isOpen = topSecond < secondPlace;
    return pairs.numberOf(
        first, isOpen ? tile->secondBase : locals[static_cast<std::size_t>(topSecond)].region);
  }

  const RegionPairs& regionPairs() const { return pairs; }

 private:
  struct Local {
    RegionNumber region;
    int winding;
  };

  // The place among the locals of the topmost region of a set, from the place of the set's first;
  // one less if there is none.
  int topFrom(int top, int firstPlace) const {
    while (top >= firstPlace && locals[static_cast<std::size_t>(top)].winding == 0) --top;
    return top;
  }

  RegionNumber lastOfFirst;
  RegionPairs pairs;
  const Tile* tile = nullptr;
  int topLocal = -1;
  int topSecond = -1;
  int secondPlace = 0;              // place among the locals of the second set's first
  std::vector<Local> locals;        // the tile's regions, ascending
  std::vector<int> fragmentLocals;  // by fragment
  std::vector<int> coverLocals;     // by cover
};

}  // namespace Lumivane::Measure
