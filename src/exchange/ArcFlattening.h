#pragma once

#include "kernel/Vec.h"

#include <algorithm>
#include <vector>

namespace Lumivane::Exchange {

using Places = std::vector<Kernel::Vec2>;

/// The direction in the middle of an arc of less than half a great circle: the same from both ends.
inline Kernel::Vec3 middleOfArc(Kernel::Vec3 a, Kernel::Vec3 b) {
  const Kernel::Vec3 sum = a + b;
  const double length = Kernel::length3(sum);
  return {sum.x / length, sum.y / length, sum.z / length};
}

inline double distanceToSegment(Kernel::Vec2 p, Kernel::Vec2 a, Kernel::Vec2 b) {
  const Kernel::Vec2 along = b - a;
  const double square = Kernel::dot(along, along);
  const double t = square > 0.0 ? std::clamp(Kernel::dot(p - a, along) / square, 0.0, 1.0) : 0.0;
  return Kernel::distance(p, a + t * along);
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
  void add(Kernel::Vec3 a, Kernel::Vec2 placeOfA, Kernel::Vec3 b, Kernel::Vec2 placeOfB,
           Places& places, int depth = 0) const {
    const Kernel::Vec3 middle = middleOfArc(a, b);
    const Kernel::Vec2 placeOfMiddle = place(middle);
    const auto isClose = [&](Kernel::Vec2 p) {
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

}  // namespace Lumivane::Exchange
