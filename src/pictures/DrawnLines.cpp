// The kinds of a map's edges, and the hidden parts of the scene's edges and crossings. What is seen
// of a line is what the map has of it; so what is hidden is the rest, and as exact as the map.

#include "pictures/DrawnLines.h"

#include "pictures/LineCover.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace Lumivane::Pictures {
namespace {

using Kernel::Vec3;
using Visibility::SceneCrossing;
using Visibility::SceneEdge;
using Visibility::VisibleMap;
using EdgeKind = VisibleMap::EdgeKind;

// Two surfaces touch along an edge if their distances there differ by no more than this part:
// corners of models are often rounded to millimetres.
constexpr double TouchingPart = 2e-4;
// The same of the scene's size, along parallel lines of sight.
constexpr double TouchingPartOfSize = 1e-5;
// A part of an edge that is shorter than this part of it comes from rounding.
constexpr double ShortestPart = 1e-9;
// A crossing of the map is that of two polygons if its ends are off the great circle of that by no
// more than this.
constexpr double OnOneLine = 1e-5;

Vec3 vec(const Visibility::Vector& v) { return {v[0], v[1], v[2]}; }

double degreesBetween(Vec3 a, Vec3 b) {
  const double sine = Kernel::length3(Kernel::cross(a, b));
  return std::atan2(sine, Kernel::dot(a, b)) * 57.29577951308232;
}

// How much the surface bends at an edge of two polygons; half a turn where there are more or fewer.
double bendOf(const SceneEdge& edge) {
  if (edge.polygonCount != 2) return 180.0;
  const double sign = edge.sides[0].runsForward == edge.sides[1].runsForward ? -1.0 : 1.0;
  return degreesBetween(vec(edge.sides[0].normal), sign * vec(edge.sides[1].normal));
}

class KindFinder {
 public:
  KindFinder(const FlatMap& theMap, const std::vector<SceneEdge>& theEdges,
             const RegionPlanes& thePlanes, double theCreaseAngle)
      : map(theMap), edges(theEdges), planes(thePlanes), creaseAngle(theCreaseAngle) {
    for (const FlatMap::Cell& cell : map.cells) regions.push_back(regionOf(*map.names, cell.label));
    if (map.places.empty()) return;
    Vec3 low = map.places.front();
    Vec3 high = low;
    for (const Vec3& p : map.places) {
      low = {std::min(low.x, p.x), std::min(low.y, p.y), 0.0};
      high = {std::max(high.x, p.x), std::max(high.y, p.y), 0.0};
    }
    size = Kernel::distance(low, high);
  }

  DrawnLine lineOf(std::size_t number) const {
    const VisibleMap::Edge& edge = map.edges[number];
    DrawnLine line;
    line.from = map.at(edge.from);
    line.to = map.at(edge.to);
    line.kind = kindOf(number);
    line.cell = edge.left;
    line.otherCell = edge.right;
    if (ownsLine(edge.right, edge.left, line)) std::swap(line.cell, line.otherCell);
    return line;
  }

 private:
  int regionAt(int cell) const { return cell < 0 ? -1 : regions[static_cast<std::size_t>(cell)]; }

  LineKind kindOf(std::size_t number) const {
    const VisibleMap::Edge& edge = map.edges[number];
    if (edge.kind == EdgeKind::Field) return LineKind::Field;
    if (edge.kind == EdgeKind::Crossing) return LineKind::Crossing;
    const int left = regionAt(edge.left);
    const int right = regionAt(edge.right);
    if (left < 0 || right < 0) return LineKind::Outline;
    if (edge.kind == EdgeKind::Inner) return LineKind::Inner;
    if (edge.kind == EdgeKind::Silhouette && !touches(edge, left, right))
      return LineKind::Silhouette;
    return bendAt(map.edgeSources[number], left, right) > creaseAngle ? LineKind::Crease
                                                                      : LineKind::Inner;
  }

  double bendAt(int source, int left, int right) const {
    if (source >= 0) {
      const SceneEdge& edge = edges[static_cast<std::size_t>(source)];
      if (edge.polygonCount == 2) return bendOf(edge);
    }
    const RegionPlanes::Plane& a = planes[left];
    const RegionPlanes::Plane& b = planes[right];
    if (!a.known || !b.known || a.bent || b.bent) return 180.0;
    return degreesBetween(towardsEye(a), towardsEye(b));
  }

  Vec3 towardsEye(const RegionPlanes::Plane& plane) const {
    const Vec3 sight = map.isParallel ? map.forward : plane.point - map.eye;
    return Kernel::dot(plane.normal, sight) > 0.0 ? -plane.normal : plane.normal;
  }

