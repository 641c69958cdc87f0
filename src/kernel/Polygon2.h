#pragma once

#include "kernel/Bounds.h"
#include "kernel/Rings.h"
#include "kernel/Vec.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// How two polygons of the picture lie to each other: exact on plain doubles, without a tolerance.
/// A polygon is a closed ring whose first point is not repeated.
///
/// The formulas stand here, without branches; Polygon2.cpp runs them over flat arrays, a group of
/// edges at a time.
namespace Lumivane::Kernel {

/// The turn a, b, c: the z component of the cross product of b - a and c - b. Positive if
/// counter-clockwise with y upward, 0 if collinear.
inline double rotate(Vec2 a, Vec2 b, Vec2 c) {
  return (c.y - b.y) * (b.x - a.x) - (b.y - a.y) * (c.x - b.x);
}

/// Whether segment ab properly crosses segment cd. Touching is no crossing, nor is lying on one
/// line, nor a turn so small that the product of two of them is 0. (1) Swapping the segments keeps
/// the result.
inline bool segmentsCross(Vec2 a, Vec2 b, Vec2 c, Vec2 d) {
  const double r1 = rotate(a, b, d);
  const double r2 = rotate(a, b, c);
  const double r3 = rotate(c, d, b);
  const double r4 = rotate(c, d, a);
  return (0.0 > r2 * r1) & (0.0 > r4 * r3);
}

/// Whether an edge of a polygon counts for a point under the even-odd rule by a ray towards smaller
/// x. The edge includes its lower end and excludes its upper end, so a point level with a vertex
/// meets one of the two edges there. A point on a left-hand edge is inside, one on a right-hand
/// edge outside.
///
/// An edge that does not span the height of the point may divide by 0: then the quotient is not
/// asked.
inline bool isRightOfEdge(Vec2 previous, Vec2 current, Vec2 point) {
  const bool falls = (point.y >= current.y) & (previous.y > point.y);
  const bool rises = (point.y >= previous.y) & (current.y > point.y);
  const double crossing =
      (previous.x - current.x) * (point.y - current.y) / (previous.y - current.y) + current.x;
  return (falls | rises) & (point.x >= crossing);
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
  const double lowest = std::min(left1, left2) - std::max(right1, right2);
  const double highest = std::max(left1, left2) - std::min(right1, right2);
  const double zero = 0.0 * ((left1 + left2) + (right1 + right2));  // only if all are finite
  return std::max(lowest, -highest) + zero >= 0.0;
}

/// The values of Algorithm::IntersectionType.
struct Meeting {
  static constexpr int None = 0;
  static constexpr int EdgesCrossing = 1;
  static constexpr int SecondInFirst = 2;
  static constexpr int FirstInSecond = 3;
};

/// Room for the tests of polygons of up to `largest` points, made once for all of them.
struct RingScratch {
  explicit RingScratch(std::size_t largest);

  std::vector<std::uint64_t> ofFirst, ofSecond;  ///< a bit for each edge that may cross
};

/// Whether a polygon contains a point.
bool containsPoint(const std::vector<Vec2>& polygon, Vec2 point);

/// How two polygons meet. Both are closed rings: the last edge of each runs from its last point to
/// its first. Swapping the polygons swaps FirstInSecond and SecondInFirst and keeps everything
/// else, except that of two polygons that lie in each other the first lies in the second. An empty
/// polygon lies in any other.
int meetingOf(const Ring& first, const Ring& second, RingScratch& scratch);
int meetingOf(const std::vector<Vec2>& first, const std::vector<Vec2>& second);

}  // namespace Lumivane::Kernel
