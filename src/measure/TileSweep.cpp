#include "measure/TileSweep.h"

#include <algorithm>
#include <cmath>
#include <functional>
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

// By insertion as long as there are few.
template <class Value, class Before>
void sortNearlySorted(std::vector<Value>& values, Before before) {
  constexpr size_t Few = 60;
  if (values.size() > Few) return std::sort(values.begin(), values.end(), before);
  for (size_t i = 1; i < values.size(); ++i) {
    if (!before(values[i], values[i - 1])) continue;
    const Value moved = values[i];
    size_t k = i;
    for (; k > 0 && before(moved, values[k - 1]); --k) values[k] = values[k - 1];
    values[k] = moved;
  }
}

// How much of the sliver between a chord and its arc lies before the share t of the chord: the
// sliver is as wide as t (1 - t), to the first order.
double sliverBefore(double t) { return t * t * (3.0 - 2.0 * t); }

}  // namespace

RegionNumber RegionPairs::numberOf(RegionNumber first, RegionNumber second) {
  const Pair& pair = pairs[static_cast<size_t>(latest)];
  if (pair.first == first && pair.second == second) return latest;
  const std::uint64_t key =
      static_cast<std::uint64_t>(first) << 32U | static_cast<unsigned>(second);
  const auto [found, isNew] = numbers.try_emplace(key, static_cast<RegionNumber>(pairs.size()));
  if (isNew) pairs.push_back({first, second});
  return latest = found->second;
}

TileSweep::TileSweep(const std::vector<SweepEdge>& theEdges, const ContourRule& theRule,
                     RegionNumber theLastOfFirst)
    : edges(theEdges), rule(theRule), lastOfFirst(theLastOfFirst) {
  closed.reserve(edges.size());
}

double TileSweep::sweep(const Tile& tile) {
  enter(tile);
  double reached = tile.bottom;
  size_t steps = 0;
  for (size_t i = 0; i + 1 < heights.size(); ++i) {
    const double y0 = heights[i];
    const double y1 = heights[i + 1];
    if (onlyGoesOn(tile, y0, y1)) {
      steps += actives.size();
      reached = y1;
      continue;
    }
    activate(tile, y0, y1);
    crossings.clear();
    if (!inOrder()) findCrossings(y0, y1, mostSteps(tile));
    steps += (crossings.size() + 1) * actives.size();
    if (steps > mostSteps(tile)) break;

    double from = y0;
    for (const double y : crossings) {
      reachUpTo(y);
      sweepSlab(tile, from, y);
      goOn();
      from = y;
    }
    if (!crossings.empty()) reachUpTo(y1);
    sweepSlab(tile, from, y1);
    reached = y1;
  }
  closeSeams(reached);
  return reached;
}

void TileSweep::sweepAsOneSlab(const Tile& tile) {
  enter(tile);
  const double middle = 0.5 * (tile.bottom + tile.top);
  for (const Start& start : starting)
    if (start.low <= middle && tile.fragments[static_cast<size_t>(start.fragment)].high >= middle)
      actives.push_back(activeAt(tile, start.fragment, tile.bottom));
  reachUpTo(tile.top);
  sweepSlab(tile, tile.bottom, tile.top);
  closeSeams(tile.top);
}

void TileSweep::enter(const Tile& tile) {
  base = tile.base;
  secondBase = tile.secondBase;
  findLocals(tile);
  findStarts(tile);
  findHeights(tile);
  actives.clear();
  lanes.clear();
  seams.assign(tile.fragments.size(), Seam());
}

// Fragments stand region by region, and so do covers.
void TileSweep::findLocals(const Tile& tile) {
  locals.clear();
  fragmentLocals.clear();
  coverLocals.clear();
  auto cover = tile.covers.begin();
  const auto localFor = [this](RegionNumber region) {
    if (locals.empty() || locals.back().region != region) locals.push_back({region, 0});
    return static_cast<int>(locals.size()) - 1;
  };
  const auto takeCoversUpTo = [&](RegionNumber region) {
    for (; cover != tile.covers.end() && cover->region <= region; ++cover)
      coverLocals.push_back(localFor(cover->region));
  };
  for (const Fragment& f : tile.fragments) {
    takeCoversUpTo(f.region);
    fragmentLocals.push_back(localFor(f.region));
  }
  if (!tile.covers.empty()) takeCoversUpTo(tile.covers.back().region);
  const auto second = std::find_if(locals.rbegin(), locals.rend(), [this](const Local& local) {
                        return local.region <= lastOfFirst;
                      }).base();
  secondPlace = static_cast<int>(second - locals.begin());
}