  // Along a direction of sight; of no unit in particular.
  double depthOf(const RegionPlanes::Plane& plane, Vec3 place) const {
    if (map.isParallel) {
      const Vec3 origin = place.x * map.right + place.y * map.up;
      return Kernel::dot(plane.normal, plane.point - origin) /
             Kernel::dot(plane.normal, map.forward);
    }
    const Vec3 direction = place.x * map.right + place.y * map.up + place.z * map.forward;
    return Kernel::dot(plane.normal, plane.point - map.eye) / Kernel::dot(plane.normal, direction);
  }

  Vec3 middleOf(const VisibleMap::Edge& edge) const {
    return 0.5 * (map.at(edge.from) + map.at(edge.to));
  }

  bool touches(const VisibleMap::Edge& edge, int left, int right) const {
    if (!planes[left].known || !planes[right].known || planes[left].bent || planes[right].bent)
      return false;
    const Vec3 middle = middleOf(edge);
    const double a = depthOf(planes[left], middle);
    const double b = depthOf(planes[right], middle);
    const double limit = map.isParallel ? TouchingPartOfSize * size : TouchingPart * std::fabs(a);
    return std::fabs(a - b) <= limit;
  }

  // Whether a line belongs to the first cell rather than to the second: that of the nearer one.
  bool ownsLine(int first, int second, const DrawnLine& line) const {
    const int a = regionAt(first);
    const int b = regionAt(second);
    if (a < 0 || b < 0) return b < 0 && a >= 0;
    if (line.kind != LineKind::Silhouette || !planes[a].known || !planes[b].known) return a < b;
    const Vec3 middle = 0.5 * (line.from + line.to);
    return depthOf(planes[a], middle) < depthOf(planes[b], middle);
  }

  const FlatMap& map;
  const std::vector<SceneEdge>& edges;
  const RegionPlanes& planes;
  double creaseAngle;
  double size = 0.0;         // of the picture, along parallel lines of sight
  std::vector<int> regions;  // of cells
};

// ---- hidden parts

using Interval = std::pair<double, double>;

// The part of an edge from one end at which an arc's direction lies: 0 to 1.
double partAt(Vec3 a, Vec3 b, Vec3 normal, Vec3 place) {
  const double from = Kernel::dot(Kernel::cross(a, place), normal);
  const double along = Kernel::dot(Kernel::cross(b - a, place), normal);
  return along == 0.0 ? 0.0 : -from / along;
}

// What of straight lines of the scene is no edge of the map.
class HiddenParts {
 public:
  explicit HiddenParts(const FlatMap& theMap) : map(theMap) {}

  /// Adds the parts of the line from one point to another that are none of the edges of the map
  /// that `isPart` accepts out of `candidates`, as lines of a region.
  template <class IsPart>
  void add(const Visibility::Vector& from, const Visibility::Vector& to, int region,
           const std::size_t* begin, const std::size_t* end, IsPart isPart,
           std::vector<DrawnLine>& lines) {
    const Vec3 a = map.placeOf(from);
    const Vec3 b = map.placeOf(to);
    const Vec3 normal = Kernel::cross(a, b);
    const double square = Kernel::dot(normal, normal);
    if (square <= 1e-24 * Kernel::dot(a, a) * Kernel::dot(b, b)) return;  // seen as a point
    if (map.isParallel && Kernel::distance(a, b) == 0.0) return;
    seen.clear();
    for (const std::size_t* i = begin; i != end; ++i) {
      const VisibleMap::Edge& part = map.edges[*i];
      if (!isPart(normal, part)) continue;
      const double first = partAt(a, b, normal, map.at(part.from));
      const double last = partAt(a, b, normal, map.at(part.to));
      seen.emplace_back(std::min(first, last), std::max(first, last));
    }
    std::sort(seen.begin(), seen.end());
    double low = 0.0;
    double high = 1.0;
    if (map.isHemisphere && !inFront(a, b, low, high)) return;
    for (const Interval& part : seen) {
      addPart(a, b, low, std::min(part.first, high), region, lines);
      low = std::max(low, part.second);
    }
    addPart(a, b, low, high, region, lines);
  }

 private:
  // Cuts off what lies behind the eye.
  static bool inFront(Vec3 a, Vec3 b, double& low, double& high) {
    if (a.z <= 0.0 && b.z <= 0.0) return false;
    if (a.z < 0.0) low = a.z / (a.z - b.z);
    if (b.z < 0.0) high = a.z / (a.z - b.z);
    return true;
  }

