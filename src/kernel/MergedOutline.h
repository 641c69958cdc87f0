#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace Lumivane::Kernel {

/// The outline of polygons that share edges, without the edges between them.
///
/// Each edge that two polygons walk in opposite directions falls out, so that a non-zero winding
/// fill of the result covers exactly what the polygons cover together, but in one piece: a renderer
/// that smooths edges has none to smooth inside.
///
/// \param polygons  point numbers, each polygon closed implicitly and all of one turning sense
/// \return closed loops of point numbers; where loops meet in a point, they may be joined there
inline std::vector<std::vector<int>> mergedOutline(const std::vector<std::vector<int>>& polygons) {
  std::map<std::pair<int, int>, int> edges;  // how often each directed edge is left
  for (const std::vector<int>& polygon : polygons) {
    for (std::size_t i = 0; i < polygon.size(); ++i) {
      const int from = polygon[i];
      const int to = polygon[(i + 1) % polygon.size()];
      if (from == to) continue;
      const auto opposite = edges.find({to, from});
      if (opposite == edges.end())
        ++edges[{from, to}];
      else if (--opposite->second == 0)
        edges.erase(opposite);
    }
  }

  // As many edges enter a point as leave it, so that a walk ends only where it began.
  std::vector<std::vector<int>> loops;
  while (!edges.empty()) {
    const int start = edges.begin()->first.first;
    std::vector<int> loop;
    for (int at = start; loop.empty() || at != start;) {
      loop.push_back(at);
      const auto edge = edges.lower_bound({at, 0});
      at = edge->first.second;
      if (--edge->second == 0) edges.erase(edge);
    }
    loops.push_back(std::move(loop));
  }
  return loops;
}

}  // namespace Lumivane::Kernel
