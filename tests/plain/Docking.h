#pragma once

#include "kernel/SamePoint.h"
#include "kernel/Vec.h"

#include <cstddef>
#include <vector>

/// Docking edges as documented: every edge of every polygon against every other.
namespace Lumivane::Plain {

using Kernel::samePoint;
using Kernel::Vec2;

/// How many edges of a closed polygon have the ends `a` and `b`, in either order.
inline std::size_t coincidingEdgeCount(Vec2 a, Vec2 b, const std::vector<Vec2>& polygon,
                                       double precision) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const Vec2 start = polygon[i];
    const Vec2 end = polygon[i + 1 == polygon.size() ? 0 : i + 1];
    const bool sameDirection = samePoint(a, start, precision) && samePoint(b, end, precision);
    if (sameDirection || (samePoint(a, end, precision) && samePoint(b, start, precision))) ++count;
  }
  return count;
}

/// For each polygon the numbers, from 1, of its edges that coincide with an edge of another
/// polygon: in the order of the other polygons, and once for each such edge.
inline std::vector<std::vector<int>> dockingEdges(const std::vector<std::vector<Vec2>>& polygons,
                                                  double precision) {
  std::vector<std::vector<int>> result(polygons.size());
  for (std::size_t i = 0; i < polygons.size(); ++i) {
    const std::vector<Vec2>& polygon = polygons[i];
    for (std::size_t j = 0; j < polygons.size(); ++j) {
      if (j == i) continue;
      for (std::size_t e = 0; e < polygon.size(); ++e) {
        const Vec2 end = polygon[e + 1 == polygon.size() ? 0 : e + 1];
        const std::size_t count = coincidingEdgeCount(polygon[e], end, polygons[j], precision);
        result[i].insert(result[i].end(), count, static_cast<int>(e) + 1);
      }
    }
  }
  return result;
}

}  // namespace Lumivane::Plain
