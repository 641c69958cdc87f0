#pragma once

#include "kernel/Bounds.h"
#include "kernel/Lanes.h"
#include "kernel/Vec.h"

#include <cstddef>
#include <limits>
#include <vector>

/// Polygons of the picture in flat arrays, as the loops over lanes read them.
namespace Lumivane::Kernel {

/// A closed polygon, seen in place. Behind its points stands the first one again, so that edge k
/// runs from k to k + 1, and then not-a-number up to a whole group of lanes and one group more:
/// such a point crosses nothing and is contained in nothing.
struct Ring {
  const double* x = nullptr;
  const double* y = nullptr;
  std::size_t count = 0;
  Box box;
};

/// Polygons one behind the other.
class Rings {
 public:
  /// Appends a polygon of the points `pointAt(0)` to `pointAt(count - 1)`.
  template <class PointAt>
  void add(std::size_t count, PointAt pointAt) {
    const std::size_t start = values.size();
    const std::size_t length = padded(count) + Lanes;
    values.resize(start + 2 * length, std::numeric_limits<double>::quiet_NaN());
    double* const x = values.data() + start;
    double* const y = x + length;
    Box box;
    for (std::size_t k = 0; k < count; ++k) {
      const Vec2 point = pointAt(k);
      x[k] = point.x;
      y[k] = point.y;
      take(box, point);
    }
    if (count != 0) {
      x[count] = x[0];
      y[count] = y[0];
    }
    places.push_back({start, length, count, box});
    if (count > largestCount) largestCount = count;
  }

  void add(const std::vector<Vec2>& points) {
    add(points.size(), [&points](std::size_t k) { return points[k]; });
  }

  /// Makes room for `rings` more polygons of `points` points in all.
  void reserve(std::size_t rings, std::size_t points) {
    places.reserve(places.size() + rings);
    values.reserve(values.size() + 2 * (points + 2 * Lanes * rings));
  }

  std::size_t size() const { return places.size(); }
  std::size_t largest() const { return largestCount; }  ///< Points of the largest polygon.

  /// Valid until a polygon is added.
  Ring operator[](std::size_t index) const {
    const Place& place = places[index];
    const double* const x = values.data() + place.start;
    return {x, x + place.length, place.count, place.box};
  }

 private:
  struct Place {
    std::size_t start;
    std::size_t length;
    std::size_t count;
    Box box;
  };

  std::vector<double> values;
  std::vector<Place> places;
  std::size_t largestCount = 0;
};

}  // namespace Lumivane::Kernel
