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
bool MapBuilder::continues(int vertex, const Link& a, const Link& b) {
  if (a.source() != b.source() || a.source() == NoSource) return false;
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

MapBuilder::LinkPairs::LinkPairs(size_t vertices, const BlockList<Link>& links, Watch& watch)
    : pairs(vertices, std::pair(None, None)) {
  for (const size_t i : watch.upTo(links.size())) {
    add(links[i].from, static_cast<int>(i));
    add(links[i].to, static_cast<int>(i));
  }
}

void MapBuilder::LinkPairs::add(int vertex, int link) {
  auto& [first, second] = pairs[static_cast<size_t>(vertex)];
  if (first == None)
    first = link;
  else
    second = second == None ? link : More;
}

bool MapBuilder::passes(int vertex) const {
  if (!atVertex->isPair(vertex)) return false;
  const Link& first = links[static_cast<size_t>(atVertex->first(vertex))];
  return continues(vertex, first, links[static_cast<size_t>(atVertex->second(vertex))]) &&
         !isMiddleOfWide(first.source(), directions[static_cast<size_t>(vertex)]);
}

// First it is found out for each link which edge it begins. Then edges take the place of links.
void MapBuilder::chainLinks() {
  atVertex = std::make_unique<LinkPairs>(foundVertices, links, watch);
  outcomes.assign(links.size(), NotFollowed);
  for (const size_t i : watch.upTo(links.size())) {
    if (outcomes[i] != NotFollowed) continue;
    if (!passes(links[i].from)) {
      follow(static_cast<int>(i), links[i].from);
    } else if (!passes(links[i].to)) {
      follow(static_cast<int>(i), links[i].to);
    }
  }
  std::vector<int> rings;  // links of rings that nothing else meets
  for (const size_t i : watch.upTo(links.size())) {
    if (outcomes[i] != NotFollowed) continue;
    follow(static_cast<int>(i), links[i].from);
    rings.push_back(static_cast<int>(i));
  }
  atVertex.reset();
  addEdges(rings);
  release(outcomes);
  release(fieldArcs);
}

// A vertex at which others have vanished may be one that two edges pass: they become one.
void MapBuilder::chainEdges() {
  if (!edgesAreFewer) return;
  const LinkPairs pairs(directions.size(), edges, watch);
  JoinedSets chains;
  for (size_t i = 0; i < edges.size(); ++i) chains.add();
  for (const size_t i : watch.upTo(foundVertices)) {
    const int vertex = static_cast<int>(i);
    if (!pairs.isPair(vertex)) continue;
    const int first = std::min(chains.find(pairs.first(vertex)), chains.find(pairs.second(vertex)));
    const int second =
        std::max(chains.find(pairs.first(vertex)), chains.find(pairs.second(vertex)));
    Link& edge = edges[static_cast<size_t>(first)];
    const Link& next = edges[static_cast<size_t>(second)];
    if (first == second || edge.source() == FieldSource || !continues(vertex, edge, next) ||
        isMiddleOfWide(edge.source(), directions[i]))
      continue;
    const int end = next.from == vertex ? next.to : next.from;
    const int start = edge.from == vertex ? edge.to : edge.from;
    if (start == end) continue;
    (edge.from == vertex ? edge.from : edge.to) = end;
    chains.join(first, second);
  }
  size_t kept = 0;
  for (const size_t i : watch.upTo(edges.size()))
    if (chains.find(static_cast<int>(i)) == static_cast<int>(i)) edges[kept++] = edges[i];
  edges.truncate(kept);
}

// From a vertex along a link to the end of its edge.
void MapBuilder::follow(int first, int start) {
  const Link& head = links[static_cast<size_t>(first)];
  const bool forwards = head.from == start;
  int at = start;
  int number = first;
  // Along the end of the field; signed, since links may be as short as rounding.
  double turned = 0.0;
  const Vec3 forward = {map.forward[0], map.forward[1], map.forward[2]};
  for (;;) {
    const Link& link = links[static_cast<size_t>(number)];
    outcomes[static_cast<size_t>(number)] = Followed;
    const int next = link.from == at ? link.to : link.from;
    if (link.source() == FieldSource) {
      const Vec3 a = directions[static_cast<size_t>(at)];
      const Vec3 b = directions[static_cast<size_t>(next)];
      const double sine = Kernel::dot(Kernel::cross(a, b), forward);
      turned += sine < 0.0 ? -Kernel::distance(a, b) : Kernel::distance(a, b);
    }
    at = next;
    if (at == start || !passes(at)) break;
    number = atVertex->first(at) == number ? atVertex->second(at) : atVertex->first(at);
    if (outcomes[static_cast<size_t>(number)] != NotFollowed) break;
  }
  if (head.source() == FieldSource && (at == start || isLongOfField(turned, start, at))) {
    addFieldArc(start, at, turned, first);
  } else if (at != start) {
    outcomes[static_cast<size_t>(first)] = 2 * at + (forwards ? 1 : 0);
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

// Those of rings last.
void MapBuilder::addEdges(const std::vector<int>& rings) {
  std::stable_sort(fieldArcs.begin(), fieldArcs.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<Link> last;
  auto ring = rings.begin();
  auto arc = fieldArcs.begin();
  for (const size_t i : watch.upTo(links.size())) {
    links.releaseBefore(i);
    const int number = static_cast<int>(i);
    const bool ofRing = ring != rings.end() && *ring == number;
    if (ofRing) ++ring;
    const auto add = [&](const Link& edge) {
      if (ofRing)
        last.push_back(edge);
      else
        edges.push_back(edge);
    };
    if (outcomes[i] >= 0) {
      Link edge = links[i];
      (outcomes[i] % 2 != 0 ? edge.to : edge.from) = outcomes[i] / 2;
      add(edge);
    }
    for (; arc != fieldArcs.end() && arc->first == number; ++arc) add(arc->second);
  }
  for (const Link& edge : last) edges.push_back(edge);
  release(links);
}

// The end of the field is a great circle, of which arcs must be less than half: long ones are
// divided at the directions right, up, left and down.
void MapBuilder::addFieldArc(int start, int end, double turned, int head) {
  const Link& link = links[static_cast<size_t>(head)];
  const bool forwards = link.from == start;
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
  for (size_t i = 0; i + 1 < route.size(); ++i) {
    Link arc = link;
    arc.from = route[forwards ? i : i + 1];
    arc.to = route[forwards ? i + 1 : i];
    fieldArcs.emplace_back(head, arc);
  }
}

}  // namespace Lumivane::Visibility
