#pragma once

#include "kernel/Bounds.h"
#include "kernel/PointGrid.h"
#include "kernel/SamePoint.h"
#include "kernel/Vec.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
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

/// A closed polygon of the picture, seen in place.
struct ClosedOutline {
  const Vec2* points = nullptr;
  std::size_t count = 0;

  std::size_t after(std::size_t edge) const { return edge + 1 == count ? 0 : edge + 1; }
  Vec2 start(std::size_t edge) const { return points[edge]; }
  Vec2 end(std::size_t edge) const { return points[after(edge)]; }
};

inline ClosedOutline closedOutline(const std::vector<Vec2>& points) {
  return {points.data(), points.size()};
}

/// For each polygon the numbers, from 1, of its edges that coincide with an edge of another
/// polygon: in the order of the other polygons, and once for each such edge.
using DockingNumbers = std::vector<std::vector<int>>;

/// Whether an edge has the ends `a` and `b`, in either order.
inline bool coincides(const ClosedOutline& polygon, std::size_t edge, Vec2 a, Vec2 b,
                      double precision) {
  const Vec2 start = polygon.start(edge);
  const Vec2 end = polygon.end(edge);
  return (samePoint(a, start, precision) && samePoint(b, end, precision)) ||
         (samePoint(a, end, precision) && samePoint(b, start, precision));
}

/// Boxes around runs of successive edges of a closed polygon, around two such runs, around four,
/// and so on: four bytes for each edge. What lies in two polygons is found by going down into
/// boxes that come near each other, so that outlines that only share a side cost little elsewhere.
class EdgeBoxes {
 public:
  static constexpr std::size_t Run = 16;  ///< edges of the smallest boxes

  explicit EdgeBoxes(const ClosedOutline& outline) : polygon(outline) {
    std::vector<Box> level;
    level.reserve((polygon.count + Run - 1) / Run);
    for (std::size_t first = 0; first < polygon.count; first += Run)
      level.push_back(around(first, std::min(first + Run, polygon.count)));
    while (!level.empty()) {
      levels.push_back(std::move(level));
      level = levels.back().size() > 1 ? pairsOf(levels.back()) : std::vector<Box>();
    }
  }

  /// Calls `visit(e, f)` for each edge e of `a` and edge f of `b` that coincide, in any order.
  template <class Visit>
  static void forEachCoinciding(const EdgeBoxes& a, const EdgeBoxes& b, double precision,
                                Visit visit) {
    if (a.levels.empty() || b.levels.empty()) return;
    descend({a, a.levels.size() - 1, 0}, {b, b.levels.size() - 1, 0}, precision, visit);
  }

 private:
  // A box of a polygon, by level and place.
  struct Node {
    const EdgeBoxes& of;
    std::size_t level;
    std::size_t place;

    const Box& box() const { return of.levels[level][place]; }
    std::size_t firstEdge() const { return place * Run; }  // of a smallest box
    std::size_t lastEdge() const { return std::min((place + 1) * Run, of.polygon.count); }
    bool hasChild(std::size_t k) const { return 2 * place + k < of.levels[level - 1].size(); }
    Node child(std::size_t k) const { return {of, level - 1, 2 * place + k}; }
  };

  // Points of the one differ from those of the other by the tolerance at least, as computed:
  // rounding never swaps two differences.
  static bool areApart(const Box& a, const Box& b, double precision) {
    return (a.xMin - b.xMax >= precision) | (b.xMin - a.xMax >= precision) |
           (a.yMin - b.yMax >= precision) | (b.yMin - a.yMax >= precision);
  }

  template <class Visit>
  static void descend(const Node& a, const Node& b, double precision, Visit& visit) {
    if (areApart(a.box(), b.box(), precision)) return;
    if (a.level == 0 && b.level == 0) {
      compare(a, b, precision, visit);
    } else if (a.level >= b.level) {
      for (std::size_t k = 0; k < 2; ++k)
        if (a.hasChild(k)) descend(a.child(k), b, precision, visit);
    } else {
      for (std::size_t k = 0; k < 2; ++k)
        if (b.hasChild(k)) descend(a, b.child(k), precision, visit);
    }
  }

  template <class Visit>
  static void compare(const Node& a, const Node& b, double precision, Visit& visit) {
    const ClosedOutline& first = a.of.polygon;
    const ClosedOutline& second = b.of.polygon;
    for (std::size_t e = a.firstEdge(); e < a.lastEdge(); ++e) {
      const Vec2 start = first.start(e);
      if (areApart(Box{start.x, start.x, start.y, start.y}, b.box(), precision)) continue;
      const Vec2 end = first.end(e);
      for (std::size_t f = b.firstEdge(); f < b.lastEdge(); ++f)
        if (coincides(second, f, start, end, precision)) visit(e, f);
    }
  }

  // Around both ends of some edges. What is no number coincides with nothing and is left out.
  Box around(std::size_t first, std::size_t last) const {
    Box box;
    for (std::size_t edge = first; edge < last; ++edge) take(box, polygon.start(edge));
    take(box, polygon.end(last - 1));
    return box;
  }

