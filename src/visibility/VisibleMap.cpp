#include "kernel/Planar.h"

#include <lumivane/visibility/VisibleMap.h>

namespace Lumivane::Visibility {
namespace {

using Kernel::Pi;

}  // namespace

std::vector<std::vector<int>> VisibleMap::rings(std::size_t cell) const {
  std::vector<std::vector<int>> result;
  const Cell& asked = cells.at(cell);
  result.reserve(asked.ringCount);
  for (std::size_t ring = asked.firstRing; ring < asked.firstRing + asked.ringCount; ++ring) {
    const auto begin = ringVertices.begin();
    result.emplace_back(begin + static_cast<std::ptrdiff_t>(ringOffsets.at(ring)),
                        begin + static_cast<std::ptrdiff_t>(ringOffsets.at(ring + 1)));
  }
  return result;
}

double VisibleMap::fieldSolidAngle() const {
  return field == Field::Hemisphere ? 2.0 * Pi : 4.0 * Pi;
}

}  // namespace Lumivane::Visibility
