#include "measure/Tile.h"

#include <algorithm>

namespace Lumivane::Measure {
namespace {

// A change of winding at a height of the left side of a tile.
struct Step {
  RegionNumber region;
  double y;
  int change;
};

// The covers that come of steps, which stand region by region.
std::vector<Cover> coversOf(std::vector<Step>& steps) {
  std::vector<Cover> covers;
  for (auto first = steps.begin(); first != steps.end();) {
    const auto last = std::find_if(
        first, steps.end(), [first](const Step& step) { return step.region != first->region; });
    std::sort(first, last, [](const Step& a, const Step& b) { return a.y < b.y; });
    int winding = 0;
    for (auto step = first; step != last; ++step) {
      const double below = step == first ? step->y : (step - 1)->y;
      if (winding != 0 && step->y > below) {
        const bool grows = !covers.empty() && covers.back().region == step->region &&
                           covers.back().high == below && covers.back().winding == winding;
        if (grows)
          covers.back().high = step->y;
        else
          covers.push_back({step->region, below, step->y, winding});
      }
      winding += step->change;
    }
    first = last;
  }
  return covers;
}

// Merges what enters from the left of the parent and what its left half adds, region by region.
class StepCollector {
 public:
  explicit StepCollector(const std::vector<Cover>& parentCovers) : covers(parentCovers) {}

  void add(RegionNumber region, double low, double high, int winding) {
    takeCoversUpTo(region);
    steps.push_back({region, low, winding});
    steps.push_back({region, high, -winding});
  }

  std::vector<Cover> result() {
    takeCoversUpTo(covers.empty() ? 0 : covers.back().region);
    return coversOf(steps);
  }

 private:
  void takeCoversUpTo(RegionNumber region) {
    for (; next < covers.size() && covers[next].region <= region; ++next) {
      steps.push_back({covers[next].region, covers[next].low, covers[next].winding});
      steps.push_back({covers[next].region, covers[next].high, -covers[next].winding});
    }
  }

  const std::vector<Cover>& covers;
  size_t next = 0;
  std::vector<Step> steps;
};

// Whether a region's covers, which ascend, leave no height of the tile open.
bool coverAll(std::vector<Cover>::const_iterator first, std::vector<Cover>::const_iterator last,
              double bottom, double top) {
  double reached = bottom;
  for (; first != last && first->low <= reached; ++first) reached = first->high;
  return reached >= top;
}

}  // namespace

void Tile::dropHidden(const std::vector<SweepEdge>& edges) {
  // Both lists are walked from the topmost region down, up to the first that covers all.
  size_t fragment = fragments.size();
  auto last = covers.cend();
  bool found = false;
  while (last != covers.cbegin() && !found) {
    const RegionNumber region = (last - 1)->region;
    auto first = last;
    while (first != covers.cbegin() && (first - 1)->region == region) --first;
    const auto regionOf = [&](size_t i) {
      return edges[static_cast<size_t>(fragments[i].edge)].region;
    };
    while (fragment > 0 && regionOf(fragment - 1) > region) --fragment;
    const bool hasEdges = fragment > 0 && regionOf(fragment - 1) == region;
    found = !hasEdges && coverAll(first, last, bottom, top);
    if (found)
      base = region;
    else
      last = first;
  }
  if (!found) return;
  covers.erase(covers.cbegin(), last);
  fragments.erase(fragments.begin(), fragments.begin() + static_cast<std::ptrdiff_t>(fragment));
}

std::pair<Tile, Tile> Tile::partedAtHeight(double y) const {
  Tile lower{left, right, bottom, y, base, {}, {}};
  Tile upper{left, right, y, top, base, {}, {}};
  for (const Fragment& f : fragments) {
    if (f.low < y) lower.fragments.push_back({f.edge, f.low, std::min(f.high, y)});
    if (f.high > y) upper.fragments.push_back({f.edge, std::max(f.low, y), f.high});
  }
  for (const Cover& c : covers) {
    if (c.low < y) lower.covers.push_back({c.region, c.low, std::min(c.high, y), c.winding});
    if (c.high > y) upper.covers.push_back({c.region, std::max(c.low, y), c.high, c.winding});
  }
  return {std::move(lower), std::move(upper)};
}

std::pair<Tile, Tile> Tile::partedAcross(const std::vector<SweepEdge>& edges) const {
  const double x = 0.5 * (left + right);
  Tile leftHalf{left, x, bottom, top, base, {}, covers};
  Tile rightHalf{x, right, bottom, top, base, {}, {}};
  StepCollector steps(covers);
  for (const Fragment& f : fragments) {
    const SweepEdge& edge = edges[static_cast<size_t>(f.edge)];
    const double low = edge.xAt(f.low);
    const double high = edge.xAt(f.high);
    const auto toLeft = [&](double from, double to) {
      if (!(from < to)) return;
      leftHalf.fragments.push_back({f.edge, from, to});
      steps.add(edge.region, from, to, edge.winding);
    };
    const auto toRight = [&](double from, double to) {
      if (from < to) rightHalf.fragments.push_back({f.edge, from, to});
    };
    if (low <= x && high <= x) {
      toLeft(f.low, f.high);
    } else if (low >= x && high >= x) {
      toRight(f.low, f.high);
    } else {
      const double y =
          std::clamp(f.low + (f.high - f.low) * ((x - low) / (high - low)), f.low, f.high);
      low < x ? toLeft(f.low, y) : toRight(f.low, y);
      low < x ? toRight(y, f.high) : toLeft(y, f.high);
    }
  }
  rightHalf.covers = steps.result();
  return {std::move(leftHalf), std::move(rightHalf)};
}

}  // namespace Lumivane::Measure
