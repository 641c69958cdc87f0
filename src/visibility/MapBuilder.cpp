#include "visibility/MapBuilder.h"

#include "visibility/InParallel.h"
#include "visibility/SphereMeasure.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>

// From pieces to the map. Pieces that follow each other on one edge of the scene, with the same
// cells on both sides, become one edge, so that neither the tiles nor what is hidden leaves a
// trace. Each edge has two halves, one for each side; a ring is what halves of one cell make, each
// followed by the next one of that cell around their common vertex.
namespace Lumivane::Visibility {
namespace {

using Kernel::Vec3;

constexpr double Pi = 3.141592653589793;
constexpr Coordinate Tiny = 4 * Snap;  // pieces without an edge of the scene that are rounding's
constexpr int NoCell = -1;

struct Link {  // a piece after joining
  int from;
  int to;
  int left;
  int right;
  Source source;
  bool inner;
  bool shared;
  bool used;
};

Vec3 unit(Vec3 v) {
  const double length = Kernel::length3(v);
  return {v.x / length, v.y / length, v.z / length};
}

Vec3 directionOf(const CubePoint& p) {
  return unit(toScene(
      {{static_cast<double>(p.c[0]), static_cast<double>(p.c[1]), static_cast<double>(p.c[2])}}));
}

// The first of equal points, in a table with open addressing.
class KnownPoints {
 public:
  KnownPoints(const std::vector<CubePoint>& allPoints, size_t most) : points(allPoints) {
    size_t size = 64;
    while (size < 2 * most) size *= 2;
    slots.assign(size, -1);
  }
  /// The number of the first point that was asked for and equals this one.
  int first(int number) {
    const CubePoint& p = points[static_cast<size_t>(number)];
    const size_t mask = slots.size() - 1;
    for (size_t slot = hashOf(p) & mask;; slot = (slot + 1) & mask) {
      if (slots[slot] < 0) slots[slot] = number;
      if (points[static_cast<size_t>(slots[slot])] == p) return slots[slot];
    }
  }

 private:
  static size_t hashOf(const CubePoint& p) {
    std::uint64_t h = 0;
    for (const Coordinate c : p.c) {
      h = (h ^ static_cast<std::uint64_t>(c)) * 0x9E3779B97F4A7C15ull;
      h ^= h >> 29;
    }
    return static_cast<size_t>(h);
  }

  const std::vector<CubePoint>& points;
  std::vector<int> slots;
};

// Lists of numbers by key, in one array.
class Buckets {
 public:
  template <class Visit>
  void fill(size_t keys, Visit visit) {
    offsets.assign(keys + 1, 0);
    visit([this](int key, int) { ++offsets[static_cast<size_t>(key) + 1]; });
    for (size_t i = 0; i < keys; ++i) offsets[i + 1] += offsets[i];
    items.resize(static_cast<size_t>(offsets[keys]));
    std::vector<int> next(offsets.begin(), offsets.end() - 1);
    visit([&](int key, int item) {
      items[static_cast<size_t>(next[static_cast<size_t>(key)]++)] = item;
    });
  }
  const int* begin(int key) const { return items.data() + offsets[static_cast<size_t>(key)]; }
  const int* end(int key) const { return items.data() + offsets[static_cast<size_t>(key) + 1]; }
  size_t size(int key) const { return static_cast<size_t>(end(key) - begin(key)); }

 private:
  std::vector<int> offsets;
  std::vector<int> items;
};

class Builder {
 public:
  Builder(MapParts& theParts, const LookSetup& theSetup, const BuildOptions& theOptions,
          VisibleMap& theMap)
      : parts(theParts), setup(theSetup), options(theOptions), map(theMap) {}

  void run() {
    for (const auto step : {&Builder::joinVertices, &Builder::makeLinks, &Builder::numberCells,
                            &Builder::measureDistances, &Builder::chainLinks, &Builder::makeRings,
                            &Builder::measureCells}) {
      if (options.cancelled != nullptr && options.cancelled->load()) throw Cancelled();
      (this->*step)();
    }
  }

 private:
  // ---- vertices and cells

