#pragma once

#include "visibility/IndexState.h"
#include "visibility/MapParts.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <utility>

/// An order of what lies on one place of a map that follows from the scene's points and the order
/// of its regions. Numbers of vertices, edges and polygons do not: what is hidden changes them.
namespace Lumivane::Visibility {

inline bool isBefore(Kernel::Vec3 a, Kernel::Vec3 b) {
  return std::tie(a.x, a.y, a.z) < std::tie(b.x, b.y, b.z);
}

/// The vertices of an edge, that with the lesser coordinates first.
inline std::pair<std::int32_t, std::int32_t> orderedEnds(const IndexState& state, Source edge) {
  const std::int32_t a = state.edgeVertices[2 * static_cast<std::size_t>(edge)];
  const std::int32_t b = state.edgeVertices[2 * static_cast<std::size_t>(edge) + 1];
  const auto at = [&](std::int32_t i) { return state.vertices[static_cast<std::size_t>(i)]; };
  return isBefore(at(b), at(a)) ? std::pair(b, a) : std::pair(a, b);
}

/// Orders sources: what is no edge of the scene, then edges, then crossings.
class SourceOrder {
 public:
  explicit SourceOrder(const IndexState& indexState) : state(indexState) {}

  bool operator()(Source a, Source b) const {
    if (a == b) return false;
    if (a < 0 || b < 0) return a < b;
    if (isCrossing(a) != isCrossing(b)) return isCrossing(b);
    if (isCrossing(a)) return regionsOf(a) < regionsOf(b);
    const auto [firstOfA, secondOfA] = orderedEnds(state, a);
    const auto [firstOfB, secondOfB] = orderedEnds(state, b);
    return firstOfA == firstOfB ? isBefore(vertex(secondOfA), vertex(secondOfB))
                                : isBefore(vertex(firstOfA), vertex(firstOfB));
  }

 private:
  Kernel::Vec3 vertex(std::int32_t i) const { return state.vertices[static_cast<std::size_t>(i)]; }
  // Those of one pair of regions by the numbers of their polygons.
  std::tuple<std::int32_t, std::int32_t, Source> regionsOf(Source crossing) const {
    constexpr Source Low = (Source{1} << 31) - 1;
    const auto region = [this](Source i) { return state.regions[static_cast<std::size_t>(i)]; };
    const std::int32_t a = region(crossing >> 31 & Low);
    const std::int32_t b = region(crossing & Low);
    return {std::min(a, b), std::max(a, b), crossing};
  }

  const IndexState& state;
};

}  // namespace Lumivane::Visibility