  static std::vector<Box> pairsOf(const std::vector<Box>& boxes) {
    std::vector<Box> pairs;
    pairs.reserve((boxes.size() + 1) / 2);
    for (std::size_t i = 0; i < boxes.size(); i += 2) {
      pairs.push_back(boxes[i]);
      if (i + 1 < boxes.size()) take(pairs.back(), boxes[i + 1]);
    }
    return pairs;
  }

  ClosedOutline polygon;
  std::vector<std::vector<Box>> levels;  // from the smallest boxes to the one around all
};

/// Every pair of polygons by their boxes: for few polygons of any number of edges.
inline DockingNumbers dockingEdgesOfPairs(const std::vector<ClosedOutline>& polygons,
                                          double precision) {
  std::vector<EdgeBoxes> boxes;
  boxes.reserve(polygons.size());
  for (const ClosedOutline& polygon : polygons) boxes.emplace_back(polygon);
  DockingNumbers result(polygons.size());
  const auto sortFrom = [](std::vector<int>& numbers, std::size_t first) {
    std::sort(numbers.begin() + static_cast<std::ptrdiff_t>(first), numbers.end());
  };
  for (std::size_t i = 0; i < polygons.size(); ++i) {
    for (std::size_t j = i + 1; j < polygons.size(); ++j) {
      const std::size_t before = result[i].size();
      const std::size_t otherBefore = result[j].size();
      EdgeBoxes::forEachCoinciding(boxes[i], boxes[j], precision,
                                   [&](std::size_t e, std::size_t f) {
                                     result[i].push_back(static_cast<int>(e) + 1);
                                     result[j].push_back(static_cast<int>(f) + 1);
                                   });
      sortFrom(result[i], before);
      sortFrom(result[j], otherBefore);
    }
  }
  return result;
}

/// The edges of some closed polygons, to be asked which of them coincide with one edge.
///
/// How: an edge that coincides has an end near the start of the edge asked for, so that only the
/// edges at the points found there are looked at.
class EdgeGrid {
 public:
  EdgeGrid(const std::vector<ClosedOutline>& closedPolygons, double agreement)
      : polygons(closedPolygons), precision(agreement), starts(agreement) {
    for (std::size_t j = 0; j < polygons.size(); ++j) {
      for (std::size_t b = 0; b < polygons[j].count; ++b) {
        starts.add(polygons[j].start(b));
        edges.push_back({j, b});
      }
    }
  }

  /// Calls `visit(polygon)` once for each edge with the ends `a` and `b`, in either order.
  template <class Visit>
  void forEachCoinciding(Vec2 a, Vec2 b, Visit visit) const {
    starts.forEachNear(a, [&](std::size_t position) {
      const auto [j, edge] = edges[position];
      const std::size_t before = edge == 0 ? polygons[j].count - 1 : edge - 1;
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
    return samePoint(a, polygons[j].start(edge), precision) &&
           samePoint(b, polygons[j].end(edge), precision);
  }

  const std::vector<ClosedOutline>& polygons;
  double precision;
  PointGrid starts;
  std::vector<Edge> edges;  // by the positions of their starts
};

/// All edges in one grid: for any number of polygons.
inline DockingNumbers dockingEdgesByGrid(const std::vector<ClosedOutline>& polygons,
                                         double precision) {
  struct Match {
    std::size_t other;
    int edgeNumber;
  };
  const EdgeGrid grid(polygons, precision);
  DockingNumbers result(polygons.size());
  std::vector<Match> matches;
  for (std::size_t i = 0; i < polygons.size(); ++i) {
    const ClosedOutline& polygon = polygons[i];
    matches.clear();
    for (std::size_t e = 0; e < polygon.count; ++e) {
      grid.forEachCoinciding(polygon.start(e), polygon.end(e), [&](std::size_t j) {
        if (j != i) matches.push_back({j, static_cast<int>(e) + 1});
      });
    }
    std::stable_sort(matches.begin(), matches.end(),
                     [](const Match& a, const Match& b) { return a.other < b.other; });
    for (const Match& match : matches) result[i].push_back(match.edgeNumber);
  }
  return result;
}

/// Whether the pairs of some polygons are few beside their points, so that looking at each pair
/// costs less than a grid of all points, in time and, above all, in memory.
inline bool arePairsFew(std::size_t polygonCount, std::size_t pointCount) {
  return polygonCount * polygonCount / 2 <= 4 * pointCount;
}

inline DockingNumbers dockingEdges(const std::vector<ClosedOutline>& polygons, double precision) {
  std::size_t points = 0;
  for (const ClosedOutline& polygon : polygons) points += polygon.count;
  return arePairsFew(polygons.size(), points) ? dockingEdgesOfPairs(polygons, precision)
                                              : dockingEdgesByGrid(polygons, precision);
}

inline DockingNumbers dockingEdges(const std::vector<std::vector<Vec2>>& polygons,
                                   double precision) {
  std::vector<ClosedOutline> outlines;
  outlines.reserve(polygons.size());
  for (const std::vector<Vec2>& polygon : polygons) outlines.push_back(closedOutline(polygon));
  return dockingEdges(outlines, precision);
}

}  // namespace Lumivane::Kernel