  void joinVertices() {
    KnownPoints known(parts.vertices, std::min(2 * parts.pieces.size(), parts.vertices.size()));
    std::vector<char> asked(parts.vertices.size(), 0);
    const auto ask = [&](int vertex) {
      const auto i = static_cast<size_t>(vertex);
      if (asked[i] != 0) return;
      asked[i] = 1;
      parts.vertexSets.join(known.first(vertex), vertex);
    };
    for (const Piece& piece : parts.pieces) {
      ask(piece.from);
      ask(piece.to);
    }
    for (const Piece& piece : parts.pieces) {
      if (piece.source != NoSource) continue;
      const CubePoint& a = parts.vertices[static_cast<size_t>(piece.from)];
      const CubePoint& b = parts.vertices[static_cast<size_t>(piece.to)];
      Coordinate length = 0;
      for (int i = 0; i < 3; ++i) length = std::max(length, std::abs(a.c[i] - b.c[i]));
      if (length <= Tiny) parts.vertexSets.join(piece.from, piece.to);
    }
  }

  void makeLinks() {
    for (const Piece& piece : parts.pieces) {
      const int from = parts.vertexSets.find(piece.from);
      const int to = parts.vertexSets.find(piece.to);
      const int left = parts.areaSets.find(piece.left);
      const int right = parts.areaSets.find(piece.right);
      if (from == to || left == right) continue;
      links.push_back({from, to, left, right, piece.source, piece.inner, piece.shared, false});
      linkPieces.push_back(static_cast<int>(&piece - parts.pieces.data()));
    }
  }

  // In the scene's order, the sky last; among equals by the place where the cell was found first.
  void numberCells() {
    std::vector<std::pair<std::int32_t, int>> order;
    for (size_t i = 0; i < parts.areas.size(); ++i) {
      const int area = static_cast<int>(i);
      if (parts.areaSets.find(area) != area) continue;
      const std::int32_t region = parts.areas[i].region;
      if (region == BeyondRegion) continue;
      order.emplace_back(region == SkyRegion ? std::numeric_limits<std::int32_t>::max() : region,
                         area);
    }
    std::sort(order.begin(), order.end());
    cellOfArea.assign(parts.areas.size(), NoCell);
    for (const auto& [region, area] : order) {
      cellOfArea[static_cast<size_t>(area)] = static_cast<int>(map.cells.size());
      VisibleMap::Cell cell;
      if (parts.regionOf(area) != SkyRegion)
        cell.label = setup.state->names->regions[static_cast<size_t>(region)];
      map.cells.push_back(cell);
    }
    for (Link& link : links) {
      link.left = cellOfArea[static_cast<size_t>(link.left)];
      link.right = cellOfArea[static_cast<size_t>(link.right)];
    }
  }

  // ---- distances

  // 1 / distance along a direction d is plane.d.
  Vec3 planeOf(std::int32_t polygon) const {
    const ScenePlane& plane = setup.state->planes[static_cast<size_t>(polygon)];
    const double offset = Kernel::dot(plane.normal, plane.point - setup.eye);
    return {plane.normal.x / offset, plane.normal.y / offset, plane.normal.z / offset};
  }

  void reach(int cell, double least, double greatest) {
    VisibleMap::Cell& c = map.cells[static_cast<size_t>(cell)];
    c.minDistance = c.minDistance == 0.0 ? least : std::min(c.minDistance, least);
    c.maxDistance = std::max(c.maxDistance, greatest);
  }

