// Sources of pieces for which the sweep knows no edge of the polygons beside them: pieces along the
// sides of tiles and faces, where an edge runs by chance, and some of those that lie within
// rounding of other edges. Which pieces these are depends on how the cube has been cut, so what
// they lie on is looked for among the edges of the two polygons.
#include "visibility/EdgeOrder.h"
#include "visibility/MapBuilder.h"

#include <algorithm>
#include <cmath>

namespace Lumivane::Visibility {

using Kernel::Vec3;

void MapBuilder::findSources() {
  for (const size_t i : watch.upTo(parts.pieces.size())) {
    Link& piece = parts.pieces[i];
    if (piece.source() != NoSource && !piece.foreign()) continue;
    if (parts.vertexSets.find(piece.from) == parts.vertexSets.find(piece.to)) continue;
    const Candidate best = sourceOf(parts.areas[static_cast<size_t>(piece.left)],
                                    parts.areas[static_cast<size_t>(piece.right)],
                                    directionOf(parts.vertices[static_cast<size_t>(piece.from)]),
                                    directionOf(parts.vertices[static_cast<size_t>(piece.to)]));
    if (best.rank > 0) piece.setSource(best.source, best.inner, best.shared);
  }
}

// Of a border that has another cell beside it than it was found for.
void MapBuilder::findSourceAnew(Link& link) const {
  if (link.left == NoCell || link.right == NoCell) return;
  const auto areaOf = [this](int cell) {
    const Found& f = found[static_cast<size_t>(cell)];
    return Area{f.region, f.polygon};
  };
  const Candidate best =
      sourceOf(areaOf(link.left), areaOf(link.right), directions[static_cast<size_t>(link.from)],
               directions[static_cast<size_t>(link.to)]);
  if (best.rank > 0) link.setSource(best.source, best.inner, best.shared);
}

// The end of the field, or an edge that both polygons have, or else one of either, or the line in
// which they run through each other.
MapBuilder::Candidate MapBuilder::sourceOf(const Area& left, const Area& right, Vec3 from,
                                           Vec3 to) const {
  if (left.region == BeyondRegion || right.region == BeyondRegion) {
    const bool isField = isOnLine(FieldSource, from, to);
    return {isField ? 1 : 0, FieldSource, false, false};
  }
  Candidate best{0, NoSource, false, false};
  if (left.polygon >= 0) offerEdges(left.polygon, right.polygon, from, to, best);
  if (right.polygon >= 0) offerEdges(right.polygon, left.polygon, from, to, best);
  if (best.rank > 0 || left.polygon < 0 || right.polygon < 0) return best;
  const Source crossing =
      crossingSource(std::min(left.polygon, right.polygon), std::max(left.polygon, right.polygon));
  if (!isOnLine(crossing, from, to)) return best;
  return {1, crossing, false, false};
}

void MapBuilder::offerEdges(std::int32_t polygon, std::int32_t other, Vec3 from, Vec3 to,
                            Candidate& best) const {
  constexpr int Own = 1;
  constexpr int Shared = 2;
  const IndexState& state = *setup.state;
  const auto i = static_cast<size_t>(polygon);
  for (auto c = static_cast<size_t>(state.cornerOffsets[i]);
       c < static_cast<size_t>(state.cornerOffsets[i + 1]); ++c) {
    const Source edge = state.cornerEdges[c];
    const bool isShared = other >= 0 && hasEdge(other, edge);
    const int rank = isShared ? Shared : Own;
    if (rank < best.rank || !isOnEdge(edge, from, to)) continue;
    const bool inner = state.cornerInner[c] != 0;
    if (rank == best.rank && edge == best.source) {
      // It is a docking edge if it is one of both.
      best.inner = best.inner && inner;
    } else if (rank > best.rank || SourceOrder(state)(edge, best.source)) {
      best = {rank, edge, inner, isShared};
    }
  }
}

bool MapBuilder::hasEdge(std::int32_t polygon, Source edge) const {
  const IndexState& state = *setup.state;
  const auto i = static_cast<size_t>(polygon);
  for (auto c = static_cast<size_t>(state.cornerOffsets[i]);
       c < static_cast<size_t>(state.cornerOffsets[i + 1]); ++c)
    if (state.cornerEdges[c] == edge) return true;
  return false;
}

bool MapBuilder::isOnLine(Source source, Vec3 from, Vec3 to) const {
  const Vec3 normal = normalOf(source);
  return std::fabs(Kernel::dot(normal, from)) <= PlaceTolerance &&
         std::fabs(Kernel::dot(normal, to)) <= PlaceTolerance;
}

// Whether an arc lies on the line of an edge, and its middle between the edge's ends.
bool MapBuilder::isOnEdge(Source edge, Vec3 from, Vec3 to) const {
  if (!isOnLine(edge, from, to)) return false;
  const auto [first, second] = orderedEnds(*setup.state, edge);
  const Vec3 a = unit(fromEye(first));
  const Vec3 b = unit(fromEye(second));
  const Vec3 at = unit(from + to);
  const auto isBetween = [at](Vec3 start, Vec3 end) {
    const Vec3 normal = Kernel::cross(start, end);
    const double margin = -PlaceTolerance * Kernel::length3(normal);
    return Kernel::dot(Kernel::cross(start, at), normal) >= margin &&
           Kernel::dot(Kernel::cross(at, end), normal) >= margin;
  };
  Vec3 middle;
  if (!middleOfWide(edge, middle)) return isBetween(a, b);
  return isBetween(a, middle) || isBetween(middle, b);
}

}  // namespace Lumivane::Visibility
