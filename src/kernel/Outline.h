#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace Lumivane::Kernel {

/// Positions in a closed polygon that follow each other along drawn edges.
using Chain = std::vector<std::size_t>;

/// Cuts a polygon's outline at the edges that are not drawn.
///
/// \param pointCount    points of the polygon; below 2 there is no outline
/// \param dockingEdges  numbers, from 1, of the edges left out; numbers of no edge change nothing
/// \return the chains in the order of the polygon, each of 2 positions or more. The walk starts and
///         ends at position 0, so that a polygon without docking edges is one chain that ends on
///         its first position; chains are not joined across it
inline std::vector<Chain> outlineChains(std::size_t pointCount,
                                        const std::vector<int>& dockingEdges) {
  std::vector<Chain> chains;
  if (pointCount < 2) return chains;

  std::vector<bool> isDocking(pointCount + 1, false);
  for (const int edge : dockingEdges) {
    if (edge < 1) continue;
    const auto position = static_cast<std::size_t>(edge) - 1;
    if (position <= pointCount) isDocking[position] = true;
  }

  Chain current;
  for (std::size_t i = 0; i <= pointCount; ++i) {
    current.push_back(i % pointCount);
    if (!isDocking[i] && i != pointCount) continue;
    if (current.size() >= 2) chains.push_back(std::move(current));
    current.clear();
  }
  return chains;
}

}  // namespace Lumivane::Kernel