void TileSweep::findStarts(const Tile& tile) {
  starting.clear();
  later.clear();
  started = 0;
  int fragment = 0;
  for (const Fragment& f : tile.fragments)
    (f.low == tile.bottom ? starting : later).push_back({f.low, fragment++});
  sortNearlySorted(later, [](const Start& a, const Start& b) { return a.low < b.low; });
  starting.insert(starting.end(), later.begin(), later.end());
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
  for (const Start& start : starting) {
    for (; other != others.end() && *other < start.low; ++other) add(*other);
    add(start.low);
  }
  for (; other != others.end(); ++other) add(*other);
  add(tile.top);
}

// Whether between the slab below and this one nothing happens but that outlines go on from one edge
// to the next, and in this slab nothing crosses: what actives bound stays, and they are brought up.
// Else nothing is changed. Most slabs are such.
bool TileSweep::onlyGoesOn(const Tile& tile, double y0, double y1) {
  if (lanes.empty() || lanes.size() != actives.size()) return false;
  const size_t startedBefore = started;
  if (findNexts(tile, y0, y1) && !coversChange(tile, y0)) {
    for (size_t i = 0; i < actives.size(); ++i) takeNext(i, y0);
    return true;
  }
  started = startedBefore;
  return false;
}

// The places of the actives in the next slab, if they go on.
bool TileSweep::findNexts(const Tile& tile, double y0, double y1) {
  nexts.clear();
  Next last = {nullptr, -1, -HUGE_VAL, -HUGE_VAL};
  for (const Active& active : actives) {
    Next next = {active.edge, active.fragment, active.x1, 0.0};
    if (tile.fragments[static_cast<size_t>(active.fragment)].high < y1) {
      if (!findNext(tile, active, y0)) return false;
      next.fragment = starting[started++].fragment;
      next.edge = edgeOf(tile, next.fragment);
    }
    next.x1 = next.edge->xAt(y1);
    if (next.x0 < last.x0 || next.x1 < last.x1) return false;
    const bool same = next.x0 == last.x0 && next.x1 == last.x1;
    if (same && next.fragment < last.fragment) return false;
    nexts.push_back(next);
    last = next;
  }
  return started == starting.size() || starting[started].low > y0;
}

void TileSweep::takeNext(size_t place, double y0) {
  Active& active = actives[place];
  const Next& next = nexts[place];
  active.x0 = next.x0;
  active.x1 = next.x1;
  if (active.fragment == next.fragment) return;
  closeSeam(seams[static_cast<size_t>(active.fragment)], y0);
  active.edge = next.edge;
  active.fragment = next.fragment;
  bound(active, lanes[place].left, lanes[place].right, y0);
}

// Brings the fragment with which an active one's outline goes on at its upper end, the height y, to
// the front of those that start there.
bool TileSweep::findNext(const Tile& tile, const Active& active, double y) {
  for (size_t i = started; i < starting.size() && starting[i].low <= y; ++i) {
    const int fragment = starting[i].fragment;
    const SweepEdge& edge = *edgeOf(tile, fragment);
    const bool goesOn = fragmentLocals[static_cast<size_t>(fragment)] == active.local &&
                        edge.winding == active.edge->winding && edge.xAt(y) == active.x1;
    if (!goesOn) continue;
    std::swap(starting[i], starting[started]);
    return true;
  }
  return false;
}

// Takes up the fragments that reach through the slab above the last one, and lets go what ends.
void TileSweep::activate(const Tile& tile, double y0, double y1) {
  size_t count = 0;
  for (const Active& active : actives) {
    const auto index = static_cast<size_t>(active.fragment);
    if (tile.fragments[index].high < y1)
      closeSeam(seams[index], tile.fragments[index].high);
    else
      actives[count++] = active;
  }
  actives.resize(count);
  goOn();
  for (; started < starting.size() && starting[started].low <= y0; ++started) {
    const int next = starting[started].fragment;
    if (tile.fragments[static_cast<size_t>(next)].high >= y1)
      actives.push_back(activeAt(tile, next, y0));
  }
  reachUpTo(y1);
}

const SweepEdge* TileSweep::edgeOf(const Tile& tile, int fragment) const {
  return &edges[static_cast<size_t>(tile.fragments[static_cast<size_t>(fragment)].edge)];
}

TileSweep::Active TileSweep::activeAt(const Tile& tile, int fragment, double y) const {
  const SweepEdge* const edge = edgeOf(tile, fragment);
  const double x = edge->xAt(y);
  return {edge, fragment, fragmentLocals[static_cast<size_t>(fragment)], x, x};
}

// Brings the slab's top to a height and its fragments into the order of its middle. They stand in
// that of the slab before, which is nearly it.
void TileSweep::reachUpTo(double y1) {
  for (Active& active : actives) active.x1 = active.edge->xAt(y1);
  sortNearlySorted(actives, [](const Active& a, const Active& b) { return a.isBefore(b); });
}

