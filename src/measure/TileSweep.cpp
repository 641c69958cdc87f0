// A sweep by level lines over the fragments of edges in a tile. Most slabs change nothing but that
// outlines go on from one edge to the next; those are found first, and cost a look at each edge.

#include "measure/TileSweep.h"

#include "measure/SortNearlySorted.h"

#include <cstddef>
#include <functional>

namespace Lumivane::Measure {
namespace {

// Steps after which the rest of a tile is better parted. Edges that do not cross have two slabs
// each; a sweep of n edges that all cross would take n^3 steps, where parting takes n^2.
size_t mostSteps(const Tile& tile) {
  return 4 * tile.fragments.size() * tile.fragments.size() + 2000;
}

}  // namespace

TileSweep::TileSweep(const std::vector<SweepEdge>& theEdges, const ContourRule& rule,
                     RegionNumber lastOfFirst)
    : edges(theEdges), intervals(lastOfFirst), active(theEdges), sums(theEdges, rule) {}

double TileSweep::sweep(const Tile& tile) {
  enter(tile);
  double reached = tile.bottom;
  size_t steps = 0;
  for (size_t i = 0; i + 1 < heights.size(); ++i) {
    const double y0 = heights[i];
    const double y1 = heights[i + 1];
    if (onlyGoesOn(y0, y1)) {
      steps += active.all().size();
      reached = y1;
      continue;
    }
    active.activate(y0, y1, [this](int fragment, double y) { close(fragment, y); });
    crossings.clear();
    if (!active.inOrder()) active.findCrossings(y0, y1, mostSteps(tile), crossings);
    steps += (crossings.size() + 1) * active.all().size();
    if (steps > mostSteps(tile)) break;

    double from = y0;
    for (const double y : crossings) {
      active.reachUpTo(y);
      sweepSlab(from, y);
      active.goOn();
      from = y;
    }
    if (!crossings.empty()) active.reachUpTo(y1);
    sweepSlab(from, y1);
    reached = y1;
  }
  closeAll(reached);
  return reached;
}

void TileSweep::sweepAsOneSlab(const Tile& tile) {
  enter(tile);
  active.activateMiddle();
  sweepSlab(tile.bottom, tile.top);
  closeAll(tile.top);
}

void TileSweep::enter(const Tile& tile) {
  intervals.enter(tile);
  active.enter(tile, intervals.placesOfFragments());
  findHeights(tile);
  lanes.clear();
  open.assign(tile.fragments.size(), Boundary());
}

// All lower ends are in order already. Most upper ends are the lower one of the fragment before or
// after, where an outline goes on, or the tile's top.
void TileSweep::findHeights(const Tile& tile) {
  const std::vector<Fragment>& all = tile.fragments;
  std::vector<double>& others = crossings;  // its memory serves here
  others.clear();
  for (size_t i = 0; i < all.size(); ++i) {
    const double high = all[i].high;
    const bool goesOn =
        (i > 0 && all[i - 1].low == high) || (i + 1 < all.size() && all[i + 1].low == high);
    if (!goesOn && high != tile.top) others.push_back(high);
  }
  for (const Cover& c : tile.covers) {
    if (c.low != tile.bottom) others.push_back(c.low);
    if (c.high != tile.top) others.push_back(c.high);
  }
  sortNearlySorted(others, std::less<double>());
  heights.clear();
  heights.push_back(tile.bottom);
  const auto add = [this](double y) {
    if (y != heights.back()) heights.push_back(y);
  };
  auto other = others.begin();
  for (const ActiveEdges::Start& start : active.starts()) {
    for (; other != others.end() && *other < start.low; ++other) add(*other);
    add(start.low);
  }
  for (; other != others.end(); ++other) add(*other);
  add(tile.top);
}

// Most slabs are such. Else nothing is changed.
bool TileSweep::onlyGoesOn(double y0, double y1) {
  if (lanes.empty() || lanes.size() != active.all().size()) return false;
  if (!active.findNexts(y0, y1) || intervals.coversChange(y0)) {
    active.forgetNexts();
    return false;
  }
  for (size_t i = 0; i < lanes.size(); ++i) {
    const int fragment = active.all()[i].fragment;
    if (!active.takeNext(i)) continue;
    close(fragment, y0);
    bound(active.all()[i], lanes[i], y0);
  }
  return true;
}

void TileSweep::sweepSlab(double y0, double y1) {
  intervals.begin(0.5 * (y0 + y1));
  lanes.clear();
  RegionNumber left = intervals.topmost();
  for (const ActiveEdges::Active& edge : active.all()) {
    intervals.cross(edge.place, edge.edge->winding);
    const RegionNumber right = intervals.topmost();
    lanes.push_back({left, right});
    bound(edge, lanes.back(), y0);
    left = right;
  }
}

// From this height on the fragment has these regions on its sides.
void TileSweep::bound(const ActiveEdges::Active& edge, Lane lane, double y) {
  Boundary& boundary = open[static_cast<size_t>(edge.fragment)];
  if (boundary.left == lane.left && boundary.right == lane.right) return;
  close(edge.fragment, y);
  if (lane.left != lane.right)
    boundary = {static_cast<int>(edge.edge - edges.data()), lane.left, lane.right, y, y};
}

void TileSweep::close(int fragment, double y) {
  Boundary& boundary = open[static_cast<size_t>(fragment)];
  if (!boundary.exists()) return;
  boundary.y1 = y;
  sums.add(boundary);
  boundary.left = Boundary::None;
}

void TileSweep::closeAll(double y) {
  for (const ActiveEdges::Active& edge : active.all()) close(edge.fragment, y);
}

}  // namespace Lumivane::Measure
