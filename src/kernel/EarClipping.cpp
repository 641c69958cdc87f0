// The remaining polygon is a doubly linked list. Clipping an ear changes which of its two
// neighbours are ears and nothing else, so ears wait in a queue by their key, with those that are
// outdated recognised by a count of changes. Corners that may lie in an ear are looked for among
// those in its range of x.
#include "kernel/EarClipping.h"

#include "kernel/Exact.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <queue>
#include <utility>

namespace Lumivane::Kernel {
namespace {

// 1 if c lies on the left of the line from a to b.
int side(Vec2 a, Vec2 b, Vec2 c) {
  return orientation({a.x, a.y, 1.0}, {b.x, b.y, 1.0}, {c.x, c.y, 1.0});
}

double squaredDistance(Vec2 a, Vec2 b) { return dot(b - a, b - a); }

// The tangent of the least angle of a triangle that runs counter-clockwise: that opposite to the
// shortest side, below 60 degrees.
double tangentOfLeastAngle(Vec2 a, Vec2 b, Vec2 c) {
  const double ab = squaredDistance(a, b);
  const double bc = squaredDistance(b, c);
  const double ca = squaredDistance(c, a);
  Vec2 u = b - a;  // of the two sides at that angle
  Vec2 v = c - a;
  if (ab <= bc && ab <= ca) {
    u = a - c;
    v = b - c;
  } else if (ca <= bc) {
    u = c - b;
    v = a - b;
  }
  return (u.x * v.y - u.y * v.x) / dot(u, v);
}

class Clipper {
 public:
  explicit Clipper(const std::vector<Vec2>& outline)
      : points(outline),
        next(outline.size()),
        previous(outline.size()),
        changes(outline.size(), 0),
        byX(outline.size()),
        remaining(outline.size()) {
    for (std::size_t i = 0; i < points.size(); ++i) {
      next[i] = i + 1 < points.size() ? i + 1 : 0;
      previous[next[i]] = i;
    }
    std::iota(byX.begin(), byX.end(), std::size_t{0});
    std::sort(byX.begin(), byX.end(), [this](std::size_t a, std::size_t b) {
      return std::pair(points[a].x, a) < std::pair(points[b].x, b);
    });
  }

  std::vector<CornerTriple> run() {
    queueAll();
    while (remaining > 2) {
      std::size_t corner = takeEar();
      if (corner == points.size()) corner = takeAnother();
      clip(corner);
    }
    return std::move(triangles);
  }

 private:
  struct Ear {
    std::int64_t key;  // greater ones first
    std::size_t corner;
    int change;

    bool operator<(const Ear& other) const {
      return key < other.key || (key == other.key && corner > other.corner);
    }
  };

  enum class Kind { None, Touched, Free };

  void queueAll() {
    for (std::size_t i = 0; i < points.size(); ++i)
      if (isThere(i)) queue(i);
  }

  bool isThere(std::size_t corner) const { return changes[corner] >= 0; }

  void queue(std::size_t corner) {
    ++changes[corner];
    const Kind kind = kindOf(corner);
    if (kind == Kind::None) return;
    constexpr double Steps = 0x1p30;
    const double tangent =
        tangentOfLeastAngle(points[previous[corner]], points[corner], points[next[corner]]);
    const auto key = static_cast<std::int64_t>(std::llround(tangent * Steps));
    constexpr std::int64_t Late = std::int64_t{1} << 40;
    ears.push({kind == Kind::Free ? key : key - Late, corner, changes[corner]});
  }

  // The count of points if there is none.
  std::size_t takeEar() {
    while (!ears.empty()) {
      const Ear ear = ears.top();
      ears.pop();
      if (changes[ear.corner] == ear.change) return ear.corner;
    }
    return points.size();
  }

  // What has been cut off without being an ear may have made ears of others than its neighbours;
  // those are looked for a number of times.
  std::size_t takeAnother() {
    if (searchesLeft > 0) {
      --searchesLeft;
      queueAll();
      const std::size_t corner = takeEar();
      if (corner != points.size()) return corner;
    }
    while (!isThere(lowestLeft)) ++lowestLeft;
    return lowestLeft;
  }

  void clip(std::size_t corner) {
    const std::size_t before = previous[corner];
    const std::size_t after = next[corner];
    triangles.push_back({before, corner, after});
    next[before] = after;
    previous[after] = before;
    changes[corner] = -1;
    --remaining;
    queue(before);
    queue(after);
  }

  Kind kindOf(std::size_t corner) const {
    const std::size_t before = previous[corner];
    const std::size_t after = next[corner];
    const Vec2 a = points[before];
    const Vec2 b = points[corner];
    const Vec2 c = points[after];
    if (side(a, b, c) <= 0) return Kind::None;
    const double lowest = std::min({a.x, b.x, c.x});
    const double highest = std::max({a.x, b.x, c.x});
    Kind kind = Kind::Free;
    auto other = std::lower_bound(byX.begin(), byX.end(), lowest,
                                  [this](std::size_t i, double x) { return points[i].x < x; });
    for (; other != byX.end() && points[*other].x <= highest; ++other) {
      if (*other == before || *other == corner || *other == after || !isThere(*other)) continue;
      kind = std::min(kind, kindWith(*other, a, b, c));
      if (kind == Kind::None) break;
    }
    return kind;
  }

  // What another corner makes of the ear a, b, c.
  Kind kindWith(std::size_t other, Vec2 a, Vec2 b, Vec2 c) const {
    const Vec2 p = points[other];
    if (p.y < std::min({a.y, b.y, c.y}) || p.y > std::max({a.y, b.y, c.y})) return Kind::Free;
    const int ab = side(a, b, p);
    const int bc = side(b, c, p);
    const int ca = side(c, a, p);
    if (ab < 0 || bc < 0 || ca < 0) return Kind::Free;
    if (ab > 0 && bc > 0 && ca > 0) return Kind::None;
    if (entersFrom(other, ab, bc, ca, a, b, c)) return Kind::None;
    return ca == 0 && ab > 0 && bc > 0 ? Kind::Touched : Kind::Free;
  }

  // Whether an edge goes from a corner on the border of the ear into it: on the left of those sides
  // that the corner is on.
  bool entersFrom(std::size_t other, int ab, int bc, int ca, Vec2 a, Vec2 b, Vec2 c) const {
    for (const std::size_t neighbour : {previous[other], next[other]}) {
      const Vec2 q = points[neighbour];
      const bool enters = (ab != 0 || side(a, b, q) > 0) && (bc != 0 || side(b, c, q) > 0) &&
                          (ca != 0 || side(c, a, q) > 0);
      if (enters) return true;
    }
    return false;
  }

  const std::vector<Vec2>& points;
  std::vector<std::size_t> next;
  std::vector<std::size_t> previous;
  std::vector<int> changes;  // of what a corner's ear depends on; -1 for a corner that is clipped
  std::vector<std::size_t> byX;
  std::size_t remaining;
  std::size_t lowestLeft = 0;  // no lower corner is there
  int searchesLeft = 100;
  std::priority_queue<Ear> ears;
  std::vector<CornerTriple> triangles;
};

}  // namespace

std::vector<CornerTriple> clippedEars(const std::vector<Vec2>& outline) {
  if (outline.size() < 3) return {};
  return Clipper(outline).run();
}

}  // namespace Lumivane::Kernel
