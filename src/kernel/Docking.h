#pragma once

#include "kernel/PointGrid.h"
#include "kernel/SamePoint.h"
#include "kernel/Vec.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

/// Docking edges: edges that are not drawn, because they only join two pieces of one surface.
namespace Lumivane::Kernel {

/// A docking edge of a region, in space.
struct DockingSegment {
  Vec3 a;
  Vec3 b;
  double length;  ///< |a - b|, made once
};

inline DockingSegment dockingSegment(Vec3 a, Vec3 b) { return {a, b, length3(a - b)}; }

/// Whether an edge that starts at `point` is drawn: it is not where the point is the start of a
/// docking segment or lies within it. The end of a segment belongs to the edge that follows there.
inline bool isDrawnFrom(Vec3 point, const std::vector<DockingSegment>& segments, double precision) {
  for (const DockingSegment& segment : segments) {
    if (samePoint(point, segment.a, precision)) return false;
    if (samePoint(point, segment.b, precision)) continue;
    const double detour = length3(point - segment.b) + length3(point - segment.a) - segment.length;
    if (precision > std::abs(detour)) return false;
  }
  return true;
}

/// The edges of some closed polygons, to be asked which of them coincide with one edge.
///
/// How: an edge that coincides has an end near the start of the edge asked for, so that only the
/// edges at the points found there are looked at.
class EdgeGrid {
 public:
  EdgeGrid(const std::vector<std::vector<Vec2>>& closedPolygons, double agreement)
      : polygons(closedPolygons), precision(agreement), starts(agreement) {
    for (std::size_t j = 0; j < polygons.size(); ++j) {
      for (std::size_t b = 0; b < polygons[j].size(); ++b) {
        starts.add(polygons[j][b]);
        edges.push_back({j, b});
      }
    }
  }

  /// Calls `visit(polygon)` once for each edge with the ends `a` and `b`, in either order.
  template <class Visit>
  void forEachCoinciding(Vec2 a, Vec2 b, Visit visit) const {
    starts.forEachNear(a, [&](std::size_t position) {
      const auto [j, edge] = edges[position];
      const std::size_t before = edge == 0 ? polygons[j].size() - 1 : edge - 1;
      if (isAlong(a, b, j, edge)) visit(j);
      // The edge that ends here. One that lies both ways is counted at its start.
      if (isAlong(b, a, j, before) && !isAlong(a, b, j, before)) visit(j);
    });
  }

 private:
  struct Edge {
    std::size_t polygon;
    std::size_t number;
  };

  bool isAlong(Vec2 a, Vec2 b, std::size_t j, std::size_t edge) const {
    const std::vector<Vec2>& polygon = polygons[j];
    const Vec2 end = polygon[edge + 1 == polygon.size() ? 0 : edge + 1];
    return samePoint(a, polygon[edge], precision) && samePoint(b, end, precision);
  }

  const std::vector<std::vector<Vec2>>& polygons;
  double precision;
  PointGrid starts;
  std::vector<Edge> edges;  // by the positions of their starts
};

/// For each polygon the numbers, from 1, of its edges that coincide with an edge of another
/// polygon: in the order of the other polygons, and once for each such edge.
inline std::vector<std::vector<int>> dockingEdges(const std::vector<std::vector<Vec2>>& polygons,
                                                  double precision) {
  struct Match {
    std::size_t other;
    int edgeNumber;
  };
  const EdgeGrid grid(polygons, precision);
  std::vector<std::vector<int>> result(polygons.size());
  std::vector<Match> matches;
  for (std::size_t i = 0; i < polygons.size(); ++i) {
    const std::vector<Vec2>& polygon = polygons[i];
    matches.clear();
    for (std::size_t e = 0; e < polygon.size(); ++e) {
      const Vec2 end = polygon[e + 1 == polygon.size() ? 0 : e + 1];
      grid.forEachCoinciding(polygon[e], end, [&](std::size_t j) {
        if (j != i) matches.push_back({j, static_cast<int>(e) + 1});
      });
    }
    std::stable_sort(matches.begin(), matches.end(),
                     [](const Match& a, const Match& b) { return a.other < b.other; });
    for (const Match& match : matches) result[i].push_back(match.edgeNumber);
  }
  return result;
}

}  // namespace Lumivane::Kernel
