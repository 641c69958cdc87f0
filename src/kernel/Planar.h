#pragma once

#include "kernel/Vec.h"

#include <cstddef>

/// What flat outlines have in common: each formula once.
///
/// Some stand in a second form, because the order of its terms is promised to the bit and differs:
/// `Kernel::rotate`, `segmentsCross` and `isRightOfEdge` (Polygon2.h) and `polygonNormalReversed`
/// (Plane.h) are the depth sort's, and the signs of Exact.h are never wrong, which doubles are not.
namespace Lumivane::Kernel {

inline constexpr double Pi = 3.141592653589793;

/// The cross product of vectors of the plane: twice the area of their triangle, positive if b lies
/// counter-clockwise of a.
inline double flatCross(Vec2 a, Vec2 b) { return a.x * b.y - a.y * b.x; }

/// Twice the area vector of an outline (Newell's method: I. Sutherland, R. Sproull, R. Schumacker,
/// A Characterization of Ten Hidden-Surface Algorithms, 1974), with the corners counted from an
/// origin near it: the direction is the normal to the side from which the corners run
/// counter-clockwise, the length twice the area.
///
/// \param corner  corner(i) for i from 0 to count - 1
template <class Corner>
Vec3 twiceAreaVector(std::size_t count, Vec3 origin, const Corner& corner) {
  Vec3 sum;
  for (std::size_t i = 0; i < count; ++i)
    sum = sum + cross(corner(i) - origin, corner((i + 1) % count) - origin);
  return sum;
}

/// Twice the area of a flat outline by the shoelace formula, positive counter-clockwise.
template <class Corner>
double twiceArea(std::size_t count, const Corner& corner) {
  double sum = 0.0;
  for (std::size_t i = 0; i < count; ++i) sum += flatCross(corner(i), corner((i + 1) % count));
  return sum;
}

/// The turn a, b, p: positive if counter-clockwise, 0 if collinear.
inline double turnOf(Vec2 a, Vec2 b, Vec2 p) { return flatCross(b - a, p - a); }

/// Whether segment ab properly crosses segment cd: touching is no crossing.
inline bool properlyCross(Vec2 a, Vec2 b, Vec2 c, Vec2 d) {
  const double c1 = turnOf(a, b, c), d1 = turnOf(a, b, d);
  const double a1 = turnOf(c, d, a), b1 = turnOf(c, d, b);
  return ((c1 > 0 && d1 < 0) || (c1 < 0 && d1 > 0)) && ((a1 > 0 && b1 < 0) || (a1 < 0 && b1 > 0));
}

/// Whether a point is within a flat outline by the even-odd rule, by a ray towards greater x. On
/// the outline itself either may come out.
template <class Corner>
bool isInOutline(std::size_t count, Vec2 point, const Corner& corner) {
  bool inside = false;
  for (std::size_t i = 0; i < count; ++i) {
    const Vec2 a = corner(i);
    const Vec2 b = corner((i + 1) % count);
    if ((a.y <= point.y) == (b.y <= point.y)) continue;
    if (a.x + (b.x - a.x) * ((point.y - a.y) / (b.y - a.y)) > point.x) inside = !inside;
  }
  return inside;
}

}  // namespace Lumivane::Kernel
