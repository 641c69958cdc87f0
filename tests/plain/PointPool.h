#pragma once

#include "kernel/SamePoint.h"
#include "kernel/Vec.h"

#include <cstddef>
#include <vector>

namespace Lumivane::Plain {

/// The pool of plane points as documented: a scan from the start, and the first that agrees.
class PointPool {
 public:
  explicit PointPool(double agreement) : tolerance(agreement) {}

  /// The position of the first point that agrees, or -1 as an unsigned number.
  std::size_t find(Kernel::Vec2 point) const {
    for (std::size_t i = 0; i < points.size(); ++i)
      if (Kernel::samePoint(point, points[i], tolerance)) return i;
    return static_cast<std::size_t>(-1);
  }

  void add(Kernel::Vec2 point) { points.push_back(point); }

 private:
  double tolerance;
  std::vector<Kernel::Vec2> points;
};

}  // namespace Lumivane::Plain
