#pragma once

#include "kernel/Vec.h"

#include <algorithm>
#include <vector>

namespace Lumivane::Kernel {

using Places = std::vector<Vec2>;

/// The direction in the middle of an arc of less than half a great circle: the same from both ends.
inline Vec3 middleOfArc(Vec3 a, Vec3 b) {
  const Vec3 sum = a + b;
  const double length = length3(sum);
  return {sum.x / length, sum.y / length, sum.z / length};
}

inline double distanceToSegment(Vec2 p, Vec2 a, Vec2 b) {
  const Vec2 along = b - a;
  const double square = dot(along, along);
  const double t = square > 0.0 ? std::clamp(dot(p - a, along) / square, 0.0, 1.0) : 0.0;
  return distance(p, a + t * along);
}

/// Turns arcs into chords that are off them by no more than a distance. It halves an arc until the
/// curve, looked at in three places, keeps to its chord.
template <class Place>
class ArcFlattening {
 public:
  /// \param placeOf  the place of a direction in the plane
  ArcFlattening(const Place& placeOf, double greatestDistance)
      : place(placeOf), tolerance(greatestDistance * Reserve) {}

  /// Appends the places behind that of a, up to and with that of b.
  void add(Vec3 a, Vec2 placeOfA, Vec3 b, Vec2 placeOfB, Places& places, int depth = 0) const {
    const Vec3 middle = middleOfArc(a, b);
    const Vec2 placeOfMiddle = place(middle);
    const auto isClose = [&](Vec2 p) {
      return distanceToSegment(p, placeOfA, placeOfB) <= tolerance;
    };
    if (depth >= MostHalvings ||
        (isClose(placeOfMiddle) && isClose(place(middleOfArc(a, middle))) &&
         isClose(place(middleOfArc(middle, b))))) {
      places.push_back(placeOfB);
      return;
    }
    add(a, placeOfA, middle, placeOfMiddle, places, depth + 1);
    add(middle, placeOfMiddle, b, placeOfB, places, depth + 1);
  }

 private:
  static constexpr double Reserve = 0.9;   // the curve may be further off between the places
  static constexpr int MostHalvings = 40;  // beyond that doubles have no place in between

  const Place& place;
  double tolerance;
};

}  // namespace Lumivane::Kernel
