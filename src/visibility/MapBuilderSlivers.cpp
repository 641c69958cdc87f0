// Slivers: cells that are narrower than what rounding does to two lines that should coincide. They
// become part of a neighbour, before edges are made and once more when vertices are in their
// places.
#include "kernel/Planar.h"
#include "visibility/MapBuilder.h"
#include "visibility/SphereMeasure.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

namespace Lumivane::Visibility {
namespace {

// Mean width, in rad, of cells that are left out.
constexpr double SliverWidth = 5e-13;

}  // namespace

using Kernel::Pi;
using Kernel::Vec3;

// A cell that has taken a sliver up waits for the next round.
void MapBuilder::dropSlivers(std::vector<Link>& borders) {
  constexpr int MostRounds = 16;
  for (int round = 0; round < MostRounds; ++round)
    if (!dropSliversOnce(borders)) return;
}

// \return whether a sliver may be left
bool MapBuilder::dropSliversOnce(std::vector<Link>& borders) {
  struct Extent {
    Vec3 from;
    double area;
    double length;
    int neighbour;
    double shared;
  };
  std::vector<Extent> extents(found.size(), Extent{{}, 0.0, 0.0, NoCell, 0.0});
  const auto start = [&](const Link& link) { return directions[static_cast<size_t>(link.from)]; };
  const auto end = [&](const Link& link) { return directions[static_cast<size_t>(link.to)]; };
  const auto addBorder = [](Extent& e, Vec3 corner, double length, int neighbour) {
    if (e.length == 0.0) e.from = corner;
    e.length += length;
    // What lies beyond the field takes nothing up: its border is where the field ends.
    if (neighbour != NoCell && length > e.shared) {
      e.shared = length;
      e.neighbour = neighbour;
    }
  };
  for (const Link& link : watch.over(borders)) {
    const double length = Kernel::distance(start(link), end(link));
    if (link.left != NoCell)
      addBorder(extents[static_cast<size_t>(link.left)], start(link), length, link.right);
    if (link.right != NoCell)
      addBorder(extents[static_cast<size_t>(link.right)], end(link), length, link.left);
  }
  // Small cells are measured from one of their corners, so that rounding stays as small; large
  // ones from a direction that is opposite to none of their arcs.
  for (Extent& e : extents)
    if (e.length > 1.0) e.from = unit({0.36, -0.48, 0.81});
  // Triangles by several threads, their sums in one order.
  struct Triangles {
    double left;
    double right;
  };
  std::vector<Triangles> triangles(borders.size(), Triangles{0.0, 0.0});
  forEach(borders.size(), [&](size_t i) {
    const Link& link = borders[i];
    const auto from = [&](int cell) { return extents[static_cast<size_t>(cell)].from; };
    if (link.left != NoCell)
      triangles[i].left = triangleSolidAngle(from(link.left), start(link), end(link));
    if (link.right != NoCell)
      triangles[i].right = triangleSolidAngle(from(link.right), end(link), start(link));
  });
  for (const size_t i : watch.upTo(borders.size())) {
    const Link& link = borders[i];
    if (link.left != NoCell) extents[static_cast<size_t>(link.left)].area += triangles[i].left;
    if (link.right != NoCell) extents[static_cast<size_t>(link.right)].area += triangles[i].right;
  }
  std::vector<int> order(found.size());
  std::iota(order.begin(), order.end(), 0);
  auto byRegion = watch.order([this](int a, int b) {
    return orderOf(found[static_cast<size_t>(a)].region) <
           orderOf(found[static_cast<size_t>(b)].region);
  });
  std::stable_sort(order.begin(), order.end(), std::ref(byRegion));
  bool any = false;
  bool isLeft = false;
  std::vector<char> grown(found.size(), 0);
  for (const int cell : watch.over(order)) {
    const Extent& e = extents[static_cast<size_t>(cell)];
    const double area = std::remainder(e.area, 4.0 * Pi);
    // What has been turned inside out by placing its vertices was narrower still. The sky, and
    // a region that is bent around the eye, may also be all but a small hole.
    const Found& f = found[static_cast<size_t>(cell)];
    const bool mayBeLarge = f.region == SkyRegion || (f.several && area < -NearlyNothing);
    const bool turned = area < 0.0 && e.length <= 1.0 && !mayBeLarge;
    const bool isSliver = e.length > 0.0 && (turned || std::fabs(area) <= SliverWidth * e.length);
    if (!isSliver) continue;
    if (grown[static_cast<size_t>(cell)] != 0) {
      isLeft = true;
      continue;
    }
    found[static_cast<size_t>(cell)].mergedInto = e.neighbour;
    if (e.neighbour != NoCell) grown[static_cast<size_t>(e.neighbour)] = 1;
    any = true;
  }
  if (!any) return false;
  joinAlike(borders);
  size_t kept = 0;
  for (Link link : watch.over(borders)) {
    const int left = settled(link.left);
    const int right = settled(link.right);
    const bool isOther = left != link.left || right != link.right;
    link.shared = link.shared && !isOther;
    link.left = left;
    link.right = right;
    if (link.left == link.right) continue;
    if (isOther) findSourceAnew(link);
    borders[kept++] = link;
  }
  borders.resize(kept);
  return isLeft;
}

// What a sliver of another region has parted is one cell without it.
void MapBuilder::joinAlike(const std::vector<Link>& borders) {
  for (const Link& link : watch.over(borders)) {
    const int left = settled(link.left);
    const int right = settled(link.right);
    if (left == right || left == NoCell || right == NoCell) continue;
    Found& lower = found[static_cast<size_t>(std::min(left, right))];
    Found& higher = found[static_cast<size_t>(std::max(left, right))];
    if (lower.region != higher.region) continue;
    lower.several = lower.several || higher.several || lower.polygon != higher.polygon;
    higher.mergedInto = std::min(left, right);
  }
}

int MapBuilder::settled(int cell) const {
  // A chain of slivers ends: each was merged before what it merged into grew.
  for (size_t step = 0; step < found.size() && cell != NoCell; ++step) {
    const int next = found[static_cast<size_t>(cell)].mergedInto;
    if (next == cell) break;
    cell = next;
  }
  return cell;
}

}  // namespace Lumivane::Visibility
