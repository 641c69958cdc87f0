#pragma once

#include "kernel/Lanes.h"
#include "kernel/Plane.h"
#include "kernel/Vec.h"

#include <algorithm>
#include <cstddef>
#include <limits>
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

/// The points of a polygon, seen in place; behind them stands not-a-number up to a whole group of
/// lanes, which is on neither side of anything.
struct Corners {
  const double* x = nullptr;
  const double* y = nullptr;
  const double* z = nullptr;
  std::size_t count = 0;
};

/// Polygons of the scene one behind the other, each with its facing.
class FacingPolygons {
 public:
  /// Appends a polygon.
  void add(const std::vector<Vec3>& points) {
    const std::size_t start = values.size();
    const std::size_t length = padded(points.size());
    values.resize(start + 3 * length, std::numeric_limits<double>::quiet_NaN());
    double* const x = values.data() + start;
    for (std::size_t k = 0; k < points.size(); ++k) {
      x[k] = points[k].x;
      x[k + length] = points[k].y;
      x[k + 2 * length] = points[k].z;
    }
    places.push_back({start, points.size(), facingOf(points)});
  }

  /// Makes room for `polygons` more of a few points each.
  void reserve(std::size_t polygons) {
    places.reserve(places.size() + polygons);
    values.reserve(values.size() + 3 * Lanes * polygons);
  }

  std::size_t size() const { return places.size(); }
  const Facing& facing(std::size_t index) const { return places[index].facing; }

  /// Valid until a polygon is added.
  Corners corners(std::size_t index) const {
    const Place& place = places[index];
    const double* const x = values.data() + place.start;
    const std::size_t length = padded(place.count);
    return {x, x + length, x + 2 * length, place.count};
  }

 private:
  struct Place {
    std::size_t start;
    std::size_t count;
    Facing facing;
  };

  std::vector<double> values;
  std::vector<Place> places;
};

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
template <class SidesOfSecond, class SidesOfFirst>
int locationBy(SidesOfSecond sidesOfSecond, SidesOfFirst sidesOfFirst) {
  const Sides ofSecond = sidesOfSecond();
  if (!(ofSecond.front && ofSecond.behind)) return ofSecond.front ? 2 : ofSecond.behind ? 1 : 0;
  const Sides ofFirst = sidesOfFirst();
  if (!(ofFirst.front && ofFirst.behind)) return ofFirst.front ? 1 : ofFirst.behind ? 2 : 0;
  return 0;
}

struct Location {
  int value = 0;  ///< see locationBy
  /// How often a point asked for a normal of length 0: so often its message is due.
  std::size_t zeroLengthAsked = 0;
};

/// The location of two polygons of one list or of two.
Location locationOf(const Corners& first, const Facing& firstFacing, const Corners& second,
                    const Facing& secondFacing);
Location locationOf(const std::vector<Vec3>& first, const std::vector<Vec3>& second);

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
