// Places come from the scene, not from tiles or what is hidden: a vertex is a corner of the scene,
// the middle of a wide edge, or the meeting of two of the lines that end in it. Where one stays as
// the sweep has found it the map is doubtful.
#include "visibility/EdgeOrder.h"
#include "visibility/EyePlane.h"
#include "visibility/MapBuilder.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <vector>

namespace Lumivane::Visibility {
namespace {

// Distance at which two vertices of the map are one.
constexpr double SamePlace = 1e-13;
// How far off its place the sweep may have taken a line to be, in rad.
constexpr double LineDoubt = 4e-15;
// The same where it has taken two for one until they are apart by its tolerance.
constexpr double JoinedDoubt = 6e-14;
// Where lines meet at a small angle the sweep may have found that as far off as this.
constexpr double MostDoubt = 1e-7;
// Beyond this, what has been found around it may be another than elsewhere in the cube.
constexpr double SureDistance = 3e-9;

}  // namespace

using Kernel::Vec3;

// A vertex is a corner of the scene, or the meeting of two of the lines that end in it; its
// coordinates follow from these. Where lines meet at too small an angle it stays where the sweep
// has found it.
void MapBuilder::placeVertices() {
  placeVertices([](size_t) { return true; });
}

template <class Chosen>
void MapBuilder::placeVertices(Chosen isChosen) {
  Buckets edgesAt;
  edgesAt.fill(foundVertices, [this](auto add) {
    for (const size_t i : watch.upTo(edges.size()))
      for (const int vertex : {edges[i].from, edges[i].to})
        if (static_cast<size_t>(vertex) < foundVertices && edges[i].source() != NoSource)
          add(vertex, static_cast<int>(i));
  });
  forEachWith<std::vector<Source>>(foundVertices, [&](size_t i, std::vector<Source>& lines) {
    if (!isChosen(i)) return;
    const int vertex = static_cast<int>(i);
    lines.clear();
    for (const int* edge = edgesAt.begin(vertex); edge != edgesAt.end(vertex); ++edge)
      lines.push_back(edges[static_cast<size_t>(*edge)].source());
    std::sort(lines.begin(), lines.end());
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
    // Which of two comes first makes no difference.
    if (lines.size() > 2) std::sort(lines.begin(), lines.end(), SourceOrder(*setup.state));
    if (!lines.empty()) placeVertex(vertex, lines);
  });
}

void MapBuilder::placeVertex(int vertex, const std::vector<Source>& lines) {
  Vec3& place = directions[static_cast<size_t>(vertex)];
  if (placeAtEnd(place, lines)) return;
  const auto moveOnto = [&](Source line, double least) {
    const Vec3 normal = normalOf(line);
    const double off = Kernel::dot(normal, place);
    if (std::fabs(off) >= least && std::fabs(off) < MostDoubt) place = unit(place - off * normal);
  };
  if (lines.size() == 1) {
    moveOnto(lines[0], 0.0);
    isDoubtful = true;
    return;
  }
  const Vec3 before = place;
  const bool isFound = placeAtMeeting(place, lines);
  const double moved = Kernel::distance(place, before);
  const bool isAtEnd = moved > LineDoubt && placeAtEnd(place, lines);
  if (!isFound || (moved > SureDistance && !isAtEnd)) isDoubtful = true;
  if (isAtEnd) return;
  // Where an edge meets the end of the field at a small angle rounding takes the place off that.
  const bool isOfField = std::find(lines.begin(), lines.end(), FieldSource) != lines.end();
  if (isOfField) moveOnto(FieldSource, SamePlace);
}

// At an end of one of some lines, or in the middle of a wide one. \return false if none is nearby
bool MapBuilder::placeAtEnd(Vec3& place, const std::vector<Source>& lines) const {
  const auto isClose = [&](Vec3 d) { return Kernel::distance(d, place) < PlaceTolerance; };
  const auto point = [this](std::int32_t i) {
    return setup.state->vertices[static_cast<size_t>(i)];
  };
  std::int32_t corner = -1;
  for (const Source source : lines) {
    if (source < 0 || isCrossing(source)) continue;
    for (const size_t k : {size_t{0}, size_t{1}}) {
      const std::int32_t candidate = setup.state->edgeVertices[2 * static_cast<size_t>(source) + k];
      if ((corner < 0 || isBefore(point(candidate), point(corner))) &&
          isClose(unit(fromEye(candidate))))
        corner = candidate;
    }
  }
  if (corner >= 0) {
    place = unit(fromEye(corner));
    return true;
  }
  for (const Source source : lines) {
    Vec3 middle;
    if (!middleOfWide(source, middle) || !isClose(middle)) continue;
    place = middle;
    return true;
  }
  return false;
}

// \return false if no two of some lines meet nearby
bool MapBuilder::placeAtMeeting(Vec3& place, const std::vector<Source>& lines) const {
  Vec3 meeting = meetingAt(place, lines, Exactness::Usual);
  if (meeting == Vec3{}) {
    meeting = meetingAt(place, lines, Exactness::Full);
    if (meeting == Vec3{}) return false;
    // From there it is found as from anywhere near it.
    const Vec3 usual = meetingAt(meeting, lines, Exactness::Usual);
    if (!(usual == Vec3{})) meeting = usual;
  }
  place = meeting;
  return true;
}

// Where those two of some lines meet that do so at the largest angle; zero if that is nowhere near.
Vec3 MapBuilder::meetingAt(Vec3 place, const std::vector<Source>& lines,
                           Exactness exactness) const {
  const double lineDoubt = exactness == Exactness::Usual ? LineDoubt : JoinedDoubt;
  double best = LineDoubt / MostDoubt;
  Vec3 meeting{};
  for (size_t i = 0; i < lines.size(); ++i)
    for (size_t k = i + 1; k < lines.size(); ++k) {
      const Vec3 d = Kernel::cross(normalOf(lines[i], exactness), normalOf(lines[k], exactness));
      const double sine = Kernel::length3(d);
      if (!(sine > best)) continue;
      const double sign = Kernel::dot(d, place) < 0.0 ? -1.0 : 1.0;
      // Zeros have one sign, whichever line comes first.
      const Vec3 candidate = {sign * d.x / sine + 0.0, sign * d.y / sine + 0.0,
                              sign * d.z / sine + 0.0};
      const double doubt = lineDoubt + doubtOf(lines[i]) + doubtOf(lines[k]);
      if (Kernel::distance(candidate, place) > std::min(PlaceTolerance + doubt / sine, MostDoubt))
        continue;
      best = sine;
      meeting = candidate;
    }
  return meeting;
}

// How far rounding may put the line in which two planes meet off its place, in rad.
double MapBuilder::doubtOf(Source source) const {
  if (!isCrossing(source)) return 0.0;
  constexpr Source Low = (Source{1} << 31) - 1;
  const Vec3 a = comparedNearness(source >> 31 & Low);
  const Vec3 b = comparedNearness(source & Low);
  return 1e-15 * (Kernel::length3(a) + Kernel::length3(b)) / Kernel::length3(a - b);
}

Vec3 MapBuilder::comparedNearness(Source polygon) const {
  const auto i = static_cast<size_t>(polygon);
  return (setup.parallel == nullptr ? eyePlane(*setup.state, i, setup.eye, setup.twoSided)
                                    : eyePlane(*setup.state, i, *setup.parallel, setup.twoSided))
      .nearness;
}

// The normal of the plane through the eye and a line, up to its sign.
Vec3 MapBuilder::normalOf(Source source, Exactness exactness) const {
  if (source == FieldSource) return {map.forward[0], map.forward[1], map.forward[2]};
  if (isCrossing(source)) {
    constexpr Source Low = (Source{1} << 31) - 1;
    return unit(comparedNearness(source >> 31 & Low) - comparedNearness(source & Low));
  }
  const auto [first, second] = orderedEnds(*setup.state, source);
  const Vec3 a = unit(fromEye(first));
  Vec3 b;
  if (!middleOfWide(source, b)) {
    if (exactness == Exactness::Full)
      return unit(inRange(exactCross(fromEye(first), fromEye(second))));
    b = unit(fromEye(second));
  }
  return unit(Kernel::cross(a, b));
}

// Vertices that have come to lie in one place are one, which has the lines of all.
void MapBuilder::contractEdges() {
  JoinedSets sets;
  bool any = false;
  for (const size_t k : watch.upTo(edges.size())) {
    const Link& edge = edges[k];
    if (Kernel::distance(directions[static_cast<size_t>(edge.from)],
                         directions[static_cast<size_t>(edge.to)]) > SamePlace)
      continue;
    if (!any)
      for (size_t i = 0; i < directions.size(); ++i) sets.add();
    any = true;
    sets.join(edge.from, edge.to);
  }
  if (!any) return;
  const auto coordinates = [](Vec3 d) { return std::make_tuple(d.x, d.y, d.z); };
  LargeVector<char> joined(directions.size(), 0);
  for (const size_t i : watch.upTo(directions.size())) {
    const auto first = static_cast<size_t>(sets.find(static_cast<int>(i)));
    if (first == i) continue;
    joined[first] = 1;
    Vec3& place = directions[first];
    if (coordinates(directions[i]) < coordinates(place)) place = directions[i];
  }
  size_t kept = 0;
  for (const size_t i : watch.upTo(edges.size())) {
    Link edge = edges[i];
    edge.from = sets.find(edge.from);
    edge.to = sets.find(edge.to);
    if (edge.from != edge.to) edges[kept++] = edge;
  }
  edges.truncate(kept);
  edgesAreFewer = true;
  placeVertices([&](size_t i) { return joined[i] != 0; });
}

}  // namespace Lumivane::Visibility
