#include "measure/VisibleArrangement.h"

#include "measure/Tile.h"

#include <algorithm>
#include <deque>
#include <utility>

// Divides the picture into tiles until few edges are left in each, then sweeps the tiles. The
// limits below weigh both costs.
namespace Lumivane::Measure {
namespace {

// A tile with no more fragments than this is swept. In small tiles edges lie nearly along each
// other, or meet in one point: further parting would only cut them into more pieces, while a sweep
// has few slabs. So the deeper, the more.
size_t fewFragments(size_t depth) {
  constexpr size_t Coarse = 12;
  constexpr size_t Finest = 18;
  double few = 30.0;
  for (size_t i = Coarse; i < std::min(depth, Finest); ++i) few *= 1.4;
  return static_cast<size_t>(few);
}

// Tiles are not parted below this side: what a seam's end is off by then is little more than what
// rounding adds up to. This is where edges end up that all meet in one point.
constexpr double LeastSide = 1e-12;

// Edges that lie on each other stay together in however small a tile: a parting leaves (nearly) all
// of them in both parts. After so many of those a tile is swept as it is.
constexpr int MostVainPartings = 2;

class Arrangement {
 public:
  Arrangement(const std::vector<SweepEdge>& theEdges, const ContourRule& rule,
              RegionNumber theLastOfFirst = OneSet)
      : lastOfFirst(theLastOfFirst), parter(theEdges), sweeper(theEdges, rule, theLastOfFirst) {}

  void sweep(Tile tile) { visit(tile, 0, 0); }
  const TileSweep& swept() const { return sweeper; }

 private:
  // The tile comes of so many partings. `vain` counts those that left (nearly) all fragments in
  // both parts, since one took some away.
  void visit(Tile& tile, size_t depth, int vain) {
    tile.dropHidden(lastOfFirst);
    const size_t count = tile.fragments.size();
    const bool least = tile.width() < LeastSide && tile.height() < LeastSide;
    if (least) return sweeper.sweepAsOneSlab(tile);
    if (count <= fewFragments(depth) || vain >= MostVainPartings) {
      const double reached = sweeper.sweep(tile);
      if (reached >= tile.top) return;
      if (reached > tile.bottom) tile.cutBelow(reached);
      vain = 0;
    }
    part(tile, depth, vain);
  }

  void part(const Tile& tile, size_t depth, int vain) {
    const size_t count = tile.fragments.size();
    if (parts.size() == depth) parts.emplace_back();
    auto& [first, second] = parts[depth];
    if (tile.width() >= tile.height())
      parter.across(tile, first, second);
    else
      parter.atMiddleHeight(tile, first, second);
    const auto keepsAll = [count](const Tile& part) {
      return 10 * part.fragments.size() > 9 * count;
    };
    const int more = keepsAll(first) && keepsAll(second) ? vain + 1 : vain;
    const int vainFirst = keepsAll(first) ? more : 0;
    const int vainSecond = keepsAll(second) ? more : 0;
    visit(first, depth + 1, vainFirst);
    visit(second, depth + 1, vainSecond);
  }

  RegionNumber lastOfFirst;  // number of a region
  TileParter parter;
  TileSweep sweeper;
  std::deque<std::pair<Tile, Tile>> parts;  // by depth; their memory is used again and again
};

// The whole picture lies in it; its sides and halves are no likely coordinates.
Tile wholeTile(const std::vector<SweepEdge>& edges) {
  Tile tile{-1.4371, 1.4492, -1.4423, 1.4461, 0, 0, {}, {}};
  tile.fragments.reserve(edges.size());
  for (size_t i = 0; i < edges.size(); ++i)
    tile.fragments.push_back(
        {static_cast<int>(i), edges[i].region, edges[i].low.y, edges[i].high.y});
  return tile;
}

}  // namespace

Totals visibleTotals(const std::vector<SweepEdge>& edges, size_t regions, const ContourRule& rule) {
  Totals totals{std::vector<double>(regions + 1, 0.0), std::vector<Content>(regions + 1)};
  Arrangement arrangement(edges, rule);
  arrangement.sweep(wholeTile(edges));
  arrangement.swept().sumUp(totals);
  totals.areas[0] += rule.wholeArea();
  totals.contents[0] += rule.whole();
  return totals;
}

std::vector<SharedArea> sharedAreas(const std::vector<SweepEdge>& edges, RegionNumber lastOfFirst,
                                    const ContourRule& rule, std::vector<Stretch>* stretches) {
  Arrangement arrangement(edges, rule, lastOfFirst);
  arrangement.sweep(wholeTile(edges));
  const std::vector<RegionPairs::Pair>& pairs = arrangement.swept().regionPairs().all();
  Totals totals{std::vector<double>(pairs.size(), 0.0), {}};
  arrangement.swept().sumUp(totals);
  totals.areas[0] += rule.wholeArea();
  std::vector<SharedArea> areas;
  areas.reserve(pairs.size());
  for (size_t i = 0; i < pairs.size(); ++i)
    areas.push_back({pairs[i].first, pairs[i].second, totals.areas[i]});
  if (stretches != nullptr) *stretches = arrangement.swept().stretches();
  return areas;
}

}  // namespace Lumivane::Measure