  // The greatest distance of a flat cell is at a corner, the least at a corner, on an edge, or at
  // the foot of the perpendicular, which `measureCells` looks at.
  void measureDistances() {
    directions.resize(parts.vertices.size());
    std::vector<char> known(parts.vertices.size(), 0);
    const auto directionAt = [&](int vertex) {
      const auto i = static_cast<size_t>(vertex);
      if (known[i] == 0) {
        directions[i] = directionOf(parts.vertices[i]);
        known[i] = 1;
      }
      return directions[i];
    };
    for (size_t i = 0; i < links.size(); ++i) {
      const Piece& piece = parts.pieces[static_cast<size_t>(linkPieces[i])];
      const Vec3 a = directionAt(links[i].from);
      const Vec3 b = directionAt(links[i].to);
      for (const auto& [cell, area] :
           {std::pair(links[i].left, piece.left), std::pair(links[i].right, piece.right)}) {
        const std::int32_t polygon = parts.areas[static_cast<size_t>(area)].polygon;
        if (cell == NoCell || polygon < 0) continue;
        const Vec3 plane = planeOf(polygon);
        const double atA = Kernel::dot(plane, a);
        const double atB = Kernel::dot(plane, b);
        if (!(atA > 0.0) || !(atB > 0.0)) continue;
        const double distanceA = 1.0 / atA;
        const double distanceB = 1.0 / atB;
        reach(cell, distanceToSegment(distanceA * a, distanceB * b),
              std::max(distanceA, distanceB));
      }
    }
    for (size_t i = 0; i < parts.areas.size(); ++i) {
      const std::int32_t polygon = parts.areas[i].polygon;
      const int cell = cellOfArea[static_cast<size_t>(parts.areaSets.find(static_cast<int>(i)))];
      if (polygon < 0 || cell == NoCell) continue;
      cellPolygons.resize(map.cells.size(), -1);
      std::int32_t& first = cellPolygons[static_cast<size_t>(cell)];
      if (first < 0) first = polygon;
      if (first != polygon) morePolygons.emplace_back(cell, polygon);
    }
    cellPolygons.resize(map.cells.size(), -1);
    std::sort(morePolygons.begin(), morePolygons.end());
    morePolygons.erase(std::unique(morePolygons.begin(), morePolygons.end()), morePolygons.end());
  }

  // ---- edges

  // Whether the two links at a vertex continue each other there.
  bool continues(int vertex, const Link& a, const Link& b) const {
    if (a.source != b.source || a.source == NoSource) return false;
    const bool sameWay = (a.to == vertex) == (b.from == vertex);
    return sameWay ? a.left == b.left && a.right == b.right
                   : a.left == b.right && a.right == b.left;
  }

  bool passes(int vertex) const {
    if (atVertex.size(vertex) != 2) return false;
    const int* at = atVertex.begin(vertex);
    return at[0] != at[1] &&
           continues(vertex, links[static_cast<size_t>(at[0])], links[static_cast<size_t>(at[1])]);
  }

  void chainLinks() {
    atVertex.fill(parts.vertices.size(), [this](auto add) {
      for (size_t i = 0; i < links.size(); ++i) {
        add(links[i].from, static_cast<int>(i));
        add(links[i].to, static_cast<int>(i));
      }
    });
    vertexNumbers.assign(parts.vertices.size(), -1);
    for (size_t i = 0; i < links.size(); ++i) {
      if (links[i].used) continue;
      if (!passes(links[i].from)) {
        follow(static_cast<int>(i), links[i].from);
      } else if (!passes(links[i].to)) {
        follow(static_cast<int>(i), links[i].to);
      }
    }
    for (size_t i = 0; i < links.size(); ++i)
      if (!links[i].used) follow(static_cast<int>(i), links[i].from);
  }

  // From a vertex along a link to the end of its edge.
  void follow(int first, int start) {
    const Link* link = &links[static_cast<size_t>(first)];
    const bool forwards = link->from == start;
    int begin = start;
    int at = start;
    int number = first;
    const Link head = *link;
    const auto finish = [&](int end) {
      addEdge(forwards ? begin : end, forwards ? end : begin, head);
      begin = end;
    };
    for (;;) {
      links[static_cast<size_t>(number)].used = true;
      link = &links[static_cast<size_t>(number)];
      const int next = link->from == at ? link->to : link->from;
      // Arcs stay well below half a circle.
      if (begin != at &&
          Kernel::dot(directions[static_cast<size_t>(begin)],
                      directions[static_cast<size_t>(next)]) < -0.2 &&
          link->source == FieldSource)
        finish(at);
      at = next;
      if (at == start || !passes(at)) break;
      const int* both = atVertex.begin(at);
      number = both[0] == number ? both[1] : both[0];
      if (links[static_cast<size_t>(number)].used) break;
    }
    finish(at);
  }

