#pragma once

#include "kernel/Bounds.h"
#include "kernel/Vec.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

/// How two polygons of the picture lie to each other: exact on plain doubles, without a tolerance.
/// A polygon is a closed ring whose first point is not repeated.
namespace Lumivane::Kernel {

/// The turn a, b, c: the z component of the cross product of b - a and c - b. Positive if
/// counter-clockwise with y upward, 0 if collinear.
inline double rotate(Vec2 a, Vec2 b, Vec2 c) {
  return (c.y - b.y) * (b.x - a.x) - (b.y - a.y) * (c.x - b.x);
}

/// Whether segment ab properly crosses segment cd. Touching is no crossing, nor is lying on one
/// line, nor a turn so small that the product of two of them is 0.
inline bool segmentsCross(Vec2 a, Vec2 b, Vec2 c, Vec2 d) {
  const double r1 = rotate(a, b, d);
  const double r2 = rotate(a, b, c);
  if (!(0.0 > r2 * r1)) return false;
  const double r3 = rotate(c, d, b);
  const double r4 = rotate(c, d, a);
  return 0.0 > r4 * r3;
}

/// The even-odd rule by a ray towards smaller x. An edge includes its lower end and excludes its
/// upper end, so a point level with a vertex meets one of the two edges there. A point on a
/// left-hand edge is inside, one on a right-hand edge outside.
inline bool containsPoint(const std::vector<Vec2>& polygon, Vec2 point) {
  if (polygon.empty()) return false;
  const double x = point.x;
  const double y = point.y;
  bool inside = false;
  Vec2 previous = polygon.back();
  for (const Vec2 current : polygon) {
    if ((y >= current.y && previous.y > y) || (y >= previous.y && current.y > y)) {
      const double crossing =
          (previous.x - current.x) * (y - current.y) / (previous.y - current.y) + current.x;
      if (x >= crossing) inside = !inside;
    }
    previous = current;
  }
  return inside;
}

struct Segment {
  Vec2 start;
  Vec2 end;
};

/// Whether `rotate(start, end, c)` has no two results of opposite signs for the points c of a box,
/// so that the segment crosses nothing between such points.
///
/// Holds for the results as computed, not only for the exact ones: rounding keeps order, so each
/// step of `rotate` is monotone in the coordinates of c, and the two values computed here, from the
/// same steps, enclose all others. A c that gives no number takes part in no crossing.
inline bool isBesideLine(const Box& box, const Segment& segment) {
  const Vec2 b = segment.end;
  const double dx = b.x - segment.start.x;
  const double dy = b.y - segment.start.y;
  const double left1 = (box.yMin - b.y) * dx;
  const double left2 = (box.yMax - b.y) * dx;
  const double right1 = dy * (box.xMin - b.x);
  const double right2 = dy * (box.xMax - b.x);
  if (std::isnan(left1 + left2) || std::isnan(right1 + right2)) return false;
  const double lowest = std::min(left1, left2) - std::max(right1, right2);
  const double highest = std::max(left1, left2) - std::min(right1, right2);
  return lowest >= 0.0 || highest <= 0.0;
}

/// Edge i of `first`, which runs to the next point of the ring.
inline Segment edgeOfFirst(const std::vector<Vec2>& first, std::size_t i) {
  return {first[i], first[(i + 1) % first.size()]};
}

/// Edge j of `second`.
// Deliberate: its end is counted in the size of `first`, so for polygons of different sizes some of
// these edges are diagonals; where that index lies beyond `second`, the end is its point 0.
inline Segment edgeOfSecond(const std::vector<Vec2>& first, const std::vector<Vec2>& second,
                            std::size_t j) {
  const std::size_t end = (j + 1) % first.size();
  return {second[j], second[end < second.size() ? end : 0]};
}

/// Whether any edge of `first` properly crosses any edge of `second`. Edges whose line leaves the
/// whole other polygon on one side are passed over.
inline bool edgesCross(const std::vector<Vec2>& first, const std::vector<Vec2>& second) {
  if (first.empty()) return false;
  const Box firstBox = boxOf(first);
  const Box secondBox = boxOf(second);

  std::vector<Segment> candidates;
  candidates.reserve(second.size());
  for (std::size_t j = 0; j < second.size(); ++j) {
    const Segment edge = edgeOfSecond(first, second, j);
    if (!isBesideLine(firstBox, edge)) candidates.push_back(edge);
  }
  if (candidates.empty()) return false;

  for (std::size_t i = 0; i < first.size(); ++i) {
    const Segment edge = edgeOfFirst(first, i);
    if (isBesideLine(secondBox, edge)) continue;
    for (const Segment& other : candidates)
      if (segmentsCross(edge.start, edge.end, other.start, other.end)) return true;
  }
  return false;
}

/// Whether `outer` contains every point of `inner`; true if there is none.
inline bool containsAll(const std::vector<Vec2>& outer, const std::vector<Vec2>& inner) {
  return std::all_of(inner.begin(), inner.end(),
                     [&](Vec2 point) { return containsPoint(outer, point); });
}

/// The values of Algorithm::IntersectionType.
struct Meeting {
  static constexpr int None = 0;
  static constexpr int EdgesCrossing = 1;
  static constexpr int SecondInFirst = 2;
  static constexpr int FirstInSecond = 3;
};

/// How two polygons meet. An empty polygon lies in any other; of two empty ones the first lies in
/// the second.
inline int meetingOf(const std::vector<Vec2>& first, const std::vector<Vec2>& second) {
  if (edgesCross(first, second)) return Meeting::EdgesCrossing;
  if (containsAll(second, first)) return Meeting::FirstInSecond;
  if (containsAll(first, second)) return Meeting::SecondInFirst;
  return Meeting::None;
}

}  // namespace Lumivane::Kernel
