#include "measure/Tile.h"

#include <algorithm>
#include <cstdlib>

// A tile's fragments of edges, and what covers it wholly. A tile is divided across or at middle
// height, and each half drops what lies behind a polygon that covers it: most of a picture is
// decided so, before anything is swept.
namespace Lumivane::Measure {
namespace {

// Whether a region's covers, which ascend, leave no height of the tile open.
bool coverAll(std::vector<Cover>::const_iterator first, std::vector<Cover>::const_iterator last,
              double bottom, double top) {
  double reached = bottom;
  for (; first != last && first->low <= reached; ++first) reached = first->high;
  return reached >= top;
}

void restart(Tile& part, const Tile& whole) {
  part.left = whole.left;
  part.right = whole.right;
  part.bottom = whole.bottom;
  part.top = whole.top;
  part.base = whole.base;
  part.secondBase = whole.secondBase;
  part.fragments.clear();
  part.covers.clear();
  part.fragments.reserve(whole.fragments.size() / 8 * 5);
}

template <class Stretch>
void shareAtHeight(const std::vector<Stretch>& all, double y, std::vector<Stretch>& lower,
                   std::vector<Stretch>& upper) {
  for (const Stretch& stretch : all) {
    if (stretch.low < y) {
      lower.push_back(stretch);
      lower.back().high = std::min(stretch.high, y);
    }
    if (stretch.high > y) {
      upper.push_back(stretch);
      upper.back().low = std::max(stretch.low, y);
    }
  }
}

template <class Stretch>
void cutAllBelow(std::vector<Stretch>& all, double y) {
  const auto isBelow = [y](const Stretch& stretch) { return !(stretch.high > y); };
  all.erase(std::remove_if(all.begin(), all.end(), isBelow), all.end());
  for (Stretch& stretch : all) stretch.low = std::max(stretch.low, y);
}

}  // namespace

void Tile::dropHidden(RegionNumber lastOfFirst) {
  if (lastOfFirst != OneSet) dropHidden(lastOfFirst, OneSet, secondBase);
  dropHidden(0, lastOfFirst, base);
}

// Of the regions of one set, whose numbers are greater than `after`.
void Tile::dropHidden(RegionNumber after, RegionNumber upTo, RegionNumber& covering) {
  const auto placeAfter = [](const auto& all, RegionNumber number) {
    return std::partition_point(all.begin(), all.end(),
                                [number](const auto& one) { return one.region <= number; });
  };
  const auto firstCover = placeAfter(covers, after);
  const auto firstFragment = placeAfter(fragments, after);
  // Both lists are walked from the topmost region down, up to the first that covers all.
  auto fragment = placeAfter(fragments, upTo);
  auto last = placeAfter(covers, upTo);
  bool found = false;
  while (last != firstCover && !found) {
    const RegionNumber region = (last - 1)->region;
    auto first = last;
    while (first != firstCover && (first - 1)->region == region) --first;
    while (fragment != firstFragment && (fragment - 1)->region > region) --fragment;
    const bool hasEdges = fragment != firstFragment && (fragment - 1)->region == region;
    found = !hasEdges && coverAll(first, last, bottom, top);
    if (found)
      covering = region;
    else
      last = first;
  }
  if (!found) return;
  covers.erase(firstCover, last);
  fragments.erase(firstFragment, fragment);
}

void Tile::cutBelow(double y) {
  bottom = y;
  cutAllBelow(fragments, y);
  cutAllBelow(covers, y);
}

void TileParter::atMiddleHeight(const Tile& tile, Tile& lower, Tile& upper) const {
  const double y = 0.5 * (tile.bottom + tile.top);
  restart(lower, tile);
  restart(upper, tile);
  lower.top = y;
  upper.bottom = y;
  shareAtHeight(tile.fragments, y, lower.fragments, upper.fragments);
  shareAtHeight(tile.covers, y, lower.covers, upper.covers);
}

void TileParter::across(const Tile& tile, Tile& leftHalf, Tile& rightHalf) {
  const double x = 0.5 * (tile.left + tile.right);
  restart(leftHalf, tile);
  restart(rightHalf, tile);
  leftHalf.right = x;
  rightHalf.left = x;
  leftHalf.covers = tile.covers;
  steps.clear();
  nextCover = 0;
  for (const Fragment& fragment : tile.fragments) {
    const bool coversFirst =
        nextCover < tile.covers.size() && tile.covers[nextCover].region <= fragment.region;
    if (coversFirst) addCoversUpTo(fragment.region, tile.covers);
    partAcross(fragment, x, leftHalf, rightHalf);
  }
  if (!tile.covers.empty()) addCoversUpTo(tile.covers.back().region, tile.covers);
  coverBySteps(rightHalf.covers);
}

void TileParter::partAcross(const Fragment& fragment, double x, Tile& leftHalf, Tile& rightHalf) {
  const SweepEdge& edge = edges[static_cast<size_t>(fragment.edge)];
  // Nearly all edges lie on one side as a whole.
  if (std::max(edge.low.x, edge.high.x) <= x) return addLeft(fragment, leftHalf);
  if (std::min(edge.low.x, edge.high.x) >= x) return rightHalf.fragments.push_back(fragment);
  const double low = edge.xAt(fragment.low);
  const double high = edge.xAt(fragment.high);
  if (low <= x && high <= x) return addLeft(fragment, leftHalf);
  if (low >= x && high >= x) return rightHalf.fragments.push_back(fragment);

  const double way = (x - low) / (high - low);
  const double y =
      std::clamp(fragment.low + (fragment.high - fragment.low) * way, fragment.low, fragment.high);
  Fragment lower = fragment;
  Fragment upper = fragment;
  lower.high = y;
  upper.low = y;
  const Fragment& left = low < x ? lower : upper;
  const Fragment& right = low < x ? upper : lower;
  if (left.low < left.high) addLeft(left, leftHalf);
  if (right.low < right.high) rightHalf.fragments.push_back(right);
}

void TileParter::addLeft(const Fragment& fragment, Tile& leftHalf) {
  leftHalf.fragments.push_back(fragment);
  addSteps(fragment.region, fragment.low, fragment.high,
           edges[static_cast<size_t>(fragment.edge)].winding);
}

// In the order in which the outline runs: where one edge goes on from another, the first's last
// step and the second's first undo each other.
void TileParter::addSteps(RegionNumber region, double low, double high, int winding) {
  const double from = winding > 0 ? low : high;
  const double to = winding > 0 ? high : low;
  const int change = std::abs(winding);
  const bool goesOn = !steps.empty() && steps.back().y == from && steps.back().change == -change &&
                      steps.back().region == region;
  if (goesOn) {
    steps.back().y = to;
  } else {
    steps.push_back({region, from, change});
    steps.push_back({region, to, -change});
  }
}

void TileParter::addCoversUpTo(RegionNumber region, const std::vector<Cover>& covers) {
  for (; nextCover < covers.size() && covers[nextCover].region <= region; ++nextCover) {
    const Cover& cover = covers[nextCover];
    addSteps(cover.region, cover.low, cover.high, cover.winding);
  }
}

void TileParter::coverBySteps(std::vector<Cover>& covers) {
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
}

}  // namespace Lumivane::Measure
