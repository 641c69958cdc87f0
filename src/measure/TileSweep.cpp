#include "measure/TileSweep.h"

#include <algorithm>
#include <utility>

namespace Lumivane::Measure {
namespace {

// Steps after which the rest of a tile is better parted. Edges that do not cross have two slabs
// each; a sweep of n edges that all cross would take n^3 steps, where parting takes n^2.
size_t mostSteps(const Tile& tile) {
  return 4 * tile.fragments.size() * tile.fragments.size() + 2000;
}

void sortUnique(std::vector<double>& values) {
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
}

// How much of the sliver between a chord and its arc lies before the share t of the chord: the
// sliver is as wide as t (1 - t), to the first order.
double sliverBefore(double t) { return t * t * (3.0 - 2.0 * t); }

}  // namespace

TileSweep::TileSweep(const std::vector<SweepEdge>& theEdges, const ContourRule& theRule,
                     Totals& theTotals)
    : edges(theEdges),
      rule(theRule),
      totals(theTotals),
      bulges(theEdges.size()),
      bulgeIsKnown(theEdges.size(), 0) {}

double TileSweep::sweep(const Tile& tile) {
  enter(tile);
  double reached = tile.bottom;
  size_t steps = 0;
  for (size_t i = 0; i + 1 < heights.size(); ++i) {
    const double y0 = heights[i];
    const double y1 = heights[i + 1];
    gather(tile, y0, y1);
    crossings.clear();
    if (!inOrder()) findCrossings(y0, y1, mostSteps(tile));
    steps += (crossings.size() + 1) * actives.size();
    if (steps > mostSteps(tile)) break;

    double from = y0;
    for (const double y : crossings) {
      placeActives(tile, from, y);
      sweepSlab(tile, from, y);
      from = y;
    }
    if (!crossings.empty()) placeActives(tile, from, y1);
    sweepSlab(tile, from, y1);
    reached = y1;
  }
  for (size_t i = 0; i < seams.size(); ++i) close(i);
  return reached;
}

void TileSweep::sweepAsOneSlab(const Tile& tile) {
  enter(tile);
  const double middle = 0.5 * (tile.bottom + tile.top);
  gather(tile, middle, middle);
  placeActives(tile, tile.bottom, tile.top);
  sweepSlab(tile, tile.bottom, tile.top);
  for (size_t i = 0; i < seams.size(); ++i) close(i);
}

void TileSweep::enter(const Tile& tile) {
  base = tile.base;
  locals.clear();
  heights = {tile.bottom, tile.top};
  for (const Fragment& f : tile.fragments) {
    locals.push_back({edges[static_cast<size_t>(f.edge)].region, 0});
    heights.push_back(f.low);
    heights.push_back(f.high);
  }
  for (const Cover& c : tile.covers) {
    locals.push_back({c.region, 0});
    heights.push_back(c.low);
    heights.push_back(c.high);
  }
  sortUnique(heights);
  const auto before = [](const Local& a, const Local& b) { return a.region < b.region; };
  const auto same = [](const Local& a, const Local& b) { return a.region == b.region; };
  std::sort(locals.begin(), locals.end(), before);
  locals.erase(std::unique(locals.begin(), locals.end(), same), locals.end());

  fragmentLocals.clear();
  for (const Fragment& f : tile.fragments)
    fragmentLocals.push_back(localOf(edges[static_cast<size_t>(f.edge)].region));
  seams.assign(tile.fragments.size(), Seam());
}

size_t TileSweep::localOf(RegionNumber region) const {
  const auto before = [](const Local& a, RegionNumber b) { return a.region < b; };
  return static_cast<size_t>(std::lower_bound(locals.begin(), locals.end(), region, before) -
                             locals.begin());
}

void TileSweep::gather(const Tile& tile, double y0, double y1) {
  actives.clear();
  for (size_t i = 0; i < tile.fragments.size(); ++i)
    if (tile.fragments[i].low <= y0 && tile.fragments[i].high >= y1) actives.push_back({i, 0, 0});
  placeActives(tile, y0, y1);
}

void TileSweep::placeActives(const Tile& tile, double y0, double y1) {
  for (Active& active : actives) {
    const SweepEdge& edge = edges[static_cast<size_t>(tile.fragments[active.fragment].edge)];
    active.x0 = std::clamp(edge.xAt(y0), tile.left, tile.right);
    active.x1 = std::clamp(edge.xAt(y1), tile.left, tile.right);
  }
  std::sort(actives.begin(), actives.end(), [](const Active& a, const Active& b) {
    return a.middle() != b.middle() ? a.middle() < b.middle() : a.fragment < b.fragment;
  });
}

bool TileSweep::inOrder() const {
  for (size_t i = 1; i < actives.size(); ++i)
    if (actives[i].x0 < actives[i - 1].x0 || actives[i].x1 < actives[i - 1].x1) return false;
  return true;
}

// Edges in the order of the middle height are brought into that of the slab's bottom, and of its
// top, by swaps of neighbours: each swaps two that cross. So the work grows with the crossings.
void TileSweep::findCrossings(double y0, double y1, size_t most) {
  const auto cross = [this, y0, y1](const Active& left, const Active& right) {
    const double below = right.x0 - left.x0;
    const double above = right.x1 - left.x1;
    const double y = y0 + (y1 - y0) * (below / (below - above));
    if (y > y0 && y < y1) crossings.push_back(y);
  };
  for (double Active::*const end : {&Active::x0, &Active::x1}) {
    swapped = actives;
    for (size_t i = 1; i < swapped.size() && crossings.size() <= most; ++i) {
      for (size_t k = i; k > 0 && swapped[k].*end < swapped[k - 1].*end; --k) {
        cross(swapped[k - 1], swapped[k]);
        std::swap(swapped[k - 1], swapped[k]);
      }
    }
  }
  sortUnique(crossings);
}

void TileSweep::setCovers(const Tile& tile, double y) {
  for (Local& local : locals) local.winding = 0;
  for (const Cover& c : tile.covers)
    if (c.low <= y && c.high > y) locals[localOf(c.region)].winding += c.winding;
  topLocal = static_cast<int>(locals.size()) - 1;
  while (topLocal >= 0 && locals[static_cast<size_t>(topLocal)].winding == 0) --topLocal;
}

void TileSweep::change(size_t local, int winding) {
  locals[local].winding += winding;
  topLocal = std::max(topLocal, static_cast<int>(local));
  while (topLocal >= 0 && locals[static_cast<size_t>(topLocal)].winding == 0) --topLocal;
}

void TileSweep::sweepSlab(const Tile& tile, double y0, double y1) {
  setCovers(tile, 0.5 * (y0 + y1));
  double from = 2.0 * tile.left;  // twice the mean x at which the stretch begins
  for (const Active& active : actives) {
    const RegionNumber left = topmost();
    const int edge = tile.fragments[active.fragment].edge;
    change(fragmentLocals[active.fragment], edges[static_cast<size_t>(edge)].winding);
    const RegionNumber right = topmost();
    if (left == right) continue;
    addArea(left, active.middle() - from, y1 - y0);
    addSeam(active.fragment, edge, left, right, y0, y1);
    from = active.middle();
  }
  addArea(topmost(), 2.0 * tile.right - from, y1 - y0);
}

void TileSweep::addArea(RegionNumber region, double twiceWidth, double height) {
  totals.areas[static_cast<size_t>(region)] += 0.5 * twiceWidth * height;
}

void TileSweep::addSeam(size_t fragment, int edge, RegionNumber left, RegionNumber right, double y0,
                        double y1) {
  Seam& seam = seams[fragment];
  if (seam.left == left && seam.right == right && seam.y1 == y0) {
    seam.y1 = y1;
    return;
  }
  close(fragment);
  seam = {edge, left, right, y0, y1};
}

void TileSweep::close(size_t fragment) {
  const Seam& seam = seams[fragment];
  if (seam.left < 0) return;
  const SweepEdge& edge = edges[static_cast<size_t>(seam.edge)];
  const double height = edge.high.y - edge.low.y;
  const double sliver =
      sliverBefore((seam.y1 - edge.low.y) / height) - sliverBefore((seam.y0 - edge.low.y) / height);
  Content content = rule.piece(edge, seam.y0, seam.y1);
  content += sliver * bulge(seam.edge);
  totals.contents[static_cast<size_t>(seam.left)] += content;
  totals.contents[static_cast<size_t>(seam.right)] -= content;
}

const Content& TileSweep::bulge(int edge) {
  const auto index = static_cast<size_t>(edge);
  if (bulgeIsKnown[index] == 0) {
    bulges[index] = rule.bulge(edges[index]);
    bulgeIsKnown[index] = 1;
  }
  return bulges[index];
}

}  // namespace Lumivane::Measure