  int vertexNumber(int vertex) {
    int& number = vertexNumbers[static_cast<size_t>(vertex)];
    if (number < 0) {
      number = static_cast<int>(map.vertices.size());
      const Vec3 d = directions[static_cast<size_t>(vertex)];
      map.vertices.push_back({d.x, d.y, d.z});
    }
    return number;
  }

  void addEdge(int from, int to, const Link& link) {
    if (from == to) return;
    VisibleMap::Edge edge;
    edge.from = vertexNumber(from);
    edge.to = vertexNumber(to);
    edge.left = link.left;
    edge.right = link.right;
    edge.kind = kindOf(link);
    map.edges.push_back(edge);
  }

  VisibleMap::EdgeKind kindOf(const Link& link) const {
    using Kind = VisibleMap::EdgeKind;
    if (link.left == NoCell || link.right == NoCell) return Kind::Field;
    if (isCrossing(link.source)) return Kind::Crossing;
    const Label& a = map.cells[static_cast<size_t>(link.left)].label;
    const Label& b = map.cells[static_cast<size_t>(link.right)].label;
    if (link.inner || (a.object != 0 && a.object == b.object && a.face == b.face && a.face > 0))
      return Kind::Inner;
    return link.shared ? Kind::Crease : Kind::Silhouette;
  }

  // ---- rings

  // Half 2 e runs along edge e, half 2 e + 1 back.
  int cellOfHalf(int half) const {
    const VisibleMap::Edge& e = map.edges[static_cast<size_t>(half / 2)];
    return half % 2 == 0 ? e.left : e.right;
  }
  int startOfHalf(int half) const {
    const VisibleMap::Edge& e = map.edges[static_cast<size_t>(half / 2)];
    return half % 2 == 0 ? e.from : e.to;
  }
  int endOfHalf(int half) const { return startOfHalf(half ^ 1); }
  Vec3 vertexAt(int number) const {
    const Vector& v = map.vertices[static_cast<size_t>(number)];
    return {v[0], v[1], v[2]};
  }

  void makeRings() {
    const int halves = static_cast<int>(2 * map.edges.size());
    Buckets leaving;
    leaving.fill(map.vertices.size(), [&](auto add) {
      for (int h = 0; h < halves; ++h)
        if (cellOfHalf(h) != NoCell) add(startOfHalf(h), h);
    });
    std::vector<char> taken(static_cast<size_t>(halves), 0);
    Buckets byCell;
    byCell.fill(map.cells.size(), [&](auto add) {
      for (int h = 0; h < halves; ++h)
        if (cellOfHalf(h) != NoCell) add(cellOfHalf(h), h);
    });
    map.ringOffsets.push_back(0);
    for (int c = 0; c < static_cast<int>(map.cells.size()); ++c) {
      VisibleMap::Cell& cell = map.cells[static_cast<size_t>(c)];
      cell.firstRing = map.ringOffsets.size() - 1;
      for (const int* h = byCell.begin(c); h != byCell.end(c); ++h) {
        if (taken[static_cast<size_t>(*h)] != 0) continue;
        int half = *h;
        while (half >= 0 && taken[static_cast<size_t>(half)] == 0) {
          taken[static_cast<size_t>(half)] = 1;
          map.ringVertices.push_back(startOfHalf(half));
          half = nextHalf(half, leaving, taken, *h);
        }
        map.ringOffsets.push_back(map.ringVertices.size());
      }
      cell.ringCount = map.ringOffsets.size() - 1 - cell.firstRing;
    }
  }

