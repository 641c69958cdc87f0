// Ends and starts of pieces are sorted by height and matched from left to right: along a level line
// this is the match with the least gaps. A gap along a level line has no area by Green's theorem,
// which the sweep sums up by heights, so that the lines enclose what the sweep has measured.

#include "measure/AreaOutlines.h"

#include "kernel/Planar.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

namespace Lumivane::Measure {
namespace {

using Kernel::Vec2;
using Ring = std::vector<Vec2>;
using Places = std::vector<std::size_t>;  // of pieces

constexpr double FarApart = 1e-9;    // more than what rounding misplaces a crossing by
constexpr double OnePlace = 1e-13;   // nearer points of a line are one
constexpr double LeastArea = 1e-15;  // a line around less is one of rounding

class Joiner {
 public:
  explicit Joiner(const std::vector<BorderPiece>& borderPieces)
      : pieces(borderPieces), nexts(pieces.size(), 0) {
    match();
  }

  std::vector<Ring> rings() const {
    std::vector<Ring> all;
    std::vector<bool> isUsed(pieces.size(), false);
    for (std::size_t first = 0; first < pieces.size(); ++first) {
      Ring ring;
      for (std::size_t at = first; !isUsed[at]; at = nexts[at]) {
        isUsed[at] = true;
        add(ring, pieces[at].from);
        add(ring, pieces[at].to);
      }
      while (ring.size() > 1 && isOnePlace(ring.front(), ring.back())) ring.pop_back();
      if (ring.size() > 2) all.push_back(std::move(ring));
    }
    return all;
  }

 private:
  static bool isOnePlace(Vec2 a, Vec2 b) {
    return std::abs(a.x - b.x) < OnePlace && std::abs(a.y - b.y) < OnePlace;
  }

  static void add(Ring& ring, Vec2 point) {
    if (ring.empty() || !isOnePlace(ring.back(), point)) ring.push_back(point);
  }

  Places sorted(Vec2 BorderPiece::*end) const {
    Places places(pieces.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    std::sort(places.begin(), places.end(), [this, end](std::size_t i, std::size_t k) {
      const Vec2 a = pieces[i].*end;
      const Vec2 b = pieces[k].*end;
      return a.y != b.y ? a.y < b.y : a.x != b.x ? a.x < b.x : i < k;
    });
    return places;
  }

  void match() {
    const Places ends = sorted(&BorderPiece::to);
    const Places starts = sorted(&BorderPiece::from);
    Places looseEnds;
    Places looseStarts;
    std::size_t end = 0;
    std::size_t start = 0;
    while (end < ends.size() || start < starts.size()) {
      const double y = end == ends.size() ? pieces[starts[start]].from.y
                       : start == starts.size()
                           ? pieces[ends[end]].to.y
                           : std::min(pieces[ends[end]].to.y, pieces[starts[start]].from.y);
      std::size_t endStop = end;
      while (endStop < ends.size() && pieces[ends[endStop]].to.y == y) ++endStop;
      std::size_t startStop = start;
      while (startStop < starts.size() && pieces[starts[startStop]].from.y == y) ++startStop;
      const bool isBalanced = endStop - end == startStop - start;
      for (; isBalanced && end < endStop; ++end, ++start) {
        const double gap = std::abs(pieces[ends[end]].to.x - pieces[starts[start]].from.x);
        if (gap > FarApart) break;
        nexts[ends[end]] = starts[start];
      }
      for (; end < endStop; ++end) looseEnds.push_back(ends[end]);
      for (; start < startStop; ++start) looseStarts.push_back(starts[start]);
    }
    for (std::size_t i = 0; i < looseEnds.size(); ++i) nexts[looseEnds[i]] = looseStarts[i];
  }

  const std::vector<BorderPiece>& pieces;
  Places nexts;
};

struct Box {
  Vec2 low;
  Vec2 high;

  bool holds(const Box& other) const {
    return low.x <= other.low.x && low.y <= other.low.y && high.x >= other.high.x &&
           high.y >= other.high.y;
  }
};

Box boxOf(const Ring& ring) {
  Box box{ring.front(), ring.front()};
  for (const Vec2 p : ring) {
    box.low = {std::min(box.low.x, p.x), std::min(box.low.y, p.y)};
    box.high = {std::max(box.high.x, p.x), std::max(box.high.y, p.y)};
  }
  return box;
}

double areaOf(const Ring& ring) {
  return 0.5 * Kernel::twiceArea(ring.size(), [&ring](std::size_t i) { return ring[i]; });
}

// A hole may touch what it is cut out of in a corner, but hardly in the middle of its longest
// piece.
Vec2 surePoint(const Ring& ring) {
  Vec2 point = ring.front();
  double longest = -1.0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const Vec2 a = ring[i];
    const Vec2 b = ring[(i + 1) % ring.size()];
    const double length = Kernel::length2(b - a);
    if (length <= longest) continue;
    longest = length;
    point = {0.5 * (a.x + b.x), 0.5 * (a.y + b.y)};
  }
  return point;
}

bool isIn(Vec2 point, const Ring& ring) {
  return Kernel::isInOutline(ring.size(), point, [&ring](std::size_t i) { return ring[i]; });
}

struct Outer {
  Ring ring;
  double area;
  Box box;
  std::vector<Ring> holes;
};

// The smallest one around the hole; where rounding has it that there is none, the largest of all.
Outer& outerOf(const Ring& hole, std::vector<Outer>& outers) {
  const Box box = boxOf(hole);
  const Vec2 point = surePoint(hole);
  Outer* found = nullptr;
  Outer* largest = &outers.front();
  for (Outer& outer : outers) {
    if (outer.area > largest->area) largest = &outer;
    const bool isSmaller = found == nullptr || outer.area < found->area;
    if (isSmaller && outer.box.holds(box) && isIn(point, outer.ring)) found = &outer;
  }
  return found != nullptr ? *found : *largest;
}

}  // namespace

std::vector<OutlinedArea> outlinedAreas(const std::vector<BorderPiece>& pieces) {
  std::vector<Outer> outers;
  std::vector<Ring> holes;
  for (Ring& ring : Joiner(pieces).rings()) {
    const double area = areaOf(ring);
    if (area > LeastArea) {
      const Box box = boxOf(ring);
      outers.push_back({std::move(ring), area, box, {}});
    } else if (area < -LeastArea) {
      holes.push_back(std::move(ring));
    }
  }
  if (outers.empty()) return {};
  for (Ring& hole : holes) outerOf(hole, outers).holes.push_back(std::move(hole));
  std::vector<OutlinedArea> areas;
  areas.reserve(outers.size());
  for (Outer& outer : outers) {
    OutlinedArea one{outer.area, {}};
    one.rings.push_back(std::move(outer.ring));
    for (Ring& hole : outer.holes) {
      one.area += areaOf(hole);
      one.rings.push_back(std::move(hole));
    }
    if (one.area > LeastArea) areas.push_back(std::move(one));
  }
  return areas;
}

}  // namespace Lumivane::Measure
