// Edges keep their order from one slab to the next but where they cross or end, so they are kept
// sorted by insertion, and crossings are found by the swaps that bring one order into the other.

#include "measure/ActiveEdges.h"

#include "measure/SortNearlySorted.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Lumivane::Measure {
namespace {

void sortUnique(std::vector<double>& values) {
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
}

}  // namespace

void ActiveEdges::enter(const Tile& entered, const std::vector<int>& placesOfFragments) {
  tile = &entered;
  places = &placesOfFragments;
  actives.clear();
  starting.clear();
  later.clear();
  started = 0;
  int fragment = 0;
  for (const Fragment& f : tile->fragments)
    (f.low == tile->bottom ? starting : later).push_back({f.low, fragment++});
  sortNearlySorted(later, [](const Start& a, const Start& b) { return a.low < b.low; });
  starting.insert(starting.end(), later.begin(), later.end());
}

// The places of the actives in the next slab, if they go on.
bool ActiveEdges::findNexts(double y0, double y1) {
  startedBefore = started;
  nexts.clear();
  Next last = {nullptr, -1, -HUGE_VAL, -HUGE_VAL};
  for (const Active& active : actives) {
    Next next = {active.edge, active.fragment, active.x1, 0.0};
    if (tile->fragments[static_cast<std::size_t>(active.fragment)].high < y1) {
      if (!findNext(active, y0)) return false;
      next.fragment = starting[started++].fragment;
      next.edge = edgeOf(next.fragment);
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

// Brings the fragment with which an active one's outline goes on at its upper end, the height y, to
// the front of those that start there.
bool ActiveEdges::findNext(const Active& active, double y) {
  for (std::size_t i = started; i < starting.size() && starting[i].low <= y; ++i) {
    const int fragment = starting[i].fragment;
    const SweepEdge& edge = *edgeOf(fragment);
    const bool goesOn = (*places)[static_cast<std::size_t>(fragment)] == active.place &&
                        edge.winding == active.edge->winding && edge.xAt(y) == active.x1;
    if (!goesOn) continue;
    std::swap(starting[i], starting[started]);
    return true;
  }
  return false;
}

// Those that start at the bottom of a slab and reach through it.
void ActiveEdges::takeUp(double y0, double y1) {
  for (; started < starting.size() && starting[started].low <= y0; ++started) {
    const int next = starting[started].fragment;
    if (tile->fragments[static_cast<std::size_t>(next)].high >= y1)
      actives.push_back(activeAt(next, y0));
  }
  reachUpTo(y1);
}

void ActiveEdges::activateMiddle() {
  const double middle = 0.5 * (tile->bottom + tile->top);
  for (const Start& start : starting)
    if (start.low <= middle &&
        tile->fragments[static_cast<std::size_t>(start.fragment)].high >= middle)
      actives.push_back(activeAt(start.fragment, tile->bottom));
  reachUpTo(tile->top);
}

const SweepEdge* ActiveEdges::edgeOf(int fragment) const {
  return &edges[static_cast<std::size_t>(tile->fragments[static_cast<std::size_t>(fragment)].edge)];
}

ActiveEdges::Active ActiveEdges::activeAt(int fragment, double y) const {
  const SweepEdge* const edge = edgeOf(fragment);
  const double x = edge->xAt(y);
  return {edge, fragment, (*places)[static_cast<std::size_t>(fragment)], x, x};
}

void ActiveEdges::reachUpTo(double y1) {
  for (Active& active : actives) active.x1 = active.edge->xAt(y1);
  sortNearlySorted(actives, [](const Active& a, const Active& b) { return a.isBefore(b); });
}

void ActiveEdges::goOn() {
  for (Active& active : actives) active.x0 = active.x1;
}

bool ActiveEdges::inOrder() const {
  for (std::size_t i = 1; i < actives.size(); ++i)
    if (actives[i].x0 < actives[i - 1].x0 || actives[i].x1 < actives[i - 1].x1) return false;
  return true;
}

// Edges in the order of the middle height are brought into that of the slab's bottom, and of its
// top, by swaps of neighbours: each swaps two that cross. So the work grows with the crossings.
void ActiveEdges::findCrossings(double y0, double y1, std::size_t most,
                                std::vector<double>& crossings) {
  const auto cross = [&crossings, y0, y1](const Active& left, const Active& right) {
    const double below = right.x0 - left.x0;
    const double above = right.x1 - left.x1;
    const double y = y0 + (y1 - y0) * (below / (below - above));
    if (y > y0 && y < y1) crossings.push_back(y);
  };
  for (double Active::*const end : {&Active::x0, &Active::x1}) {
    swapped = actives;
    for (std::size_t i = 1; i < swapped.size() && crossings.size() <= most; ++i) {
      for (std::size_t k = i; k > 0 && swapped[k].*end < swapped[k - 1].*end; --k) {
        cross(swapped[k - 1], swapped[k]);
        std::swap(swapped[k - 1], swapped[k]);
      }
    }
  }
  sortUnique(crossings);
}

}  // namespace Lumivane::Measure