  // The half of the same cell that leaves where another ends; where the cell meets itself in the
  // vertex, the first one clockwise from the way back.
  int nextHalf(int half, const Buckets& leaving, const std::vector<char>& taken, int first) const {
    const int vertex = endOfHalf(half);
    const int cell = cellOfHalf(half);
    int found = -1;
    int count = 0;
    for (const int* h = leaving.begin(vertex); h != leaving.end(vertex); ++h) {
      if (cellOfHalf(*h) != cell || (taken[static_cast<size_t>(*h)] != 0 && *h != first)) continue;
      found = *h;
      ++count;
    }
    if (count <= 1) return found;
    const Vec3 v = vertexAt(vertex);
    const Vec3 helper = std::fabs(v.x) < 0.6 ? Vec3{1.0, 0.0, 0.0} : Vec3{0.0, 1.0, 0.0};
    const Vec3 right = unit(Kernel::cross(helper, v));
    const Vec3 up = Kernel::cross(right, v);  // right x up = -v: as the eye sees it
    const auto angle = [&](int other) {
      const Vec3 w = vertexAt(other);
      return std::atan2(Kernel::dot(w, up), Kernel::dot(w, right));
    };
    const double back = angle(startOfHalf(half));
    double least = 1e9;
    for (const int* h = leaving.begin(vertex); h != leaving.end(vertex); ++h) {
      if (cellOfHalf(*h) != cell || (taken[static_cast<size_t>(*h)] != 0 && *h != first)) continue;
      double turn = back - angle(endOfHalf(*h));
      if (turn <= 0.0) turn += 2.0 * Pi;
      if (turn < least) {
        least = turn;
        found = *h;
      }
    }
    return found;
  }

  // ---- measures

  template <class Visit>
  void forArcs(size_t ring, Visit visit) const {
    const size_t from = map.ringOffsets[ring];
    const size_t to = map.ringOffsets[ring + 1];
    for (size_t i = from; i < to; ++i)
      visit(vertexAt(map.ringVertices[i]), vertexAt(map.ringVertices[i + 1 == to ? from : i + 1]));
  }

  template <class Visit>
  void forArcs(const VisibleMap::Cell& cell, Visit visit) const {
    for (size_t r = 0; r < cell.ringCount; ++r) forArcs(cell.firstRing + r, visit);
  }

  // Fans of triangles from one direction give the solid angle up to whole spheres; the direction
  // opposite to it must be far from all arcs.
  Vec3 farFromArcs(const VisibleMap::Cell& cell) const {
    Vec3 best{};
    double bestCosine = 2.0;
    for (int i = 0; i < 27; ++i) {
      if (i == 13) continue;
      const int x = i % 3 - 1;
      const int y = i / 3 % 3 - 1;
      const int z = i / 9 - 1;
      const Vec3 candidate = {x + 0.013, y + 0.027, z - 0.011};
      const Vec3 opposite = -unit(candidate);
      double nearest = -1.0;
      forArcs(cell,
              [&](Vec3 a, Vec3 b) { nearest = std::max(nearest, cosineToArc(opposite, a, b)); });
      if (nearest < bestCosine) {
        bestCosine = nearest;
        best = -opposite;
      }
    }
    return best;
  }

  static double cosineToArc(Vec3 d, Vec3 a, Vec3 b) {
    const double ends = std::max(Kernel::dot(d, a), Kernel::dot(d, b));
    const Vec3 normal = Kernel::cross(a, b);
    const double length = Kernel::length3(normal);
    if (length == 0.0) return ends;
    const Vec3 n = {normal.x / length, normal.y / length, normal.z / length};
    if (Kernel::dot(Kernel::cross(n, a), d) <= 0.0 || Kernel::dot(Kernel::cross(b, n), d) <= 0.0)
      return ends;
    const double sine = Kernel::dot(n, d);
    return std::sqrt(std::max(0.0, 1.0 - sine * sine));
  }

  double solidAngleOf(const VisibleMap::Cell& cell) const {
    Vec3 middle{};
    forArcs(cell, [&](Vec3 a, Vec3) { middle = middle + a; });
    double least = 1.0;
    if (Kernel::length3(middle) > 0.0) {
      middle = unit(middle);
      forArcs(cell, [&](Vec3 a, Vec3) { least = std::min(least, Kernel::dot(a, middle)); });
    } else {
      least = -1.0;
    }
    double sum = 0.0;
    const auto fan = [&](Vec3 from) {
      forArcs(cell, [&](Vec3 a, Vec3 b) { sum += triangleSolidAngle(from, a, b); });
    };
    // All within less than a hemisphere, and the cell is its inside: not the sky around it all.
    if (least > 0.1) {
      fan(middle);
      if (sum > -1e-3) return std::max(0.0, sum);
      return sum + 4.0 * Pi;
    }
    fan(farFromArcs(cell));
    sum = std::fmod(sum, 4.0 * Pi);
    if (sum < 0.0) sum += 4.0 * Pi;
    return sum > 4.0 * Pi - 1e-9 && cell.label.object != 0 ? 0.0 : sum;
  }