  static void addPart(Vec3 a, Vec3 b, double low, double high, int region,
                      std::vector<DrawnLine>& lines) {
    if (!(high - low > ShortestPart)) return;
    DrawnLine line;
    line.from = a + low * (b - a);
    line.to = a + high * (b - a);
    line.kind = LineKind::Hidden;
    line.region = region;
    lines.push_back(line);
  }

  const FlatMap& map;
  std::vector<Interval> seen;  // scratch
};

// The hidden parts of edges.
class HiddenEdges {
 public:
  HiddenEdges(const FlatMap& theMap, const std::vector<SceneEdge>& theEdges, double theCreaseAngle)
      : map(theMap), edges(theEdges), creaseAngle(theCreaseAngle) {
    offsets.assign(edges.size() + 1, 0);
    for (const int source : map.edgeSources)
      if (source >= 0) ++offsets[static_cast<std::size_t>(source) + 1];
    for (std::size_t i = 0; i < edges.size(); ++i) offsets[i + 1] += offsets[i];
    parts.resize(offsets.back());
    std::vector<std::size_t> next(offsets.begin(), offsets.end() - 1);
    for (std::size_t i = 0; i < map.edgeSources.size(); ++i)
      if (map.edgeSources[i] >= 0) parts[next[static_cast<std::size_t>(map.edgeSources[i])]++] = i;
  }

  void addTo(std::vector<DrawnLine>& lines) const {
    HiddenParts hidden(map);
    for (std::size_t i = 0; i < edges.size(); ++i)
      if (isDrawn(edges[i]))
        hidden.add(
            edges[i].from, edges[i].to, edges[i].sides[0].region, parts.data() + offsets[i],
            parts.data() + offsets[i + 1], [](Vec3, const VisibleMap::Edge&) { return true; },
            lines);
  }

 private:
  bool facesEye(const SceneEdge& edge, std::size_t side) const {
    const Vec3 sight = map.isParallel ? map.forward : vec(edge.from) - map.eye;
    return Kernel::dot(vec(edge.sides[side].normal), sight) > 0.0;
  }

  bool isDrawn(const SceneEdge& edge) const {
    if (edge.polygonCount > 2) return !edge.inner;
    if (edge.polygonCount < 2) return true;
    const bool sameWay = edge.sides[0].runsForward == edge.sides[1].runsForward;
    const bool turns = (facesEye(edge, 0) == facesEye(edge, 1)) == sameWay;
    return turns || (!edge.inner && bendOf(edge) > creaseAngle);
  }

  const FlatMap& map;
  const std::vector<SceneEdge>& edges;
  double creaseAngle;
  std::vector<std::size_t> offsets;  // of each edge of the scene among `parts`
  std::vector<std::size_t> parts;    // edges of the map
};

// The hidden parts of crossings. The map says between which two regions a crossing is seen; of
// regions that are not flat there may be several.
class HiddenCrossings {
 public:
  explicit HiddenCrossings(const FlatMap& theMap) : map(theMap) {
    std::vector<int> regions;
    for (const FlatMap::Cell& cell : map.cells) regions.push_back(regionOf(*map.names, cell.label));
    const auto regionAt = [&](int cell) {
      return cell < 0 ? -1 : regions[static_cast<std::size_t>(cell)];
    };
    for (std::size_t i = 0; i < map.edges.size(); ++i)
      if (map.edges[i].kind == EdgeKind::Crossing)
        parts[std::minmax(regionAt(map.edges[i].left), regionAt(map.edges[i].right))].push_back(i);
  }

  void addTo(const std::vector<SceneCrossing>& crossings, std::vector<DrawnLine>& lines) const {
    HiddenParts hidden(map);
    for (const SceneCrossing& crossing : crossings) {
      const auto found = parts.find({crossing.regions[0], crossing.regions[1]});
      const bool isSeen = found != parts.end();
      hidden.add(
          crossing.from, crossing.to, crossing.regions[0], isSeen ? found->second.data() : nullptr,
          isSeen ? found->second.data() + found->second.size() : nullptr,
          [this](Vec3 normal, const VisibleMap::Edge& part) { return liesOn(normal, part); },
          lines);
    }
  }

 private:
  bool liesOn(Vec3 normal, const VisibleMap::Edge& part) const {
    const auto sineOf = [&](Vec3 place) {
      return std::fabs(Kernel::dot(normal, place)) /
             (Kernel::length3(normal) * Kernel::length3(place));
    };
    return sineOf(map.at(part.from)) < OnOneLine && sineOf(map.at(part.to)) < OnOneLine;
  }

  const FlatMap& map;
  std::map<std::pair<int, int>, std::vector<std::size_t>> parts;  // edges of the map
};

Vec3 inAxes(const FlatMap& map, Vec3 p) {
  return {Kernel::dot(p, map.right), Kernel::dot(p, map.up), Kernel::dot(p, map.forward)};
}

}  // namespace

