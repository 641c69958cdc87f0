// The tests of two polygons of the picture, over the flat arrays of Rings.h. No step allocates.
//
// Whether edges cross: an edge whose line leaves the whole other polygon on one side is passed over
// (see isBesideLine); if that goes for all edges of one polygon, nothing crosses. Of the polygon
// with fewer edges left, each is tested against all edges of the other, and one crossing settles
// the question. It is nearly always found at an edge near the other polygon, so those come first;
// the rest is tested all the same, since rounding lets pieces of one line cross from afar.

#include "kernel/Polygon2.h"

#include "kernel/Lanes.h"

#include <algorithm>
#include <cstdint>

namespace Lumivane::Kernel {
namespace {

constexpr std::size_t WordBits = 64;

// The edges of a polygon as arrays of their ends, readable to a whole group of lanes.
struct Edges {
  const double* ax;
  const double* ay;
  const double* bx;
  const double* by;
  std::size_t count;

  Segment operator[](std::size_t k) const { return {{ax[k], ay[k]}, {bx[k], by[k]}}; }
};

Edges edgesOf(const Ring& ring) { return {ring.x, ring.y, ring.x + 1, ring.y + 1, ring.count}; }

// The lowest `count` bits of a word, or all.
std::uint64_t lowBits(std::size_t count) {
  return count < WordBits ? (std::uint64_t{1} << count) - 1 : ~std::uint64_t{0};
}

// One bit for each of `count` positions, a word full at most, that a test holds for. The test is
// run up to a whole group of lanes.
template <class Test>
std::uint64_t bitsOf(std::size_t count, Test test) {
  std::uint64_t bits = 0;
  for (std::size_t k = 0; k < padded(count); ++k) {
    const std::uint64_t bit = test(k) ? 1 : 0;
    bits |= bit << k;
  }
  return bits & lowBits(count);
}

// Calls `visit` for the position of each bit that is set, ascending, until it says true; gives
// whether it did.
template <class Visit>
bool anyOf(std::uint64_t bits, Visit visit) {
  for (; bits != 0; bits &= bits - 1)
    if (visit(static_cast<std::size_t>(__builtin_ctzll(bits)))) return true;
  return false;
}

// Sets a bit for each edge that may cross something in the box; gives how many do.
std::size_t markCrossing(const Edges& edges, const Box& box, std::uint64_t* words) {
  std::size_t marked = 0;
  for (std::size_t base = 0; base < edges.count; base += WordBits) {
    const std::uint64_t bits = bitsOf(std::min(WordBits, edges.count - base), [&](std::size_t k) {
      return !isBesideLine(box, edges[base + k]);
    });
    words[base / WordBits] = bits;
    marked += static_cast<std::size_t>(__builtin_popcountll(bits));
  }
  return marked;
}

bool isNear(const Box& box, const Segment& edge) {
  return boxesMeet(box, {std::min(edge.start.x, edge.end.x), std::max(edge.start.x, edge.end.x),
                         std::min(edge.start.y, edge.end.y), std::max(edge.start.y, edge.end.y)});
}

bool crossesAny(const Segment& edge, const Edges& others) {
  std::int64_t crosses = 0;
  for (std::size_t k = 0; k < padded(others.count); ++k) {
    const Segment other = others[k];
    crosses |= segmentsCross(edge.start, edge.end, other.start, other.end) ? 1 : 0;
  }
  return crosses != 0;
}

// Whether a marked edge of a polygon crosses any of the other polygon, whose bounds are given.
bool anyCrosses(const Edges& edges, const std::uint64_t* words, const Edges& others,
                const Box& box) {
  for (std::size_t base = 0; base < edges.count; base += WordBits) {
    const std::uint64_t marked = words[base / WordBits];
    if (marked == 0) continue;
    const std::uint64_t near =
        marked & bitsOf(std::min(WordBits, edges.count - base),
                        [&](std::size_t k) { return isNear(box, edges[base + k]); });
    const auto crosses = [&](std::size_t k) { return crossesAny(edges[base + k], others); };
    if (anyOf(near, crosses) || anyOf(marked & ~near, crosses)) return true;
  }
  return false;
}

bool edgesCross(const Ring& first, const Ring& second, RingScratch& scratch) {
  if (first.count == 0 || second.count == 0) return false;
  const Edges ofFirst = edgesOf(first);
  const std::size_t firstCount = markCrossing(ofFirst, second.box, scratch.ofFirst.data());
  if (firstCount == 0) return false;
  const Edges ofSecond = edgesOf(second);
  const std::size_t secondCount = markCrossing(ofSecond, first.box, scratch.ofSecond.data());
  if (secondCount == 0) return false;
  return firstCount < secondCount
             ? anyCrosses(ofFirst, scratch.ofFirst.data(), ofSecond, second.box)
             : anyCrosses(ofSecond, scratch.ofSecond.data(), ofFirst, first.box);
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

// Whether `outer` contains `count` points, a word full at most: the rule edge by edge, with one bit
// for each point. Edges at heights that the box around the points does not have are left out.
bool containsPoints(const Ring& outer, const Box& box, const double* x, const double* y,
                    std::size_t count) {
  std::uint64_t inside = 0;
  for (std::size_t base = 0; base < outer.count; base += WordBits) {
    const double* const edgeX = outer.x + base;
    const double* const edgeY = outer.y + base;
    const std::uint64_t spanned =
        bitsOf(std::min(WordBits, outer.count - base), [&](std::size_t k) {
          const double low = std::min(edgeY[k], edgeY[k + 1]);
          const double high = std::max(edgeY[k], edgeY[k + 1]);
          return (low <= box.yMax) & (high > box.yMin);
        });
    anyOf(spanned, [&](std::size_t edge) {
      const Vec2 previous{edgeX[edge], edgeY[edge]};
      const Vec2 current{edgeX[edge + 1], edgeY[edge + 1]};
      inside ^= bitsOf(count, [&](std::size_t k) {
        return isRightOfEdge(previous, current, {x[k], y[k]});
      });
      return false;
    });
  }
  return inside == lowBits(count);
}

// Whether `outer` contains every point of `inner`; true if there is none. Most pairs are separated
// by their heights - below and above all edges there is no inside - or by the first point.
bool containsAll(const Ring& outer, const Ring& inner) {
  if (inner.count == 0) return true;
  if (inner.box.yMin < outer.box.yMin || inner.box.yMax >= outer.box.yMax) return false;
  if (!contains(outer, {inner.x[0], inner.y[0]})) return false;
  for (std::size_t base = 0; base < inner.count; base += WordBits)
    if (!containsPoints(outer, inner.box, inner.x + base, inner.y + base,
                        std::min(WordBits, inner.count - base)))
      return false;
  return true;
}

}  // namespace

RingScratch::RingScratch(std::size_t largest)
    : ofFirst(padded(largest) / Lanes), ofSecond(padded(largest) / Lanes) {}

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