  // The solid angle on the left of one ring.
  double insideOfRing(size_t ring) const {
    VisibleMap::Cell alone;
    alone.firstRing = ring;
    alone.ringCount = 1;
    return solidAngleOf(alone);
  }

  void outerRingFirst(VisibleMap::Cell& cell) {
    if (cell.ringCount < 2) return;
    size_t outer = 0;
    double least = 1e9;
    for (size_t r = 0; r < cell.ringCount; ++r) {
      const double inside = insideOfRing(cell.firstRing + r);
      if (inside < least) {
        least = inside;
        outer = r;
      }
    }
    if (outer == 0) return;
    const auto begin = map.ringVertices.begin();
    const size_t first = cell.firstRing;
    const auto at = [&](size_t ring) {
      return begin + static_cast<std::ptrdiff_t>(map.ringOffsets[ring]);
    };
    const size_t length = map.ringOffsets[first + outer + 1] - map.ringOffsets[first + outer];
    std::rotate(at(first), at(first + outer), at(first + outer + 1));
    for (size_t r = first + outer; r > first; --r)
      map.ringOffsets[r] = map.ringOffsets[r - 1] + length;
  }

  bool contains(const VisibleMap::Cell& cell, Vec3 d) const {
    // The half circle from d over the axis u to -d, which lies behind the cell's plane.
    const double x = std::fabs(d.x);
    const double y = std::fabs(d.y);
    const double z = std::fabs(d.z);
    const Vec3 m = x <= y && x <= z ? Vec3{0.0, d.z, -d.y}
                   : y <= z         ? Vec3{-d.z, 0.0, d.x}
                                    : Vec3{d.y, -d.x, 0.0};
    bool inside = false;
    forArcs(cell, [&](Vec3 a, Vec3 b) {
      const bool above = Kernel::dot(m, a) >= 0.0;
      if (above == (Kernel::dot(m, b) >= 0.0)) return;
      if ((Kernel::dot(Kernel::cross(a, b), d) < 0.0) == above) inside = !inside;
    });
    return inside;
  }

  void lookAtFoot(VisibleMap::Cell& cell, std::int32_t polygon) const {
    const Vec3 plane = planeOf(polygon);
    const double inverse = Kernel::length3(plane);
    const double distance = 1.0 / inverse;
    if (!(distance < cell.minDistance) || !contains(cell, unit(plane))) return;
    cell.minDistance = distance;
  }

  void measureCells() {
    const Vec3 forward = {map.forward[0], map.forward[1], map.forward[2]};
    forEachInParallel(map.cells.size(), options.threads, [&](size_t i) {
      VisibleMap::Cell& cell = map.cells[i];
      outerRingFirst(cell);
      cell.solidAngle = cell.ringCount == 0 ? 4.0 * Pi : solidAngleOf(cell);
      if (map.field == Field::Hemisphere) {
        double sum = 0.0;
        forArcs(cell, [&](Vec3 a, Vec3 b) { sum += arcViewFactor(a, b, forward); });
        cell.viewFactor = std::max(0.0, sum);
      }
      if (cellPolygons[i] >= 0) lookAtFoot(cell, cellPolygons[i]);
    });
    for (const auto& [cell, polygon] : morePolygons)
      lookAtFoot(map.cells[static_cast<size_t>(cell)], polygon);
  }

  MapParts& parts;
  const LookSetup& setup;
  BuildOptions options;
  VisibleMap& map;
  std::vector<Link> links;
  std::vector<int> linkPieces;
  std::vector<int> cellOfArea;
  std::vector<Vec3> directions;  // of vertices
  Buckets atVertex;
  std::vector<int> vertexNumbers;
  std::vector<std::int32_t> cellPolygons;
  std::vector<std::pair<int, std::int32_t>> morePolygons;
};

}  // namespace

void buildMap(MapParts& parts, const LookSetup& setup, const BuildOptions& options,
              VisibleMap& map) {
  Builder(parts, setup, options, map).run();
}

}  // namespace Lumivane::Visibility
