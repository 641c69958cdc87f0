#pragma once

#include "kernel/Vec.h"

#include <lumivane/visibility/VisibleMap.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Lumivane::Measure {

/// The cells of a map of the hemisphere above an eye, found by their directions, and what bounds
/// them along an upright half plane. Refers to the map.
class SkyCells {
 public:
  using Edge = Visibility::VisibleMap::Edge;

  /// \throws std::invalid_argument for a map that is not of the hemisphere around (0, 0, 1)
  explicit SkyCells(const Visibility::VisibleMap& map);

  /// The number of the cell in which a direction lies; -1 outside the field. On an edge either of
  /// its cells.
  int cellAt(Kernel::Vec3 direction) const;
  /// The highest elevation at which something is seen in a level direction of any length, as a
  /// tangent; infinite if that is straight up.
  double highestBlocked(Kernel::Vec3 level) const;

  const Visibility::VisibleMap& map() const { return *source; }
  bool isSky(int cell) const {
    return cell >= 0 && source->cells[static_cast<size_t>(cell)].label.object == 0;
  }
  Kernel::Vec3 vertex(int number) const {
    const Visibility::Vector& v = source->vertices[static_cast<size_t>(number)];
    return {v[0], v[1], v[2]};
  }

 private:
  const std::vector<std::int32_t>& edgesAround(Kernel::Vec3 direction) const;
  size_t bucketOf(double azimuth) const;

  const Visibility::VisibleMap* source;
  std::vector<std::vector<std::int32_t>> buckets;  // edges by azimuth
};

}  // namespace Lumivane::Measure