Vec3 FlatMap::placeOf(const Visibility::Vector& point) const {
  if (!isParallel) return inAxes(*this, vec(point) - eye);
  return {Kernel::dot(vec(point), right), Kernel::dot(vec(point), up), 1.0};
}

FlatMap flatMap(const Visibility::VisibleMap& map) {
  FlatMap flat;
  flat.isHemisphere = map.field == Visibility::Field::Hemisphere;
  flat.eye = vec(map.eye);
  flat.forward = vec(map.forward);
  flat.up = vec(map.up);
  flat.right = Kernel::cross(flat.forward, flat.up);
  for (const Visibility::Vector& vertex : map.vertices)
    flat.places.push_back(inAxes(flat, vec(vertex)));
  for (const VisibleMap::Cell& cell : map.cells)
    flat.cells.push_back({cell.label, cell.firstRing, cell.ringCount});
  flat.ringOffsets = map.ringOffsets;
  flat.ringVertices = map.ringVertices;
  flat.edges = map.edges;
  flat.edgeSources = map.edgeSources;
  flat.names = map.names;
  return flat;
}

FlatMap flatMap(const Visibility::ParallelMap& map) {
  FlatMap flat;
  flat.isParallel = true;
  flat.forward = vec(map.direction);
  flat.up = vec(map.up);
  flat.right = vec(map.right);
  for (const Visibility::ParallelMap::Point& point : map.points)
    flat.places.push_back({point[0], point[1], 1.0});
  for (const Visibility::ParallelMap::Cell& cell : map.cells)
    flat.cells.push_back({cell.label, cell.firstRing, cell.ringCount});
  flat.ringOffsets = map.ringOffsets;
  flat.ringVertices = map.ringVertices;
  flat.edges = map.edges;
  flat.edgeSources = map.edgeSources;
  flat.names = map.names;
  return flat;
}

RegionPlanes::RegionPlanes(const std::vector<SceneEdge>& edges, std::size_t regionCount)
    : planes(regionCount) {
  for (const SceneEdge& edge : edges)
    for (const SceneEdge::Side& side : edge.sides) {
      if (side.region < 0) continue;
      Plane& plane = planes[static_cast<std::size_t>(side.region)];
      const Vec3 normal = vec(side.normal);
      if (plane.known && plane.normal != normal) plane.bent = true;
      if (!plane.known) plane = {normal, vec(edge.from), true, false};
    }
}

int regionOf(const VisibleMap::Names& names, const Visibility::Label& label) {
  if (label.object == 0) return -1;
  const auto& regions = names.regions;
  const auto found =
      std::lower_bound(regions.begin(), regions.end(), label, [](const auto& a, const auto& b) {
        return a.object != b.object ? a.object < b.object : a.region < b.region;
      });
  if (found == regions.end() || *found != label) return -1;
  return static_cast<int>(found - regions.begin());
}

std::vector<DrawnLine> visibleLines(const FlatMap& map, const std::vector<SceneEdge>& edges,
                                    const RegionPlanes& planes, double creaseAngle) {
  const KindFinder finder(map, edges, planes, creaseAngle);
  std::vector<DrawnLine> lines;
  lines.reserve(map.edges.size());
  for (std::size_t i = 0; i < map.edges.size(); ++i) lines.push_back(finder.lineOf(i));
  return lines;
}

std::vector<DrawnLine> hiddenLines(const FlatMap& map, const std::vector<SceneEdge>& edges,
                                   const std::vector<SceneCrossing>& crossings,
                                   const std::vector<DrawnLine>& visible, double creaseAngle) {
  LineCover cover(map.isParallel);
  for (const DrawnLine& line : visible)
    if (line.kind != LineKind::Inner) cover.extend(line.from, line.to);
  std::vector<DrawnLine> parts;
  HiddenEdges(map, edges, creaseAngle).addTo(parts);
  HiddenCrossings(map).addTo(crossings, parts);
  for (const DrawnLine& line : parts) cover.extend(line.from, line.to);
  for (const DrawnLine& line : visible)
    if (line.kind != LineKind::Inner) cover.add(line.from, line.to);
  std::vector<DrawnLine> lines;
  for (const DrawnLine& line : parts)
    for (const auto& [from, to] : cover.uncovered(line.from, line.to)) {
      DrawnLine part = line;
      part.from = from;
      part.to = to;
      cover.add(from, to);
      lines.push_back(part);
    }
  return lines;
}

}  // namespace Lumivane::Pictures
