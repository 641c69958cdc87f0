#pragma once

#include <cstddef>
#include <vector>

namespace Lumivane::Algorithm {

/// What a depth sort leaves besides the shot.
struct SortFacts {
  /// A face by the numbers that its regions in the shot have.
  struct Face {
    int object;
    int face;
  };

  /// How many faces there were to be brought into an order: those with a polygon in the picture,
  /// the hidden ones among them.
  std::size_t faceCount = 0;
  /// Those that overlap in cycles or lie between two cycles, in the order of the scene.
  std::vector<Face> cycle;
};

/// The facts of the last depth sort of the calling thread. Whoever wants to know those of a shot
/// empties them before it, since not every shot is sorted.
SortFacts& sortFacts();

}  // namespace Lumivane::Algorithm
