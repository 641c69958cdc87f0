#pragma once

#include "kernel/PointGrid.h"
#include "kernel/Vec.h"

#include <algorithm>
#include <cstddef>

namespace Lumivane::Kernel {

/// A growing list of plane points in which a point is looked up by a tolerance per axis. The answer
/// is always the first point, in the order of adding, that agrees; NaN and infinities agree with
/// nothing.
class PointPool {
 public:
  /// The position of no point.
  static constexpr std::size_t None = static_cast<std::size_t>(-1);

  explicit PointPool(double agreement) : grid(agreement) {}

  std::size_t size() const { return grid.size(); }

  /// The position of the first point that agrees, or None.
  std::size_t find(Vec2 point) const {
    std::size_t first = None;
    grid.forEachNear(point, [&](std::size_t position) { first = std::min(first, position); });
    return first;
  }

  /// Appends a point and returns its position.
  std::size_t add(Vec2 point) { return grid.add(point); }

 private:
  PointGrid grid;
};

}  // namespace Lumivane::Kernel
