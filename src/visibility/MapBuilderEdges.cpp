// Edges: links that follow each other on one line, with the same cells on both sides, become one. A
// vertex that two such links pass leaves no trace; arcs must be less than half a great circle, so
// wide edges and the end of the field are divided where the scene or the view says, not where tiles
// do.
#include "kernel/Planar.h"
#include "kernel/Trigonometry.h"
#include "visibility/EdgeOrder.h"
#include "visibility/MapBuilder.h"
#include "visibility/WideEdge.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Lumivane::Visibility {

using Kernel::Pi;
using Kernel::Vec3;

// Whether the two links at a vertex continue each other there.
bool MapBuilder::continues(int vertex, const Link& a, const Link& b) const {
  if (a.source != b.source || a.source == NoSource) return false;
  const bool sameWay = (a.to == vertex) == (b.from == vertex);
  return sameWay ? a.left == b.left && a.right == b.right : a.left == b.right && a.right == b.left;
}

// Whether a direction is where a wide edge, of which arcs must be less than half a circle, is
// divided.
bool MapBuilder::isMiddleOfWide(Source source, Vec3 direction) const {
  Vec3 middle;
  return middleOfWide(source, middle) && Kernel::distance(middle, direction) < PlaceTolerance;
}

bool MapBuilder::middleOfWide(Source source, Vec3& middle) const {
  if (source < 0 || isCrossing(source)) return false;
  const auto [first, second] = orderedEnds(*setup.state, source);
  const Vec3 a = fromEye(first);
  const Vec3 b = fromEye(second);
  if (!isWide(a, b)) return false;
  middle = unit(nearestOfWide(a, b));
  return true;
}

bool MapBuilder::passes(int vertex) const {
  if (atVertex.size(vertex) != 2) return false;
  const int* at = atVertex.begin(vertex);
  const Link& first = links[static_cast<size_t>(at[0])];
  return at[0] != at[1] && continues(vertex, first, links[static_cast<size_t>(at[1])]) &&
         !isMiddleOfWide(first.source, directions[static_cast<size_t>(vertex)]);
}

void MapBuilder::chainLinks() {
  atVertex.fill(parts.vertices.size(), [this](auto add) {
    for (const size_t i : watch.upTo(links.size())) {
      add(links[i].from, static_cast<int>(i));
      add(links[i].to, static_cast<int>(i));
    }
  });
  for (const size_t i : watch.upTo(links.size())) {
    if (links[i].used) continue;
    if (!passes(links[i].from)) {
      follow(static_cast<int>(i), links[i].from);
    } else if (!passes(links[i].to)) {
      follow(static_cast<int>(i), links[i].to);
    }
  }
  for (const size_t i : watch.upTo(links.size()))
    if (!links[i].used) follow(static_cast<int>(i), links[i].from);
  release(links);
  atVertex = Buckets();
}

// From a vertex along a link to the end of its edge.
void MapBuilder::follow(int first, int start) {
  const Link head = links[static_cast<size_t>(first)];
  const bool forwards = head.from == start;
  int at = start;
  int number = first;
  // Along the end of the field; signed, since links may be as short as rounding.
  double turned = 0.0;
  const Vec3 forward = {map.forward[0], map.forward[1], map.forward[2]};
  for (;;) {
    Link& link = links[static_cast<size_t>(number)];
    link.used = true;
    const int next = link.from == at ? link.to : link.from;
    if (link.source == FieldSource) {
      const Vec3 a = directions[static_cast<size_t>(at)];
      const Vec3 b = directions[static_cast<size_t>(next)];
      const double sine = Kernel::dot(Kernel::cross(a, b), forward);
      turned += sine < 0.0 ? -Kernel::distance(a, b) : Kernel::distance(a, b);
    }
    at = next;
    if (at == start || !passes(at)) break;
    const int* both = atVertex.begin(at);
    number = both[0] == number ? both[1] : both[0];
    if (links[static_cast<size_t>(number)].used) break;
  }
  if (head.source == FieldSource && (at == start || isLongOfField(turned, start, at))) {
    addFieldArc(start, at, turned, forwards, head);
  } else if (at != start) {
    addEdge(forwards ? start : at, forwards ? at : start, head);
  }
}

// Whether an arc of the end of the field is longer than 1.5. Its pieces' chords add up to less than
// that if it is not, and to no more than the arc.
bool MapBuilder::isLongOfField(double turned, int start, int end) const {
  constexpr double ChordOfLongest = 1.3632775200466682;  // 2 sin 0.75
  return std::fabs(turned) > 1.5 ||
         Kernel::distance(directions[static_cast<size_t>(start)],
                          directions[static_cast<size_t>(end)]) > ChordOfLongest;
}

void MapBuilder::addEdge(int from, int to, Link link) {
  link.from = from;
  link.to = to;
  edges.push_back(link);
}

// The end of the field is a great circle, of which arcs must be less than half: long ones are
// divided at the directions right, up, left and down.
void MapBuilder::addFieldArc(int start, int end, double turned, bool forwards, const Link& link) {
  const Vec3 forward = {map.forward[0], map.forward[1], map.forward[2]};
  const Vec3 up = {map.up[0], map.up[1], map.up[2]};
  const Vec3 right = Kernel::cross(forward, up);
  const Vec3 from = directions[static_cast<size_t>(start)];
  const double sense = turned > 0.0 ? 1.0 : -1.0;
  const Vec3 ahead = sense * Kernel::cross(forward, from);
  const auto angle = [&](Vec3 d) {
    const double turn = Kernel::arcTangent(Kernel::dot(d, ahead), Kernel::dot(d, from));
    return turn <= 0.0 ? turn + 2.0 * Pi : turn;
  };
  const double whole = start == end ? 10.0 : angle(directions[static_cast<size_t>(end)]);
  std::vector<std::pair<double, Vec3>> stations;
  for (const Vec3 d : {right, up, -right, -up}) {
    const double turn = angle(d);
    // A whole circle goes through all four, wherever it has been found to begin.
    if ((start == end || turn > 1e-9) && turn < whole - 1e-9) stations.emplace_back(turn, d);
  }
  std::sort(stations.begin(), stations.end(),
            [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<int> route;
  if (start != end) route.push_back(start);
  for (const auto& station : stations) {
    route.push_back(static_cast<int>(directions.size()));
    directions.push_back(station.second);
  }
  route.push_back(start != end ? end : route.front());
  for (size_t i = 0; i + 1 < route.size(); ++i)
    addEdge(route[forwards ? i : i + 1], route[forwards ? i + 1 : i], link);
}

}  // namespace Lumivane::Visibility
