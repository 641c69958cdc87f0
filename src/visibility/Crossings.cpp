// Where polygons run through each other. Pairs are found by the hierarchy of boxes, leaf by leaf.
// Two polygons of a pair have the line in common in which their planes meet, and each covers it
// between the points where its outline crosses the plane of the other one (T. Moeller, A Fast
// Triangle-Triangle Intersection Test, 1997; here for any outline, even-odd). What both cover is
// the crossing.
//
// A corner that is no farther from a plane than its own polygon is from being flat lies in it, and
// such corners count as being on the side of the normal: so a wall that is cut where it passes a
// floor still runs through it once.

#include "kernel/Vec.h"
#include "visibility/BoxHierarchy.h"
#include "visibility/InParallel.h"
#include "visibility/IndexState.h"

#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Lumivane::Visibility {
namespace {

using Kernel::Vec3;

// Of the larger polygon's size and of coordinates: what rounding leaves of a distance that is 0.
constexpr double RoundingOfSize = 1e-13;
constexpr double RoundingOfPlace = 4e-15;
// Planes at a smaller angle (its sine) have no line in common.
constexpr double LeastSine = 1e-9;
// Crossings shorter than this part of the larger polygon are points.
constexpr double ShortestPart = 1e-9;
// Beside a common edge this part of the larger polygon's size is left out.
constexpr double BesideEdge = 1e-6;

struct Bounds {
  Vec3 low{1e300, 1e300, 1e300};
  Vec3 high{-1e300, -1e300, -1e300};
  double off = 0.0;    // how far a corner is from the plane at most
  double place = 0.0;  // the greatest coordinate

  void add(Vec3 p) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    place = std::max({place, std::abs(p.x), std::abs(p.y), std::abs(p.z)});
  }
};

bool overlap(Vec3 lowA, Vec3 highA, Vec3 lowB, Vec3 highB) {
  return lowA.x <= highB.x && lowB.x <= highA.x && lowA.y <= highB.y && lowB.y <= highA.y &&
         lowA.z <= highB.z && lowB.z <= highA.z;
}

Vec3 lowOf(const BoxNode& node) { return {node.low[0], node.low[1], node.low[2]}; }
Vec3 highOf(const BoxNode& node) { return {node.high[0], node.high[1], node.high[2]}; }
Vector vectorOf(Vec3 v) { return {v.x, v.y, v.z}; }

// A point of the common line.
struct Station {
  double at;
  Vec3 point;
};

struct Span {
  Station from;
  Station to;
};

class CrossingFinder {
 public:
  explicit CrossingFinder(const IndexState& index) : state(index), bounds(index.polygonCount()) {
    for (std::size_t p = 0; p < bounds.size(); ++p) {
      forCorners(p, [&](std::size_t c) { bounds[p].add(corner(c)); });
      forCorners(p, [&](std::size_t c) {
        bounds[p].off = std::max(bounds[p].off, std::abs(distanceTo(p, corner(c))));
      });
    }
    lastPolygons.resize(state.nodes.size());
    for (std::size_t i = state.nodes.size(); i-- > 0;) {
      const BoxNode& node = state.nodes[i];
      lastPolygons[i] = node.isLeaf()
                            ? node.first + node.count
                            : std::max(lastPolygons[static_cast<std::size_t>(node.first)],
                                       lastPolygons[static_cast<std::size_t>(node.first) + 1]);
      if (node.isLeaf()) leaves.push_back(i);
    }
  }

  std::vector<SceneCrossing> run(int threads, const std::atomic<bool>* cancelled) {
    std::vector<std::vector<SceneCrossing>> found(leaves.size());
    forEachInParallel(leaves.size(), threadCount(threads), [&](std::size_t i) {
      if (cancelled != nullptr && *cancelled) throw Cancelled();
      addOfLeaf(state.nodes[leaves[leaves.size() - 1 - i]], found[i]);
    });
    std::vector<SceneCrossing> all;
    for (const auto& some : found) all.insert(all.end(), some.begin(), some.end());
    return all;
  }

 private:
  template <class Visit>
  void forCorners(std::size_t polygon, Visit visit) const {
    for (auto c = state.cornerOffsets[polygon]; c < state.cornerOffsets[polygon + 1]; ++c)
      visit(static_cast<std::size_t>(c));
  }
  Vec3 corner(std::size_t c) const {
    return state.vertices[static_cast<std::size_t>(state.cornerVertices[c])];
  }
  double distanceTo(std::size_t plane, Vec3 point) const {
    const ScenePlane& p = state.planes[plane];
    return Kernel::dot(p.normal, point - p.point);
  }

  // With polygons of higher numbers.
  void addOfLeaf(const BoxNode& leaf, std::vector<SceneCrossing>& found) const {
    std::int32_t waiting[BoxHierarchy::MostDepth + 1];
    int count = 0;
    waiting[count++] = 0;
    while (count > 0) {
      const auto number = static_cast<std::size_t>(waiting[--count]);
      const BoxNode& node = state.nodes[number];
      if (lastPolygons[number] <= leaf.first ||
          !overlap(lowOf(leaf), highOf(leaf), lowOf(node), highOf(node)))
        continue;
      if (!node.isLeaf()) {
        waiting[count++] = node.first + 1;
        waiting[count++] = node.first;
        continue;
      }
      for (std::int32_t a = leaf.first; a < leaf.first + leaf.count; ++a)
        for (std::int32_t b = std::max(a + 1, node.first); b < node.first + node.count; ++b)
          addOfPair(static_cast<std::size_t>(a), static_cast<std::size_t>(b), found);
    }
  }

