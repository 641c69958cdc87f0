#pragma once

#include "kernel/Vec.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Edges cut into short pieces, so that a straight edge may be drawn as a curve.
namespace Lumivane::Kernel {

/// An edge shorter than this makes its whole polygon project to nothing.
inline constexpr double ShortestEdge = 0.0001;

/// Appends the points of one edge from `a` towards `b`, `a` first and `b` left out.
///
/// Deliberate: the distance grows by repeated addition, so that rounding may leave it just under
/// the length after the last piece; then one more point, next to `b`, is appended.
///
/// \param pieceCount  pieces of the edge; with none or fewer, `a` alone is appended
/// \return false, with nothing appended, if the edge is shorter than ShortestEdge
inline bool appendSplitEdge(Vec3 a, Vec3 b, std::int64_t pieceCount, std::vector<Vec3>& points) {
  const Vec3 edge = a - b;
  const double length = length3(edge);
  if (ShortestEdge > length) return false;

  const Vec3 direction = normalise(edge).direction;
  const double step = pieceCount > 0 ? length / static_cast<double>(pieceCount) : length;
  double t = 0.0;
  do {
    points.push_back(a - t * direction);
    t += step;
  } while (length > t);
  return true;
}

/// Whether a closed polygon is split at all: it has corners, and no edge that is too short.
inline bool isSplit(const std::vector<Vec3>& polygon) {
  for (std::size_t i = 0; i < polygon.size(); ++i)
    if (ShortestEdge > length3(polygon[i] - polygon[(i + 1) % polygon.size()])) return false;
  return !polygon.empty();
}

/// All edges of a closed polygon, cut into the same number of pieces each.
///
/// Deliberate: one edge that is too short gives up the whole polygon, with no points at all.
inline void splitPolygon(const std::vector<Vec3>& polygon, std::int64_t pieceCount,
                         std::vector<Vec3>& points) {
  points.clear();
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const Vec3 next = polygon[(i + 1) % polygon.size()];
    if (appendSplitEdge(polygon[i], next, pieceCount, points)) continue;
    points.clear();
    return;
  }
}

}  // namespace Lumivane::Kernel
