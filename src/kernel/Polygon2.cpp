// The tests of two polygons of the picture, over the flat arrays of Rings.h: first the edges of
// each that come near the other are picked, a group of lanes at a time, then only those are tested
// against each other. No step allocates.

#include "kernel/Polygon2.h"

#include "kernel/Lanes.h"

#include <algorithm>
#include <limits>

namespace Lumivane::Kernel {
namespace {

constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

// The edges of a polygon as arrays of their ends, readable to a whole group of lanes.
struct Edges {
  const double* ax;
  const double* ay;
  const double* bx;
  const double* by;
  std::size_t count;

  Segment operator[](std::size_t k) const { return {{ax[k], ay[k]}, {bx[k], by[k]}}; }
};

Edges edgesOfFirst(const Ring& first) {
  return {first.x, first.y, first.x + 1, first.y + 1, first.count};
}

// See endInSecond.
Edges edgesOfSecond(const Ring& first, const Ring& second, RingScratch& scratch) {
  if (first.count >= second.count)
    return {second.x, second.y, second.x + 1, second.y + 1, second.count};
  double* const endX = scratch.endX.data();
  double* const endY = scratch.endY.data();
  for (std::size_t j = 0; j < second.count; ++j) {
    const std::size_t end = endInSecond(first.count, second.count, j);
    endX[j] = second.x[end];
    endY[j] = second.y[end];
  }
  return {second.x, second.y, endX, endY, second.count};
}

// The edges that may cross something in the box, in their order; gives how many.
std::size_t pickEdges(const Edges& edges, const Box& box, std::uint32_t* picked) {
  std::size_t count = 0;
  for (std::size_t base = 0; base < edges.count; base += Lanes) {
    std::int64_t isPicked[Lanes];
    for (std::size_t lane = 0; lane < Lanes; ++lane)
      isPicked[lane] = isBesideLine(box, edges[base + lane]) ? 0 : 1;
    const std::size_t end = std::min(Lanes, edges.count - base);
    for (std::size_t lane = 0; lane < end; ++lane) {
      picked[count] = static_cast<std::uint32_t>(base + lane);
      count += static_cast<std::size_t>(isPicked[lane]);
    }
  }
  return count;
}

// The picked edges of the second polygon one behind the other, padded with edges that cross
// nothing.
Edges gather(const Edges& edges, std::size_t count, RingScratch& scratch) {
  double* const ax = scratch.ax.data();
  double* const ay = scratch.ay.data();
  double* const bx = scratch.bx.data();
  double* const by = scratch.by.data();
  for (std::size_t k = 0; k < count; ++k) {
    const Segment edge = edges[scratch.secondEdges[k]];
    ax[k] = edge.start.x;
    ay[k] = edge.start.y;
    bx[k] = edge.end.x;
    by[k] = edge.end.y;
  }
  for (std::size_t k = count; k < padded(count); ++k) ax[k] = NotANumber;
  return {ax, ay, bx, by, count};
}

bool crossesAny(const Segment& edge, const Edges& others) {
  std::int64_t crosses = 0;
  for (std::size_t k = 0; k < padded(others.count); ++k) {
    const Segment other = others[k];
    crosses |= segmentsCross(edge.start, edge.end, other.start, other.end) ? 1 : 0;
  }
  return crosses != 0;
}

bool edgesCross(const Ring& first, const Ring& second, RingScratch& scratch) {
  if (first.count == 0 || second.count == 0) return false;
  const Edges firstEdges = edgesOfFirst(first);
  const std::size_t firstCount = pickEdges(firstEdges, second.box, scratch.firstEdges.data());
  if (firstCount == 0) return false;
  const Edges secondEdges = edgesOfSecond(first, second, scratch);
  const std::size_t secondCount = pickEdges(secondEdges, first.box, scratch.secondEdges.data());
  if (secondCount == 0) return false;

  const Edges others = gather(secondEdges, secondCount, scratch);
  for (std::size_t k = 0; k < firstCount; ++k)
    if (crossesAny(firstEdges[scratch.firstEdges[k]], others)) return true;
  return false;
}

bool contains(const Ring& ring, Vec2 point) {
  std::int64_t edgesLeft = 0;
  for (std::size_t k = 0; k < padded(ring.count); ++k) {
    const Vec2 previous{ring.x[k], ring.y[k]};
    const Vec2 current{ring.x[k + 1], ring.y[k + 1]};
    edgesLeft += isRightOfEdge(previous, current, point) ? 1 : 0;
  }
  return edgesLeft % 2 != 0;
}

// Whether `outer` contains every point of `inner`; true if there is none. A point below or above
// all edges spans none, so where the heights of `inner` reach beyond those of `outer`, its lowest
// or highest point is outside.
bool containsAll(const Ring& outer, const Ring& inner) {
  if (inner.count == 0) return true;
  if (inner.box.yMin < outer.box.yMin || inner.box.yMax >= outer.box.yMax) return false;
  for (std::size_t k = 0; k < inner.count; ++k)
    if (!contains(outer, {inner.x[k], inner.y[k]})) return false;
  return true;
}

}  // namespace

RingScratch::RingScratch(std::size_t largest)
    : endX(padded(largest), NotANumber),
      endY(padded(largest), NotANumber),
      firstEdges(padded(largest)),
      secondEdges(padded(largest)),
      ax(padded(largest), NotANumber),
      ay(padded(largest), NotANumber),
      bx(padded(largest), NotANumber),
      by(padded(largest), NotANumber) {}

bool containsPoint(const std::vector<Vec2>& polygon, Vec2 point) {
  Rings rings;
  rings.add(polygon);
  return contains(rings[0], point);
}

LUMIVANE_LANES int meetingOf(const Ring& first, const Ring& second, RingScratch& scratch) {
  if (edgesCross(first, second, scratch)) return Meeting::EdgesCrossing;
  if (containsAll(second, first)) return Meeting::FirstInSecond;
  if (containsAll(first, second)) return Meeting::SecondInFirst;
  return Meeting::None;
}

int meetingOf(const std::vector<Vec2>& first, const std::vector<Vec2>& second) {
  Rings rings;
  rings.add(first);
  rings.add(second);
  RingScratch scratch(rings.largest());
  return meetingOf(rings[0], rings[1], scratch);
}

}  // namespace Lumivane::Kernel
