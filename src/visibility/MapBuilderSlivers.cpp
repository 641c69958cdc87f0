// Slivers: cells that are narrower than what rounding does to two lines that should coincide. They
// become part of a neighbour, before edges are made and once more when vertices are in their
// places.
#include "kernel/Planar.h"
#include "visibility/MapBuilder.h"
#include "visibility/SphereMeasure.h"

#include <algorithm>
#include <cmath>

namespace Lumivane::Visibility {
namespace {

using Kernel::Pi;
using Kernel::Vec3;

// Mean width, in rad, of cells that are left out.
constexpr double SliverWidth = 5e-13;

// Of a triangle, with an error of less than RoughError of it, in a few steps.
constexpr double RoughError = 1e-6;
double roughSolidAngle(Vec3 a, Vec3 b, Vec3 c) {
  const double volume = -Kernel::dot(a, Kernel::cross(b - a, c - a));
  const double denominator = 1.0 + Kernel::dot(a, b) + Kernel::dot(b, c) + Kernel::dot(c, a);
  if (!(32.0 * std::fabs(volume) < denominator)) return 2.0 * std::atan2(volume, denominator);
  const double tangent = volume / denominator;
  return 2.0 * tangent * (1.0 - tangent * tangent * (1.0 / 3.0));
}

}  // namespace

// A cell that has taken a sliver up waits for the next round.
void MapBuilder::dropSlivers(BlockList<Link>& borders) {
  constexpr int MostRounds = 16;
  for (int round = 0; round < MostRounds; ++round)
    if (!dropSliversOnce(borders)) return;
}

// What is said of the cells by the links around them, but for areas.
LargeVector<MapBuilder::Extent> MapBuilder::extentsOf(const BlockList<Link>& borders) {
  LargeVector<Extent> extents(found.size());
  const auto addBorder = [](Extent& e, int corner, double length, int neighbour) {
    if (e.length == 0.0) e.from = corner;
    e.length += length;
    // What lies beyond the field takes nothing up: its border is where the field ends.
    if (neighbour != NoCell && length > e.shared) {
      e.shared = length;
      e.neighbour = neighbour;
    }
  };
  for (const size_t i : watch.upTo(borders.size())) {
    const Link& link = borders[i];
    const double length = Kernel::distance(directions[static_cast<size_t>(link.from)],
                                           directions[static_cast<size_t>(link.to)]);
    if (link.left != NoCell)
      addBorder(extents[static_cast<size_t>(link.left)], link.from, length, link.right);
    if (link.right != NoCell)
      addBorder(extents[static_cast<size_t>(link.right)], link.to, length, link.left);
  }
  // Small cells are measured from one of their corners, so that rounding stays as small; large
  // ones from a direction that is opposite to none of their arcs.
  for (Extent& e : extents)
    if (e.length > 1.0) e.from = -1;
  return extents;
}

// Calls add(cell, measure) for the triangles between the links around the cells that are asked for
// and the directions from which these are measured: measured by several threads, added in one
// order.
template <class IsAsked, class Measure, class Add>
void MapBuilder::forTriangles(const BlockList<Link>& borders, const LargeVector<Extent>& extents,
                              IsAsked isAsked, Measure measure, Add add) {
  const Vec3 apart = unit({0.36, -0.48, 0.81});
  const auto at = [this](int vertex) { return directions[static_cast<size_t>(vertex)]; };
  const auto measured = [&](int cell, int from, int to) {
    if (cell == NoCell || !isAsked(cell)) return 0.0;
    const int corner = extents[static_cast<size_t>(cell)].from;
    return measure(corner < 0 ? apart : at(corner), at(from), at(to));
  };
  struct Triangles {
    double left;
    double right;
  };
  std::vector<Triangles> triangles;
  constexpr size_t AtOnce = BlockList<Link>::BlockSize;
  for (size_t first = 0; first < borders.size(); first += AtOnce) {
    triangles.resize(std::min(AtOnce, borders.size() - first));
    forEach(triangles.size(), [&](size_t i) {
      const Link& link = borders[first + i];
      triangles[i] = {measured(link.left, link.from, link.to),
                      measured(link.right, link.to, link.from)};
    });
    for (size_t i = 0; i < triangles.size(); ++i) {
      const Link& link = borders[first + i];
      if (link.left != NoCell && isAsked(link.left)) add(link.left, triangles[i].left);
      if (link.right != NoCell && isAsked(link.right)) add(link.right, triangles[i].right);
    }
  }
}

// Most cells are much larger than slivers, which is seen without exact areas.
LargeVector<char> MapBuilder::thosePerhapsThin(const BlockList<Link>& borders,
                                               const LargeVector<Extent>& extents) {
  struct Rough {
    double area = 0.0;
    double magnitudes = 0.0;
  };
  LargeVector<Rough> roughs(found.size());
  forTriangles(
      borders, extents, [](int) { return true; }, roughSolidAngle,
      [&](int cell, double area) {
        Rough& rough = roughs[static_cast<size_t>(cell)];
        rough.area += area;
        rough.magnitudes += std::fabs(area);
      });
  LargeVector<char> perhaps(found.size());
  for (size_t i = 0; i < perhaps.size(); ++i) {
    const double least = roughs[i].area - RoughError * roughs[i].magnitudes;
    const bool isLarge = least > 2.0 * SliverWidth * extents[i].length && roughs[i].area < Pi;
    perhaps[i] = isLarge ? 0 : 1;
  }
  return perhaps;
}

bool MapBuilder::isSliver(int cell, const Extent& extent) const {
  const double area = std::remainder(extent.area, 4.0 * Pi);
  // What has been turned inside out by placing its vertices was narrower still. The sky, and
  // a region that is bent around the eye, may also be all but a small hole.
  const Found& f = found[static_cast<size_t>(cell)];
  const bool mayBeLarge = f.region == SkyRegion || (f.several && area < -NearlyNothing);
  const bool turned = area < 0.0 && extent.length <= 1.0 && !mayBeLarge;
  return extent.length > 0.0 && (turned || std::fabs(area) <= SliverWidth * extent.length);
}

// \return whether a sliver may be left
bool MapBuilder::dropSliversOnce(BlockList<Link>& borders) {
  LargeVector<Extent> extents = extentsOf(borders);
  const LargeVector<char> perhapsThin = thosePerhapsThin(borders, extents);
  forTriangles(
      borders, extents, [&](int cell) { return perhapsThin[static_cast<size_t>(cell)] != 0; },
      triangleSolidAngle,
      [&](int cell, double area) { extents[static_cast<size_t>(cell)].area += area; });
  LargeVector<int> slivers;
  for (const size_t i : watch.upTo(found.size()))
    if (perhapsThin[i] != 0 && isSliver(static_cast<int>(i), extents[i]))
      slivers.push_back(static_cast<int>(i));
  if (slivers.empty()) return false;
  // One whose borders lie on each other leaves no trace.
  if (std::any_of(slivers.begin(), slivers.end(),
                  [&](int cell) { return extents[static_cast<size_t>(cell)].area != 0.0; }))
    isDoubtful = true;
  std::stable_sort(slivers.begin(), slivers.end(), [this](int a, int b) {
    return orderOf(found[static_cast<size_t>(a)].region) <
           orderOf(found[static_cast<size_t>(b)].region);
  });
  bool any = false;
  bool isLeft = false;
  LargeVector<char> grown(found.size(), 0);
  for (const int cell : slivers) {
    if (grown[static_cast<size_t>(cell)] != 0) {
      isLeft = true;
      continue;
    }
    const int neighbour = extents[static_cast<size_t>(cell)].neighbour;
    found[static_cast<size_t>(cell)].mergedInto = neighbour;
    if (neighbour != NoCell) grown[static_cast<size_t>(neighbour)] = 1;
    any = true;
  }
  if (!any) return false;
  joinAlike(borders);
  size_t kept = 0;
  for (const size_t i : watch.upTo(borders.size())) {
    Link link = borders[i];
    const int left = settled(link.left);
    const int right = settled(link.right);
    const bool isOther = left != link.left || right != link.right;
    if (isOther) link.setUnshared();
    link.left = left;
    link.right = right;
    if (link.left == link.right) continue;
    if (isOther) findSourceAnew(link);
    borders[kept++] = link;
  }
  borders.truncate(kept);
  edgesAreFewer = &borders == &edges;
  return isLeft;
}

// What a sliver of another region has parted is one cell without it.
void MapBuilder::joinAlike(const BlockList<Link>& borders) {
  for (const size_t i : watch.upTo(borders.size())) {
    const Link& link = borders[i];
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