// The slab's top becomes the bottom of the next.
void TileSweep::goOn() {
  for (Active& active : actives) active.x0 = active.x1;
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

bool TileSweep::coversChange(const Tile& tile, double y) const {
  return std::any_of(tile.covers.begin(), tile.covers.end(),
                     [y](const Cover& c) { return c.low == y || c.high == y; });
}

void TileSweep::sweepSlab(const Tile& tile, double y0, double y1) {
  setCovers(tile, 0.5 * (y0 + y1));
  lanes.clear();
  RegionNumber left = topmost();
  for (const Active& active : actives) {
    change(active.local, active.edge->winding);
    const RegionNumber right = topmost();
    lanes.push_back({left, right});
    bound(active, left, right, y0);
    left = right;
  }
}

void TileSweep::setCovers(const Tile& tile, double y) {
  for (Local& local : locals) local.winding = 0;
  for (size_t i = 0; i < tile.covers.size(); ++i) {
    const Cover& cover = tile.covers[i];
    if (cover.low <= y && cover.high > y)
      locals[static_cast<size_t>(coverLocals[i])].winding += cover.winding;
  }
  topLocal = topFrom(secondPlace - 1, 0);
  topSecond = topFrom(static_cast<int>(locals.size()) - 1, secondPlace);
}

void TileSweep::change(int local, int winding) {
  locals[static_cast<size_t>(local)].winding += winding;
  if (local < secondPlace)
    topLocal = topFrom(std::max(topLocal, local), 0);
  else
    topSecond = topFrom(std::max(topSecond, local), secondPlace);
}

// From this height on the fragment has these regions on its sides.
void TileSweep::bound(const Active& active, RegionNumber left, RegionNumber right, double y) {
  Seam& seam = seams[static_cast<size_t>(active.fragment)];
  if (seam.left == left && seam.right == right) return;
  closeSeam(seam, y);
  if (left != right) seam = {static_cast<int>(active.edge - edges.data()), left, right, y, y};
}

void TileSweep::closeSeam(Seam& seam, double y) {
  if (seam.left == NoRegion) return;
  seam.y1 = y;
  closed.push_back(seam);
  seam.left = NoRegion;
}

void TileSweep::closeSeams(double y) {
  for (const Active& active : actives) closeSeam(seams[static_cast<size_t>(active.fragment)], y);
}

// The closed seams by edge, counted first, and along each from its lower end.
std::vector<int> TileSweep::orderOfSeams() const {
  std::vector<int> places(edges.size() + 1, 0);
  for (const Seam& seam : closed) ++places[static_cast<size_t>(seam.edge) + 1];
  for (size_t i = 1; i < places.size(); ++i) places[i] += places[i - 1];
  std::vector<int> order(closed.size());
  for (size_t i = 0; i < closed.size(); ++i) {
    int& place = places[static_cast<size_t>(closed[i].edge)];
    order[static_cast<size_t>(place++)] = static_cast<int>(i);
  }
  const auto seamAt = [this](int i) -> const Seam& { return closed[static_cast<size_t>(i)]; };
  for (auto first = order.begin(); first != order.end();) {
    const auto last = std::find_if(first, order.end(),
                                   [&](int i) { return seamAt(i).edge != seamAt(*first).edge; });
    std::sort(first, last, [&](int a, int b) { return seamAt(a).y0 < seamAt(b).y0; });
    first = last;
  }
  return order;
}

void TileSweep::sumUp(Totals& totals) const {
  Seam whole;
  for (const int i : orderOfSeams()) {
    const Seam& seam = closed[static_cast<size_t>(i)];
    const bool partedByTiles = whole.edge == seam.edge && whole.y1 == seam.y0 &&
                               whole.left == seam.left && whole.right == seam.right;
    if (partedByTiles) {
      whole.y1 = seam.y1;
    } else {
      addTo(totals, whole);
      whole = seam;
    }
  }
  addTo(totals, whole);
}

void TileSweep::addTo(Totals& totals, const Seam& seam) const {
  if (seam.left == NoRegion) return;
  const SweepEdge& edge = edges[static_cast<size_t>(seam.edge)];
  const double area = 0.5 * (seam.y1 - seam.y0) * (edge.xAt(seam.y0) + edge.xAt(seam.y1));
  const auto left = static_cast<size_t>(seam.left);
  const auto right = static_cast<size_t>(seam.right);
  totals.areas[left] += area;
  totals.areas[right] -= area;
  if (totals.contents.empty()) return;
  const Content content = contentOf(seam);
  totals.contents[left] += content;
  totals.contents[right] -= content;
}

Content TileSweep::contentOf(const Seam& seam) const {
  const SweepEdge& edge = edges[static_cast<size_t>(seam.edge)];
  const Content arc = rule.arc(edge);
  if (seam.y0 == edge.low.y && seam.y1 == edge.high.y) return arc;
  const double sliver = sliverBefore(edge.wayTo(seam.y1)) - sliverBefore(edge.wayTo(seam.y0));
  Content content = rule.line(edge, seam.y0, seam.y1);
  content += sliver * (arc - rule.line(edge, edge.low.y, edge.high.y));
  return content;
}

}  // namespace Lumivane::Measure
