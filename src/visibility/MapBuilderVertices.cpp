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
// Room for vertices that divide the end of the field.
constexpr size_t PlacesOnField = 64;

// The first of equal points, in a table with open addressing.
class KnownPoints {
 public:
  KnownPoints(const BlockList<CubePoint>& allPoints, size_t most)
      : points(allPoints), slots(64 + most + most / 2, -1) {}
  /// The number of the first point that was asked for and equals this one.
  int first(int number) {
    const CubePoint& p = points[static_cast<size_t>(number)];
    for (size_t slot = slotOf(p);; slot = slot + 1 == slots.size() ? 0 : slot + 1) {
      if (slots[slot] < 0) slots[slot] = number;
      if (points[static_cast<size_t>(slots[slot])] == p) return slots[slot];
    }
  }

 private:
  size_t slotOf(const CubePoint& p) const {
    std::uint64_t h = 0;
    for (const Coordinate c : p.c) {
      h = (h ^ static_cast<std::uint64_t>(c)) * 0x9E3779B97F4A7C15ull;
      h ^= h >> 29;
    }
    return static_cast<size_t>((h >> 32) * slots.size() >> 32);
  }

  const BlockList<CubePoint>& points;
  LargeVector<int> slots;
};

}  // namespace

using Kernel::Vec3;

void MapBuilder::joinVertices() {
  KnownPoints known(parts.vertices, std::min(2 * parts.pieces.size(), parts.vertices.size()));
  LargeVector<char> asked(parts.vertices.size(), 0);
  const auto ask = [&](int vertex) {
    const auto i = static_cast<size_t>(vertex);
    if (asked[i] != 0) return;
    asked[i] = 1;
    parts.vertexSets.join(known.first(vertex), vertex);
  };
  for (const size_t i : watch.upTo(parts.pieces.size())) {
    ask(parts.pieces[i].from);
    ask(parts.pieces[i].to);
  }
  for (const size_t k : watch.upTo(parts.pieces.size())) {
    const Link& piece = parts.pieces[k];
    if (piece.source() != NoSource) continue;
    const CubePoint& a = parts.vertices[static_cast<size_t>(piece.from)];
    const CubePoint& b = parts.vertices[static_cast<size_t>(piece.to)];
    Coordinate length = 0;
    for (int i = 0; i < 3; ++i) length = std::max(length, std::abs(a.c[i] - b.c[i]));
    if (length <= Tiny) parts.vertexSets.join(piece.from, piece.to);
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
}

// In the place of the pieces.
void MapBuilder::makeLinks() {
  size_t kept = 0;
  for (const size_t i : watch.upTo(parts.pieces.size())) {
    Link link = parts.pieces[i];
    const int left = parts.areaSets.find(link.left);
    const int right = parts.areaSets.find(link.right);
    link.from = parts.vertexSets.find(link.from);
    link.to = parts.vertexSets.find(link.to);
    if (link.from == link.to || left == right) continue;
    link.left = cellOfArea[static_cast<size_t>(left)];
    link.right = cellOfArea[static_cast<size_t>(right)];
    parts.pieces[kept++] = link;
  }
  links = std::move(parts.pieces);
  links.truncate(kept);
  release(parts.areas);
  release(parts.areaSets);
  release(parts.vertexSets);
  release(cellOfArea);
}

// Of the vertices those that links have are left, in their order.
void MapBuilder::numberVertices() {
  constexpr int Unused = -1;
  LargeVector<int> numbers(parts.vertices.size(), Unused);
  for (const size_t i : watch.upTo(links.size()))
    for (const int vertex : {links[i].from, links[i].to}) {
      int& number = numbers[static_cast<size_t>(vertex)];
      if (number == Unused) ++foundVertices;
      number = 0;
    }
  directions.reserve(foundVertices + PlacesOnField);
  for (const size_t i : watch.upTo(numbers.size())) {
    parts.vertices.releaseBefore(i);
    if (numbers[i] == Unused) continue;
    numbers[i] = static_cast<int>(directions.size());
    directions.push_back(directionOf(parts.vertices[i]));
  }
  release(parts.vertices);
  for (const size_t i : watch.upTo(links.size()))
    for (int* vertex : {&links[i].from, &links[i].to})
      *vertex = numbers[static_cast<size_t>(*vertex)];
}

// Around a vertex every cell begins as often as it ends. Where many lines meet within the
// distance that counts as one point, tiles and stops may have settled on different ones: such
// points are joined.
void MapBuilder::closeRings() {
  LargeVector<std::uint64_t> balance(directions.size(), 0);
  // Spread, so that different cells do not cancel each other.
  const auto weight = [](int cell) {
    std::uint64_t h = (static_cast<std::uint64_t>(cell) + 2) * 0x9E3779B97F4A7C15ull;
    h = (h ^ h >> 29) * 0xBF58476D1CE4E5B9ull;
    return h ^ h >> 32;
  };
  for (const size_t i : watch.upTo(links.size())) {
    const Link& link = links[i];
    const std::uint64_t turn = weight(link.left) - weight(link.right);
    balance[static_cast<size_t>(link.from)] += turn;
    balance[static_cast<size_t>(link.to)] -= turn;
  }
  LargeVector<int> open;
  for (size_t i = 0; i < balance.size(); ++i)
    if (balance[i] != 0) open.push_back(static_cast<int>(i));
  if (open.empty()) return;
  isDoubtful = true;
  joinOpen(open, balance);
}

// Joins those of the open vertices that are close to each other.
void MapBuilder::joinOpen(LargeVector<int>& open, LargeVector<std::uint64_t>& balance) {
  JoinedSets sets;
  for (size_t i = 0; i < directions.size(); ++i) sets.add();
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
        sets.join(open[i], open[k]);
        if (fitting) balance[a] = balance[b] = 0;
      }
  size_t kept = 0;
  for (const size_t i : watch.upTo(links.size())) {
    Link link = links[i];
    link.from = sets.find(link.from);
    link.to = sets.find(link.to);
    if (link.from != link.to) links[kept++] = link;
  }
  links.truncate(kept);
}

}  // namespace Lumivane::Visibility
