// Places come from the scene, not from tiles or what is hidden: a vertex is a corner of the scene,
// the middle of a wide edge, or the meeting of two of the lines that end in it.
#include "visibility/EdgeOrder.h"
#include "visibility/EyePlane.h"
#include "visibility/MapBuilder.h"

#include <algorithm>
#include <tuple>
#include <vector>

namespace Lumivane::Visibility {
namespace {

// Distance at which two vertices of the map are one.
constexpr double SamePlace = 1e-13;

}  // namespace

using Kernel::Vec3;

// A vertex is a corner of the scene, or the meeting of two of the lines that end in it; its
// coordinates follow from these. Where lines meet at too small an angle it stays where the sweep
// has found it.
void MapBuilder::placeVertices() {
  Buckets edgesAt;
  edgesAt.fill(parts.vertices.size(), [this](auto add) {
    for (const size_t i : watch.upTo(edges.size()))
      for (const int vertex : {edges[i].from, edges[i].to})
        if (static_cast<size_t>(vertex) < parts.vertices.size() && edges[i].source != NoSource)
          add(vertex, static_cast<int>(i));
  });
  std::vector<Source> lines(edgesAt.size());
  forEach(parts.vertices.size(), [&](size_t i) {
    const int vertex = static_cast<int>(i);
    const int* const begin = edgesAt.begin(vertex);
    const int* const end = edgesAt.end(vertex);
    if (begin == end) return;
    Source* const first = lines.data() + edgesAt.placeOf(vertex);
    Source* last = std::transform(
        begin, end, first, [this](int edge) { return edges[static_cast<size_t>(edge)].source; });
    std::sort(first, last);
    last = std::unique(first, last);
    // Which of two comes first makes no difference.
    if (last - first > 2) std::sort(first, last, SourceOrder(*setup.state));
    placeVertex(vertex, first, static_cast<size_t>(last - first));
  });
}

void MapBuilder::placeVertex(int vertex, const Source* lines, size_t count) {
  Vec3& place = directions[static_cast<size_t>(vertex)];
  const auto isClose = [&](Vec3 d) { return Kernel::distance(d, place) < PlaceTolerance; };
  const auto point = [this](std::int32_t i) {
    return setup.state->vertices[static_cast<size_t>(i)];
  };
  std::int32_t corner = -1;
  for (size_t i = 0; i < count; ++i) {
    const Source source = lines[i];
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
    return;
  }
  for (size_t i = 0; i < count; ++i) {
    Vec3 middle;
    if (!middleOfWide(lines[i], middle) || !isClose(middle)) continue;
    place = middle;
    return;
  }
  double best = 1e-6;
  Vec3 meeting{};
  for (size_t i = 0; i < count; ++i)
    for (size_t k = i + 1; k < count; ++k) {
      const Vec3 d = Kernel::cross(normalOf(lines[i]), normalOf(lines[k]));
      const double sine = Kernel::length3(d);
      if (sine <= best) continue;
      const double sign = Kernel::dot(d, place) < 0.0 ? -1.0 : 1.0;
      const Vec3 candidate = {sign * d.x / sine, sign * d.y / sine, sign * d.z / sine};
      if (!isClose(candidate)) continue;
      best = sine;
      meeting = candidate;
    }
  if (!(meeting == Vec3{})) place = meeting;
}

// The normal of the plane through the eye and a line, up to its sign.
Vec3 MapBuilder::normalOf(Source source) const {
  if (source == FieldSource) return {map.forward[0], map.forward[1], map.forward[2]};
  if (isCrossing(source)) {
    constexpr Source Low = (Source{1} << 31) - 1;
    const auto nearness = [this](Source polygon) {
      const auto i = static_cast<size_t>(polygon);
      return (setup.parallel == nullptr
                  ? eyePlane(*setup.state, i, setup.eye, setup.twoSided)
                  : eyePlane(*setup.state, i, *setup.parallel, setup.twoSided))
          .nearness;
    };
    return unit(nearness(source >> 31 & Low) - nearness(source & Low));
  }
  const auto [first, second] = orderedEnds(*setup.state, source);
  const Vec3 a = unit(fromEye(first));
  Vec3 b;
  if (!middleOfWide(source, b)) b = unit(fromEye(second));
  return unit(Kernel::cross(a, b));
}

// Vertices that have come to lie in one place are one.
void MapBuilder::contractEdges() {
  JoinedSets sets;
  bool any = false;
  for (const Link& edge : watch.over(edges)) {
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
  for (const size_t i : watch.upTo(directions.size())) {
    Vec3& place = directions[static_cast<size_t>(sets.find(static_cast<int>(i)))];
    if (coordinates(directions[i]) < coordinates(place)) place = directions[i];
  }
  size_t kept = 0;
  for (Link edge : watch.over(edges)) {
    edge.from = sets.find(edge.from);
    edge.to = sets.find(edge.to);
    if (edge.from != edge.to) edges[kept++] = edge;
  }
  edges.resize(kept);
}

}  // namespace Lumivane::Visibility
