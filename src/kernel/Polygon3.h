#pragma once

#include "kernel/Plane.h"
#include "kernel/Vec.h"

#include <algorithm>
#include <cstddef>
#include <vector>

/// How two polygons of the scene lie to each other's planes.
namespace Lumivane::Kernel {

/// The plane of a polygon, by its first three points. The normal points to the polygon's front.
struct Facing {
  Vec3 point;
  Normalised normal;
};

/// The facing of an empty polygon has no direction, and every point lies in its plane.
inline Facing facingOf(const std::vector<Vec3>& polygon) {
  if (polygon.empty()) return {};
  return {polygon.front(), polygonNormalReversed(polygon.data(), polygon.size())};
}

/// The side of a point: less than 0 in front of the plane, more behind it, 0 or not a number in it.
inline double sideOf(const Facing& facing, Vec3 point) {
  const Vec3 normal = facing.normal.direction;
  const Vec3 foot = intersectLineAndPlane(normal, facing.point, point, -normal);
  return dot(normal, foot - point);
}

/// Which sides of a plane some points take.
struct Sides {
  bool front = false;
  bool behind = false;
};

template <class Points, class SideOf>
Sides sidesOf(const Points& points, SideOf sideOfPoint) {
  Sides sides;
  for (const auto& point : points) {
    const double side = sideOfPoint(point);
    if (side < 0.0) sides.front = true;
    if (side > 0.0) sides.behind = true;
  }
  return sides;
}

/// Which of two polygons is in front, by the sides that their points take of each other's planes:
/// 1 the first, 2 the second, 0 no decision. Only if the second polygon straddles the plane of the
/// first is the converse asked. (1) The order of the points has no effect.
template <class Points, class SideOf>
int locationBy(const Points& first, const Points& second, SideOf sideOfFirst, SideOf sideOfSecond) {
  const Sides ofSecond = sidesOf(second, sideOfFirst);
  if (!(ofSecond.front && ofSecond.behind)) return ofSecond.front ? 2 : ofSecond.behind ? 1 : 0;
  const Sides ofFirst = sidesOf(first, sideOfSecond);
  if (!(ofFirst.front && ofFirst.behind)) return ofFirst.front ? 1 : ofFirst.behind ? 2 : 0;
  return 0;
}

struct Location {
  int value = 0;  ///< see locationBy
  /// How often a point asked for a normal of length 0: so often its message is due.
  std::size_t zeroLengthAsked = 0;
};

/// The location of two polygons whose facings are known.
inline Location locationOf(const std::vector<Vec3>& first, const Facing& firstFacing,
                           const std::vector<Vec3>& second, const Facing& secondFacing) {
  Location result;
  const auto sideAgainst = [&result](const Facing& facing) {
    return [&result, &facing](Vec3 point) {
      if (facing.normal.zeroLength) ++result.zeroLengthAsked;
      return sideOf(facing, point);
    };
  };
  result.value = locationBy(first, second, sideAgainst(firstFacing), sideAgainst(secondFacing));
  return result;
}

/// Whether two polygons have the same number of points and each point of the first has an equal in
/// the second. The order does not count, and one point may be the equal of several.
template <class Polygon, class Equal>
bool eachHasEqual(const Polygon& first, const Polygon& second, Equal isEqual) {
  if (first.size() != second.size()) return false;
  return std::all_of(first.begin(), first.end(), [&](const auto& point) {
    return std::any_of(second.begin(), second.end(),
                       [&](const auto& other) { return isEqual(point, other); });
  });
}

}  // namespace Lumivane::Kernel
