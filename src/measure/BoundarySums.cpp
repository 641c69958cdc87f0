// Boundaries come tile by tile. They are put in the order of their edges first, so that those which
// only tiles have parted are joined, whatever is to be made of them.

#include "measure/BoundarySums.h"

#include <algorithm>
#include <cstddef>

namespace Lumivane::Measure {
namespace {

// How much of the sliver between a chord and its arc lies before the share t of the chord: the
// sliver is as wide as t (1 - t), to the first order.
double sliverBefore(double t) { return t * t * (3.0 - 2.0 * t); }

}  // namespace

BoundarySums::BoundarySums(const std::vector<SweepEdge>& theEdges, const ContourRule& theRule)
    : edges(theEdges), rule(theRule) {
  boundaries.reserve(edges.size());
}

// By edge, counted first, and along each from its lower end.
std::vector<int> BoundarySums::inOrder() const {
  std::vector<int> places(edges.size() + 1, 0);
  for (const Boundary& boundary : boundaries) ++places[static_cast<size_t>(boundary.edge) + 1];
  for (size_t i = 1; i < places.size(); ++i) places[i] += places[i - 1];
  std::vector<int> order(boundaries.size());
  for (size_t i = 0; i < boundaries.size(); ++i) {
    int& place = places[static_cast<size_t>(boundaries[i].edge)];
    order[static_cast<size_t>(place++)] = static_cast<int>(i);
  }
  const auto boundaryAt = [this](int i) -> const Boundary& {
    return boundaries[static_cast<size_t>(i)];
  };
  for (auto first = order.begin(); first != order.end();) {
    const auto last = std::find_if(
        first, order.end(), [&](int i) { return boundaryAt(i).edge != boundaryAt(*first).edge; });
    std::sort(first, last, [&](int a, int b) { return boundaryAt(a).y0 < boundaryAt(b).y0; });
    first = last;
  }
  return order;
}

template <class Each>
void BoundarySums::forEachJoined(const Each& each) const {
  Boundary whole;
  for (const int i : inOrder()) {
    const Boundary& boundary = boundaries[static_cast<size_t>(i)];
    const bool partedByTiles = whole.edge == boundary.edge && whole.y1 == boundary.y0 &&
                               whole.left == boundary.left && whole.right == boundary.right;
    if (partedByTiles) {
      whole.y1 = boundary.y1;
    } else {
      if (whole.exists()) each(whole);
      whole = boundary;
    }
  }
  if (whole.exists()) each(whole);
}

void BoundarySums::sumUp(Totals& totals) const {
  forEachJoined([&](const Boundary& boundary) { addTo(totals, boundary); });
}

std::vector<Stretch> BoundarySums::stretches() const {
  std::vector<Stretch> all;
  forEachJoined([&](const Boundary& boundary) {
    const SweepEdge& edge = edges[static_cast<size_t>(boundary.edge)];
    all.push_back({boundary.edge,
                   boundary.left,
                   boundary.right,
                   {edge.xAt(boundary.y0), boundary.y0},
                   {edge.xAt(boundary.y1), boundary.y1}});
  });
  return all;
}

void BoundarySums::addTo(Totals& totals, const Boundary& boundary) const {
  const SweepEdge& edge = edges[static_cast<size_t>(boundary.edge)];
  const double area =
      0.5 * (boundary.y1 - boundary.y0) * (edge.xAt(boundary.y0) + edge.xAt(boundary.y1));
  const auto left = static_cast<size_t>(boundary.left);
  const auto right = static_cast<size_t>(boundary.right);
  totals.areas[left] += area;
  totals.areas[right] -= area;
  if (totals.contents.empty()) return;
  const Content content = contentOf(boundary);
  totals.contents[left] += content;
  totals.contents[right] -= content;
}

Content BoundarySums::contentOf(const Boundary& boundary) const {
  const SweepEdge& edge = edges[static_cast<size_t>(boundary.edge)];
  const Content arc = rule.arc(edge);
  if (boundary.y0 == edge.low.y && boundary.y1 == edge.high.y) return arc;
  const double sliver =
      sliverBefore(edge.wayTo(boundary.y1)) - sliverBefore(edge.wayTo(boundary.y0));
  Content content = rule.line(edge, boundary.y0, boundary.y1);
  content += sliver * (arc - rule.line(edge, edge.low.y, edge.high.y));
  return content;
}

}  // namespace Lumivane::Measure
