#pragma once

#include "kernel/Order.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Lumivane::Kernel {

/// The nodes on cycles, and those on paths from one cycle to another, ascending. The edges are
/// those that a topological order leaves: every start of one has another one leading to it.
///
/// What is left then and lies on no cycle comes after all of them, and is taken away from the ends.
inline std::vector<std::uint32_t> nodesOfCycles(std::size_t nodeCount,
                                                const std::vector<Arrow>& remaining) {
  std::vector<std::size_t> outgoing(nodeCount, 0);
  std::vector<char> isInvolved(nodeCount, 0);
  std::vector<Arrow> reversed;
  reversed.reserve(remaining.size());
  for (const Arrow& arrow : remaining) {
    ++outgoing[arrow.first];
    isInvolved[arrow.first] = 1;
    isInvolved[arrow.second] = 1;
    reversed.emplace_back(arrow.second, arrow.first);
  }
  const EndsByStart startsOf(nodeCount, reversed);
  std::vector<std::uint32_t> ends;
  for (std::uint32_t node = 0; node < nodeCount; ++node)
    if (isInvolved[node] != 0 && outgoing[node] == 0) ends.push_back(node);
  while (!ends.empty()) {
    const std::uint32_t end = ends.back();
    ends.pop_back();
    isInvolved[end] = 0;
    for (std::size_t k = startsOf.firstOf[end]; k < startsOf.firstOf[end + 1]; ++k)
      if (--outgoing[startsOf.ends[k]] == 0) ends.push_back(startsOf.ends[k]);
  }
  std::vector<std::uint32_t> nodes;
  for (std::uint32_t node = 0; node < nodeCount; ++node)
    if (isInvolved[node] != 0) nodes.push_back(node);
  return nodes;
}

}  // namespace Lumivane::Kernel