  void addOfPair(std::size_t a, std::size_t b, std::vector<SceneCrossing>& found) const {
    if (state.regions[a] == state.regions[b] || state.layers[a] == state.layers[b]) return;
    if (!overlap(bounds[a].low, bounds[a].high, bounds[b].low, bounds[b].high)) return;
    const double size = std::max(state.sizes[a], state.sizes[b]);
    const double nearness = 2.0 * (bounds[a].off + bounds[b].off) + RoundingOfSize * size +
                            RoundingOfPlace * std::max(bounds[a].place, bounds[b].place);
    if (!hasBothSides(a, b, nearness) || !hasBothSides(b, a, nearness)) return;
    const Vec3 across = Kernel::cross(state.planes[a].normal, state.planes[b].normal);
    const double sine = Kernel::length3(across);
    if (!(sine > LeastSine)) return;
    const Vec3 along = {across.x / sine, across.y / sine, across.z / sine};
    std::vector<Span> spans =
        common(spansOf(a, b, along, nearness), spansOf(b, a, along, nearness));
    leaveOutCommonEdges(a, b, along, BesideEdge * size, spans);
    const std::pair<int, int> regions = std::minmax(state.regions[a], state.regions[b]);
    for (const Span& span : spans)
      if (span.to.at - span.from.at > ShortestPart * size)
        found.push_back(
            {vectorOf(span.from.point), vectorOf(span.to.point), {regions.first, regions.second}});
  }

  bool isBelow(std::size_t plane, Vec3 point, double nearness) const {
    return distanceTo(plane, point) < -nearness;
  }

  bool hasBothSides(std::size_t polygon, std::size_t plane, double nearness) const {
    bool below = false;
    bool above = false;
    forCorners(polygon, [&](std::size_t c) {
      (isBelow(plane, corner(c), nearness) ? below : above) = true;
    });
    return below && above;
  }

  // What a polygon covers of the line in which its plane meets another one.
  std::vector<Span> spansOf(std::size_t polygon, std::size_t plane, Vec3 along,
                            double nearness) const {
    std::vector<Station> stations;
    const auto end = static_cast<std::size_t>(state.cornerOffsets[polygon + 1]);
    Vec3 from = corner(end - 1);
    forCorners(polygon, [&](std::size_t c) {
      const Vec3 to = corner(c);
      if (isBelow(plane, from, nearness) != isBelow(plane, to, nearness)) {
        const double before = distanceTo(plane, from);
        const double after = distanceTo(plane, to);
        // A corner that counts as one of the plane may be off it a little on the same side.
        const double part = std::clamp(before / (before - after), 0.0, 1.0);
        const Vec3 point = from + part * (to - from);
        stations.push_back({Kernel::dot(along, point), point});
      }
      from = to;
    });
    std::sort(stations.begin(), stations.end(),
              [](const Station& a, const Station& b) { return a.at < b.at; });
    std::vector<Span> spans;
    for (std::size_t i = 0; i + 1 < stations.size(); i += 2)
      spans.push_back({stations[i], stations[i + 1]});
    return spans;
  }

  static std::vector<Span> common(const std::vector<Span>& a, const std::vector<Span>& b) {
    std::vector<Span> both;
    for (const Span& one : a)
      for (const Span& other : b) {
        const Span span = {one.from.at < other.from.at ? other.from : one.from,
                           one.to.at < other.to.at ? one.to : other.to};
        if (span.from.at < span.to.at) both.push_back(span);
      }
    return both;
  }

  // Polygons that share an edge meet there, but do not run through each other.
  void leaveOutCommonEdges(std::size_t a, std::size_t b, Vec3 along, double beside,
                           std::vector<Span>& spans) const {
    if (spans.empty()) return;
    forCorners(a, [&](std::size_t c) {
      const std::int32_t edge = state.cornerEdges[c];
      bool isCommon = false;
      forCorners(
          b, [&](std::size_t other) { isCommon = isCommon || state.cornerEdges[other] == edge; });
      if (!isCommon) return;
      const auto first = 2 * static_cast<std::size_t>(edge);
      Station ends[2];
      for (std::size_t i : {0U, 1U}) {
        const Vec3 p = state.vertices[static_cast<std::size_t>(state.edgeVertices[first + i])];
        ends[i] = {Kernel::dot(along, p), p};
      }
      if (ends[1].at < ends[0].at) std::swap(ends[0], ends[1]);
      leaveOut({ends[0], ends[1]}, beside, spans);
    });
  }

  static void leaveOut(const Span& edge, double beside, std::vector<Span>& spans) {
    std::vector<Span> kept;
    for (const Span& span : spans) {
      if (edge.to.at < span.from.at || span.to.at < edge.from.at) {
        kept.push_back(span);
        continue;
      }
      if (span.from.at < edge.from.at - beside) kept.push_back({span.from, edge.from});
      if (edge.to.at + beside < span.to.at) kept.push_back({edge.to, span.to});
    }
    spans.swap(kept);
  }

  const IndexState& state;
  std::vector<Bounds> bounds;              // of polygons
  std::vector<std::int32_t> lastPolygons;  // of nodes: one behind the last one below it
  std::vector<std::size_t> leaves;         // nodes, last ones first
};

}  // namespace

std::vector<SceneCrossing> SceneIndex::crossings(int threads,
                                                 const std::atomic<bool>* cancelled) const {
  if (threads < 0) throw std::invalid_argument("the number of threads is negative");
  return CrossingFinder(*state).run(threads, cancelled);
}

}  // namespace Lumivane::Visibility
