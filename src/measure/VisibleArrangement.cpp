#include "measure/VisibleArrangement.h"

#include "measure/Tile.h"

#include <algorithm>
#include <utility>

namespace Lumivane::Measure {
namespace {

// A tile with no more fragments than this is swept. In small tiles edges lie nearly along each
// other, or meet in one point: further parting would only cut them into more pieces, while a sweep
// has few slabs. So the deeper, the more.
size_t fewFragments(int depth) {
  constexpr int Coarse = 12;
  constexpr int Finest = 18;
  double few = 30.0;
  for (int i = Coarse; i < std::min(depth, Finest); ++i) few *= 1.4;
  return static_cast<size_t>(few);
}

// Tiles are not parted below this side: the area of one is less than rounding adds up to. This is
// where edges end up that all meet in one point.
constexpr double LeastSide = 1e-9;

// Edges that lie on each other stay together in however small a tile: a parting leaves (nearly) all
// of them in both parts. After so many of those a tile is swept as it is.
constexpr int MostVainPartings = 2;

class Arrangement {
 public:
  Arrangement(const std::vector<SweepEdge>& theEdges, const ContourRule& rule, Totals& totals)
      : edges(theEdges), sweeper(theEdges, rule, totals) {}

  // The tile comes of so many partings. `vain` counts those that left (nearly) all fragments in
  // both parts, since one took some away.
  void visit(Tile tile, int depth, int vain) {
    tile.dropHidden(edges);
    const size_t count = tile.fragments.size();
    const bool least = tile.width() < LeastSide && tile.height() < LeastSide;
    if (least) return sweeper.sweepAsOneSlab(tile);
    if (count <= fewFragments(depth) || vain >= MostVainPartings) {
      const double reached = sweeper.sweep(tile);
      if (reached >= tile.top) return;
      if (reached > tile.bottom) tile = tile.partedAtHeight(reached).second;
      vain = 0;
    }
    part(std::move(tile), depth, vain);
  }

 private:
  void part(Tile tile, int depth, int vain) {
    const size_t count = tile.fragments.size();
    auto [first, second] = tile.width() >= tile.height()
                               ? tile.partedAcross(edges)
                               : tile.partedAtHeight(0.5 * (tile.bottom + tile.top));
    tile = Tile();
    const auto keepsAll = [count](const Tile& part) {
      return 10 * part.fragments.size() > 9 * count;
    };
    const int more = keepsAll(first) && keepsAll(second) ? vain + 1 : vain;
    const int vainFirst = keepsAll(first) ? more : 0;
    const int vainSecond = keepsAll(second) ? more : 0;
    visit(std::move(first), depth + 1, vainFirst);
    visit(std::move(second), depth + 1, vainSecond);
  }

  const std::vector<SweepEdge>& edges;
  TileSweep sweeper;
};

// The whole picture lies in it; its sides and halves are no likely coordinates.
Tile wholeTile(const std::vector<SweepEdge>& edges) {
  Tile tile{-1.4371, 1.4492, -1.4423, 1.4461, 0, {}, {}};
  for (size_t i = 0; i < edges.size(); ++i)
    tile.fragments.push_back({static_cast<int>(i), edges[i].low.y, edges[i].high.y});
  return tile;
}

}  // namespace

Totals visibleTotals(const std::vector<SweepEdge>& edges, size_t regions, const ContourRule& rule) {
  Totals totals{std::vector<double>(regions + 1, 0.0), std::vector<Content>(regions + 1)};
  const Tile tile = wholeTile(edges);
  Arrangement(edges, rule, totals).visit(tile, 0, 0);
  totals.areas[0] -= tile.width() * tile.height() - rule.wholeArea();
  totals.contents[0] += rule.whole();
  return totals;
}

}  // namespace Lumivane::Measure
