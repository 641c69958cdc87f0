// The first steps: pieces become links between vertices, with cells on both sides. Vertices that
// several tiles have found are joined, first those that are equal, then those without which the
// rings of some cell would not close.
#include "visibility/MapBuilder.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Lumivane::Visibility {
namespace {

constexpr Coordinate Tiny = 4 * Snap;  // pieces without an edge of the scene that are rounding's
// Distance within which vertices are joined where rings are open.
constexpr double CloseTo = 1e-11;
// The same along a line so steep that the sweep knows heights on it badly.
constexpr double SteepSnap = 4e-9;

// The first of equal points, in a table with open addressing.
class KnownPoints {
 public:
  KnownPoints(const std::vector<CubePoint>& allPoints, size_t most) : points(allPoints) {
    size_t size = 64;
    while (size < 2 * most) size *= 2;
    slots.assign(size, -1);
  }
  /// The number of the first point that was asked for and equals this one.
  int first(int number) {
    const CubePoint& p = points[static_cast<size_t>(number)];
    const size_t mask = slots.size() - 1;
    for (size_t slot = hashOf(p) & mask;; slot = (slot + 1) & mask) {
      if (slots[slot] < 0) slots[slot] = number;
      if (points[static_cast<size_t>(slots[slot])] == p) return slots[slot];
    }
  }

 private:
  static size_t hashOf(const CubePoint& p) {
    std::uint64_t h = 0;
    for (const Coordinate c : p.c) {
      h = (h ^ static_cast<std::uint64_t>(c)) * 0x9E3779B97F4A7C15ull;
      h ^= h >> 29;
    }
    return static_cast<size_t>(h);
  }

  const std::vector<CubePoint>& points;
  std::vector<int> slots;
};

}  // namespace

using Kernel::Vec3;

void MapBuilder::joinVertices() {
  KnownPoints known(parts.vertices, std::min(2 * parts.pieces.size(), parts.vertices.size()));
  std::vector<char> asked(parts.vertices.size(), 0);
  const auto ask = [&](int vertex) {
    const auto i = static_cast<size_t>(vertex);
    if (asked[i] != 0) return;
    asked[i] = 1;
    parts.vertexSets.join(known.first(vertex), vertex);
  };
  for (const Piece& piece : watch.over(parts.pieces)) {
    ask(piece.from);
    ask(piece.to);
  }
  for (const Piece& piece : watch.over(parts.pieces)) {
    if (piece.source != NoSource) continue;
    const CubePoint& a = parts.vertices[static_cast<size_t>(piece.from)];
    const CubePoint& b = parts.vertices[static_cast<size_t>(piece.to)];
    Coordinate length = 0;
    for (int i = 0; i < 3; ++i) length = std::max(length, std::abs(a.c[i] - b.c[i]));
    if (length <= Tiny) parts.vertexSets.join(piece.from, piece.to);
  }
}

void MapBuilder::makeLinks() {
  links.reserve(parts.pieces.size());
  for (const Piece& piece : watch.over(parts.pieces)) {
    const int from = parts.vertexSets.find(piece.from);
    const int to = parts.vertexSets.find(piece.to);
    const int left = parts.areaSets.find(piece.left);
    const int right = parts.areaSets.find(piece.right);
    if (from == to || left == right) continue;
    links.push_back({from, to, left, right, piece.source, piece.inner, piece.shared, false});
  }
}

// By region, the sky last; `orderMap` gives the final numbers.
void MapBuilder::numberCells() {
  cellOfArea.assign(parts.areas.size(), NoCell);
  for (const size_t i : watch.upTo(parts.areas.size())) {
    const int root = parts.areaSets.find(static_cast<int>(i));
    const Area& area = parts.areas[i];
    if (area.region == BeyondRegion) continue;
    int& cell = cellOfArea[static_cast<size_t>(root)];
    if (cell == NoCell) {
      cell = static_cast<int>(found.size());
      found.push_back({area.region, area.polygon, false, cell});
    }
    Found& f = found[static_cast<size_t>(cell)];
    if (area.polygon != f.polygon) f.several = true;
  }
  for (Link& link : watch.over(links)) {
    link.left = cellOfArea[static_cast<size_t>(link.left)];
    link.right = cellOfArea[static_cast<size_t>(link.right)];
  }
  directions.resize(parts.vertices.size());
  for (const Link& link : watch.over(links))
    for (const int vertex : {link.from, link.to}) {
      Vec3& d = directions[static_cast<size_t>(vertex)];
      if (d == Vec3{}) d = directionOf(parts.vertices[static_cast<size_t>(vertex)]);
    }
}

// Around a vertex every cell begins as often as it ends. Where many lines meet within the
// distance that counts as one point, tiles and stops may have settled on different ones: such
// points are joined.
void MapBuilder::closeRings() {
  std::vector<std::uint64_t> balance(parts.vertices.size(), 0);
  // Spread, so that different cells do not cancel each other.
  const auto weight = [](int cell) {
    std::uint64_t h = (static_cast<std::uint64_t>(cell) + 2) * 0x9E3779B97F4A7C15ull;
    h = (h ^ h >> 29) * 0xBF58476D1CE4E5B9ull;
    return h ^ h >> 32;
  };
  for (const Link& link : watch.over(links)) {
    const std::uint64_t turn = weight(link.left) - weight(link.right);
    balance[static_cast<size_t>(link.from)] += turn;
    balance[static_cast<size_t>(link.to)] -= turn;
  }
  std::vector<int> open;
  for (size_t i = 0; i < balance.size(); ++i)
    if (balance[i] != 0) open.push_back(static_cast<int>(i));
  if (open.empty()) return;
  std::sort(open.begin(), open.end(), [this](int a, int b) {
    return directions[static_cast<size_t>(a)].x < directions[static_cast<size_t>(b)].x;
  });
  // First what fits together, then what is left over and close.
  for (const bool fitting : {true, false})
    for (const size_t i : watch.upTo(open.size()))
      for (size_t k = i + 1; k < open.size(); ++k) {
        const auto a = static_cast<size_t>(open[i]);
        const auto b = static_cast<size_t>(open[k]);
        if (directions[b].x - directions[a].x > SteepSnap) break;
        const double apart = Kernel::distance(directions[a], directions[b]);
        if (fitting ? apart > SteepSnap || balance[a] == 0 || balance[a] + balance[b] != 0
                    : apart > CloseTo || balance[a] == 0 || balance[b] == 0)
          continue;
        parts.vertexSets.join(open[i], open[k]);
        if (fitting) balance[a] = balance[b] = 0;
      }
  size_t kept = 0;
  for (Link link : watch.over(links)) {
    link.from = parts.vertexSets.find(link.from);
    link.to = parts.vertexSets.find(link.to);
    if (link.from != link.to) links[kept++] = link;
  }
  links.resize(kept);
}

}  // namespace Lumivane::Visibility
