#include "visibility/MapBuilder.h"

#include "kernel/Planar.h"
#include "kernel/Trigonometry.h"
#include "visibility/EyePlane.h"
#include "visibility/InParallel.h"
#include "visibility/SphereMeasure.h"
#include "visibility/WideEdge.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <tuple>
#include <utility>

// From pieces to the map. Pieces that follow each other on one edge of the scene, with the same
// cells on both sides, become one edge, so that neither the tiles nor what is hidden leaves a
// trace. Each edge has two halves, one for each side; a ring is what halves of one cell make, each
// followed by the next one of that cell around their common vertex.
namespace Lumivane::Visibility {
namespace {

using Kernel::Vec3;

using Kernel::Pi;
constexpr Coordinate Tiny = 4 * Snap;  // pieces without an edge of the scene that are rounding's
constexpr int NoCell = -1;
// Mean width, in rad, of cells that are left out.
constexpr double SliverWidth = 5e-13;
// Distance within which a corner or a meeting of lines is the vertex that the sweep has found.
constexpr double PlaceTolerance = 3e-13;
// Distance within which vertices are joined where rings are open.
constexpr double CloseTo = 1e-11;
// Solid angle, in steradian, below which the sky may be all of a sphere or nothing of it.
constexpr double NearlyNothing = 1e-6;
// Distance at which two vertices of the map are one.
constexpr double SamePlace = 1e-13;
// The same along a line so steep that the sweep knows heights on it badly.
constexpr double SteepSnap = 4e-9;

// A piece after joining, or an edge of the map that pieces have made.
struct Link {
  int from;
  int to;
  int left;
  int right;
  Source source;
  bool inner;
  bool shared;
  bool used;
};

// A cell as its areas have made it.
struct Found {
  std::int32_t region;
  std::int32_t polygon;  // one of those of its region that are seen in it
  bool several;          // more than one is
  int mergedInto;        // itself, or the cell that it has become a part of
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
    for (const auto step :
         {&Builder::joinVertices, &Builder::makeLinks, &Builder::numberCells, &Builder::closeRings,
          &Builder::dropSliverLinks, &Builder::chainLinks, &Builder::placeVertices,
          &Builder::contractEdges, &Builder::dropSliverEdges, &Builder::orderMap,
          &Builder::makeRings, &Builder::measureDistances, &Builder::measureCells,
          &Builder::settleWholeSpheres}) {
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
    }
  }

  // By region, the sky last; `orderMap` gives the final numbers.
  void numberCells() {
    cellOfArea.assign(parts.areas.size(), NoCell);
    for (size_t i = 0; i < parts.areas.size(); ++i) {
      const int root = parts.areaSets.find(static_cast<int>(i));
      const Area& area = parts.areas[i];
      if (area.region == BeyondRegion) continue;
      int& cell = cellOfArea[static_cast<size_t>(root)];
      if (cell == NoCell) {
        cell = static_cast<int>(found.size());
        found.push_back({area.region, area.polygon, false, cell});
      }
      Found& f = found[static_cast<size_t>(cell)];
      if (area.polygon != f.polygon) f.several = true;
    }
    for (Link& link : links) {
      link.left = cellOfArea[static_cast<size_t>(link.left)];
      link.right = cellOfArea[static_cast<size_t>(link.right)];
    }
    directions.resize(parts.vertices.size());
    for (const Link& link : links)
      for (const int vertex : {link.from, link.to}) {
        Vec3& d = directions[static_cast<size_t>(vertex)];
        if (d == Vec3{}) d = directionOf(parts.vertices[static_cast<size_t>(vertex)]);
      }
  }

  // Around a vertex every cell begins as often as it ends. Where many lines meet within the
  // distance that counts as one point, tiles and stops may have settled on different ones: such
  // points are joined.
  void closeRings() {
    std::vector<std::uint64_t> balance(parts.vertices.size(), 0);
    // Spread, so that different cells do not cancel each other.
    const auto weight = [](int cell) {
      std::uint64_t h = (static_cast<std::uint64_t>(cell) + 2) * 0x9E3779B97F4A7C15ull;
      h = (h ^ h >> 29) * 0xBF58476D1CE4E5B9ull;
      return h ^ h >> 32;
    };
    for (const Link& link : links) {
      const std::uint64_t turn = weight(link.left) - weight(link.right);
      balance[static_cast<size_t>(link.from)] += turn;
      balance[static_cast<size_t>(link.to)] -= turn;
    }
    std::vector<int> open;
    for (size_t i = 0; i < balance.size(); ++i)
      if (balance[i] != 0) open.push_back(static_cast<int>(i));
    if (open.empty()) return;
    std::sort(open.begin(), open.end(), [this](int a, int b) {
      return directions[static_cast<size_t>(a)].x < directions[static_cast<size_t>(b)].x;
    });
    // First what fits together, then what is left over and close.
    for (const bool fitting : {true, false})
      for (size_t i = 0; i < open.size(); ++i)
        for (size_t k = i + 1; k < open.size(); ++k) {
          const auto a = static_cast<size_t>(open[i]);
          const auto b = static_cast<size_t>(open[k]);
          if (directions[b].x - directions[a].x > SteepSnap) break;
          const double apart = Kernel::distance(directions[a], directions[b]);
          if (fitting ? apart > SteepSnap || balance[a] == 0 || balance[a] + balance[b] != 0
                      : apart > CloseTo || balance[a] == 0 || balance[b] == 0)
            continue;
          parts.vertexSets.join(open[i], open[k]);
          if (fitting) balance[a] = balance[b] = 0;
        }
    size_t kept = 0;
    for (Link link : links) {
      link.from = parts.vertexSets.find(link.from);
      link.to = parts.vertexSets.find(link.to);
      if (link.from != link.to) links[kept++] = link;
    }
    links.resize(kept);
  }

  // ---- slivers

  // Cells narrower than what rounding does to two lines that should coincide become part of the
  // neighbour with which they share most of their border.
  void dropSliverLinks() { dropSlivers(links); }
  // Once more with the vertices in their final places.
  void dropSliverEdges() { dropSlivers(edges); }

  // A cell that has taken a sliver up waits for the next round.
  void dropSlivers(std::vector<Link>& borders) {
    constexpr int MostRounds = 16;
    for (int round = 0; round < MostRounds; ++round)
      if (!dropSliversOnce(borders)) return;
  }

  // \return whether a sliver may be left
  bool dropSliversOnce(std::vector<Link>& borders) {
    struct Extent {
      Vec3 from;
      double area;
      double length;
      int neighbour;
      double shared;
    };
    std::vector<Extent> extents(found.size(), Extent{{}, 0.0, 0.0, NoCell, 0.0});
    const auto forSides = [&](auto visit) {
      for (const Link& link : borders) {
        const Vec3 a = directions[static_cast<size_t>(link.from)];
        const Vec3 b = directions[static_cast<size_t>(link.to)];
        if (link.left != NoCell) visit(extents[static_cast<size_t>(link.left)], a, b, link.right);
        if (link.right != NoCell) visit(extents[static_cast<size_t>(link.right)], b, a, link.left);
      }
    };
    forSides([](Extent& e, Vec3 a, Vec3 b, int neighbour) {
      const double length = Kernel::distance(a, b);
      if (e.length == 0.0) e.from = a;
      e.length += length;
      if (length > e.shared) {
        e.shared = length;
        e.neighbour = neighbour;
      }
    });
    // Small cells are measured from one of their corners, so that rounding stays as small; large
    // ones from a direction that is opposite to none of their arcs.
    for (Extent& e : extents)
      if (e.length > 1.0) e.from = unit({0.36, -0.48, 0.81});
    forSides([](Extent& e, Vec3 a, Vec3 b, int) { e.area += triangleSolidAngle(e.from, a, b); });
    std::vector<int> order(found.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [this](int a, int b) {
      return orderOf(found[static_cast<size_t>(a)].region) <
             orderOf(found[static_cast<size_t>(b)].region);
    });
    bool any = false;
    bool isLeft = false;
    std::vector<char> grown(found.size(), 0);
    for (const int cell : order) {
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
    for (Link link : borders) {
      const int left = settled(link.left);
      const int right = settled(link.right);
      link.shared = link.shared && left == link.left && right == link.right;
      link.left = left;
      link.right = right;
      if (link.left != link.right) borders[kept++] = link;
    }
    borders.resize(kept);
    return isLeft;
  }

  // What a sliver of another region has parted is one cell without it.
  void joinAlike(const std::vector<Link>& borders) {
    for (const Link& link : borders) {
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

  int settled(int cell) const {
    // A chain of slivers ends: each was merged before what it merged into grew.
    for (size_t step = 0; step < found.size() && cell != NoCell; ++step) {
      const int next = found[static_cast<size_t>(cell)].mergedInto;
      if (next == cell) break;
      cell = next;
    }
    return cell;
  }

  static std::int32_t orderOf(std::int32_t region) {
    return region == SkyRegion ? std::numeric_limits<std::int32_t>::max() : region;
  }

  // ---- edges

  // Whether the two links at a vertex continue each other there.
  bool continues(int vertex, const Link& a, const Link& b) const {
    if (a.source != b.source || a.source == NoSource) return false;
    const bool sameWay = (a.to == vertex) == (b.from == vertex);
    return sameWay ? a.left == b.left && a.right == b.right
                   : a.left == b.right && a.right == b.left;
  }

  // Whether a direction is where a wide edge, of which arcs must be less than half a circle, is
  // divided.
  bool isMiddleOfWide(Source source, Vec3 direction) const {
    Vec3 middle;
    return middleOfWide(source, middle) && Kernel::distance(middle, direction) < PlaceTolerance;
  }

  bool middleOfWide(Source source, Vec3& middle) const {
    if (source < 0 || isCrossing(source)) return false;
    const auto edge = 2 * static_cast<size_t>(source);
    const Vec3 a = fromEye(setup.state->edgeVertices[edge]);
    const Vec3 b = fromEye(setup.state->edgeVertices[edge + 1]);
    if (!isWide(a, b)) return false;
    middle = unit(nearestOfWide(a, b));
    return true;
  }

  bool passes(int vertex) const {
    if (atVertex.size(vertex) != 2) return false;
    const int* at = atVertex.begin(vertex);
    const Link& first = links[static_cast<size_t>(at[0])];
    return at[0] != at[1] && continues(vertex, first, links[static_cast<size_t>(at[1])]) &&
           !isMiddleOfWide(first.source, directions[static_cast<size_t>(vertex)]);
  }

  void chainLinks() {
    atVertex.fill(parts.vertices.size(), [this](auto add) {
      for (size_t i = 0; i < links.size(); ++i) {
        add(links[i].from, static_cast<int>(i));
        add(links[i].to, static_cast<int>(i));
      }
    });
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
    if (head.source == FieldSource && (at == start || std::fabs(turned) > 1.5)) {
      addFieldArc(start, at, turned, forwards, head);
    } else if (at != start) {
      addEdge(forwards ? start : at, forwards ? at : start, head);
    }
  }

  void addEdge(int from, int to, Link link) {
    link.from = from;
    link.to = to;
    edges.push_back(link);
  }

  // The end of the field is a great circle, of which arcs must be less than half: long ones are
  // divided at the directions right, up, left and down.
  void addFieldArc(int start, int end, double turned, bool forwards, const Link& link) {
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

  // A docking edge that joins what is seen on its two sides: both have the edge, or lie in one
  // layer, as where pieces of a surface are divided otherwise. With another part of the object
  // behind it, it is the end of what is in front.
  bool isDocked(const Link& link) const {
    const auto layerOf = [this](int cell) {
      const std::int32_t polygon = cellPolygons[static_cast<size_t>(cell)];
      return setup.state->layers[static_cast<size_t>(polygon)];
    };
    return link.inner && (link.shared || layerOf(link.left) == layerOf(link.right));
  }

  VisibleMap::EdgeKind kindOf(const Link& link) const {
    using Kind = VisibleMap::EdgeKind;
    if (link.left == NoCell || link.right == NoCell) return Kind::Field;
    const Label& a = map.cells[static_cast<size_t>(link.left)].label;
    const Label& b = map.cells[static_cast<size_t>(link.right)].label;
    if (a.object == 0 || b.object == 0) return Kind::Silhouette;
    if (isCrossing(link.source)) return Kind::Crossing;
    const bool oneFace = a.face == b.face && a.face > 0;
    if (a.object == b.object && (oneFace || isDocked(link))) return Kind::Inner;
    return link.shared ? Kind::Crease : Kind::Silhouette;
  }

  // ---- places and order: they come from the scene, not from tiles or what is hidden

  // A vertex is a corner of the scene, or the meeting of two of the lines that end in it; its
  // coordinates follow from these. Where lines meet at too small an angle it stays where the sweep
  // has found it.
  void placeVertices() {
    std::vector<std::pair<int, Source>> lines;
    for (const Link& edge : edges)
      for (const int vertex : {edge.from, edge.to})
        if (static_cast<size_t>(vertex) < parts.vertices.size() && edge.source != NoSource)
          lines.emplace_back(vertex, edge.source);
    std::sort(lines.begin(), lines.end());
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
    for (size_t i = 0; i < lines.size();) {
      size_t end = i + 1;
      while (end < lines.size() && lines[end].first == lines[i].first) ++end;
      placeVertex(lines[i].first, lines.data() + i, end - i);
      i = end;
    }
  }

  void placeVertex(int vertex, const std::pair<int, Source>* lines, size_t count) {
    Vec3& place = directions[static_cast<size_t>(vertex)];
    const auto isClose = [&](Vec3 d) { return Kernel::distance(d, place) < PlaceTolerance; };
    std::int32_t corner = -1;
    for (size_t i = 0; i < count; ++i) {
      const Source source = lines[i].second;
      if (source < 0 || isCrossing(source)) continue;
      for (const size_t k : {size_t{0}, size_t{1}}) {
        const std::int32_t candidate =
            setup.state->edgeVertices[2 * static_cast<size_t>(source) + k];
        if ((corner < 0 || candidate < corner) && isClose(unit(fromEye(candidate))))
          corner = candidate;
      }
    }
    if (corner >= 0) {
      place = unit(fromEye(corner));
      return;
    }
    for (size_t i = 0; i < count; ++i) {
      Vec3 middle;
      if (!middleOfWide(lines[i].second, middle) || !isClose(middle)) continue;
      place = middle;
      return;
    }
    double best = 1e-6;
    Vec3 meeting{};
    for (size_t i = 0; i < count; ++i)
      for (size_t k = i + 1; k < count; ++k) {
        const Vec3 d = Kernel::cross(normalOf(lines[i].second), normalOf(lines[k].second));
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

  Vec3 fromEye(std::int32_t vertex) const {
    return inRange(setup.directionTo(setup.state->vertices[static_cast<size_t>(vertex)]));
  }
  Vec3 offsetFromEye(std::int32_t vertex) const {
    return setup.state->vertices[static_cast<size_t>(vertex)] - setup.eye;
  }

  // The normal of the plane through the eye and a line, up to its sign.
  Vec3 normalOf(Source source) const {
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
    const auto edge = 2 * static_cast<size_t>(source);
    const Vec3 a = unit(fromEye(setup.state->edgeVertices[edge]));
    Vec3 b;
    if (!middleOfWide(source, b)) b = unit(fromEye(setup.state->edgeVertices[edge + 1]));
    return unit(Kernel::cross(a, b));
  }

  // Vertices that have come to lie in one place are one.
  void contractEdges() {
    JoinedSets sets;
    bool any = false;
    for (const Link& edge : edges) {
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
    for (size_t i = 0; i < directions.size(); ++i) {
      Vec3& place = directions[static_cast<size_t>(sets.find(static_cast<int>(i)))];
      if (coordinates(directions[i]) < coordinates(place)) place = directions[i];
    }
    size_t kept = 0;
    for (Link edge : edges) {
      edge.from = sets.find(edge.from);
      edge.to = sets.find(edge.to);
      if (edge.from != edge.to) edges[kept++] = edge;
    }
    edges.resize(kept);
  }

  // Vertices by their coordinates, cells by region and first vertex, edges by their vertices.
  void orderMap() {
    std::vector<int> used;
    vertexNumbers.assign(directions.size(), -1);
    for (const Link& edge : edges)
      for (const int vertex : {edge.from, edge.to}) {
        int& number = vertexNumbers[static_cast<size_t>(vertex)];
        if (number < 0) used.push_back(vertex);
        number = 0;
      }
    const auto place = [this](int vertex) {
      const Vec3 d = directions[static_cast<size_t>(vertex)];
      return std::make_tuple(d.x, d.y, d.z, vertex);
    };
    std::sort(used.begin(), used.end(), [&](int a, int b) { return place(a) < place(b); });
    for (size_t i = 0; i < used.size(); ++i) {
      vertexNumbers[static_cast<size_t>(used[i])] = static_cast<int>(i);
      const Vec3 d = directions[static_cast<size_t>(used[i])];
      map.vertices.push_back({d.x, d.y, d.z});
    }
    std::vector<int> firstVertex(found.size(), std::numeric_limits<int>::max());
    for (Link& edge : edges) {
      edge.from = vertexNumbers[static_cast<size_t>(edge.from)];
      edge.to = vertexNumbers[static_cast<size_t>(edge.to)];
      if (edge.to < edge.from) {
        std::swap(edge.from, edge.to);
        std::swap(edge.left, edge.right);
      }
      for (const int cell : {edge.left, edge.right})
        if (cell != NoCell) {
          int& first = firstVertex[static_cast<size_t>(cell)];
          first = std::min(first, edge.from);
        }
    }
    orderCells(firstVertex);
    const auto key = [](const Link& e) { return std::make_tuple(e.from, e.to, e.left, e.right); };
    std::sort(edges.begin(), edges.end(),
              [&](const Link& a, const Link& b) { return key(a) < key(b); });
    for (const Link& edge : edges)
      map.edges.push_back({edge.from, edge.to, edge.left, edge.right, kindOf(edge)});
    if (!options.edgeSources) return;
    for (const Link& edge : edges)
      map.edgeSources.push_back(
          edge.source < 0 || isCrossing(edge.source) ? -1 : static_cast<int>(edge.source));
  }

  void orderCells(const std::vector<int>& firstVertex) {
    // A cell without edges is the whole sphere, or was nothing.
    const bool whole = edges.empty() && map.field == Field::Sphere;
    std::vector<std::tuple<std::int32_t, int, int>> order;
    for (size_t i = 0; i < found.size(); ++i)
      if (firstVertex[i] != std::numeric_limits<int>::max() || (whole && order.empty()))
        order.emplace_back(orderOf(found[i].region), firstVertex[i], static_cast<int>(i));
    std::sort(order.begin(), order.end());
    cellNumbers.assign(found.size(), NoCell);
    for (const auto& [region, first, number] : order) {
      cellNumbers[static_cast<size_t>(number)] = static_cast<int>(map.cells.size());
      const Found& f = found[static_cast<size_t>(number)];
      VisibleMap::Cell cell;
      if (f.region != SkyRegion)
        cell.label = setup.state->names->regions[static_cast<size_t>(region)];
      map.cells.push_back(cell);
      cellPolygons.push_back(f.polygon);
      severalPolygons.push_back(f.several ? 1 : 0);
    }
    for (Link& edge : edges)
      for (int* cell : {&edge.left, &edge.right})
        if (*cell != NoCell) *cell = cellNumbers[static_cast<size_t>(*cell)];
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
        const size_t start = map.ringVertices.size();
        while (half >= 0 && taken[static_cast<size_t>(half)] == 0) {
          taken[static_cast<size_t>(half)] = 1;
          map.ringVertices.push_back(startOfHalf(half));
          half = nextHalf(half, leaving, taken, *h);
        }
        const auto begin = map.ringVertices.begin() + static_cast<std::ptrdiff_t>(start);
        std::rotate(begin, std::min_element(begin, map.ringVertices.end()), map.ringVertices.end());
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
    int best = -1;
    int count = 0;
    for (const int* h = leaving.begin(vertex); h != leaving.end(vertex); ++h) {
      if (cellOfHalf(*h) != cell || (taken[static_cast<size_t>(*h)] != 0 && *h != first)) continue;
      best = *h;
      ++count;
    }
    if (count <= 1) return best;
    const Vec3 v = vertexAt(vertex);
    const Vec3 helper = std::fabs(v.x) < 0.6 ? Vec3{1.0, 0.0, 0.0} : Vec3{0.0, 1.0, 0.0};
    const Vec3 right = unit(Kernel::cross(helper, v));
    const Vec3 up = Kernel::cross(right, v);  // right x up = -v: as the eye sees it
    const auto angle = [&](int other) {
      const Vec3 w = vertexAt(other);
      return Kernel::arcTangent(Kernel::dot(w, up), Kernel::dot(w, right));
    };
    const double back = angle(startOfHalf(half));
    double least = 1e9;
    for (const int* h = leaving.begin(vertex); h != leaving.end(vertex); ++h) {
      if (cellOfHalf(*h) != cell || (taken[static_cast<size_t>(*h)] != 0 && *h != first)) continue;
      double turn = back - angle(endOfHalf(*h));
      if (turn <= 0.0) turn += 2.0 * Pi;
      if (turn < least) {
        least = turn;
        best = *h;
      }
    }
    return best;
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

  // The solid angle on the left of some rings, up to whole spheres: from -2 pi to 2 pi.
  double turnOf(const VisibleMap::Cell& cell) const {
    Vec3 middle{};
    forArcs(cell, [&](Vec3 a, Vec3) { middle = middle + a; });
    double least = -1.0;
    if (Kernel::length3(middle) > 0.0) {
      middle = unit(middle);
      least = 1.0;
      forArcs(cell, [&](Vec3 a, Vec3) { least = std::min(least, Kernel::dot(a, middle)); });
    }
    // Within less than a hemisphere no triangle comes near the direction opposite to the first.
    const Vec3 from = least > 0.1 ? middle : farFromArcs(cell);
    double sum = 0.0;
    forArcs(cell, [&](Vec3 a, Vec3 b) { sum += triangleSolidAngle(from, a, b); });
    return std::remainder(sum, 4.0 * Pi);
  }

  // A flat region, and all that is within a hemisphere, takes at most half of the sphere; so what
  // is below nothing is rounding's. The sky of a sphere, and a region that is bent around the eye,
  // may take more; when it is nearly all, `settleWholeSpheres` says so.
  bool mayBeLarge(size_t cell) const {
    return map.field == Field::Sphere &&
           (map.cells[cell].label.object == 0 || severalPolygons[cell] != 0);
  }
  double solidAngleOf(size_t cell, double turn) const {
    const bool large = mayBeLarge(cell);
    if (turn < (large ? -NearlyNothing : -Pi)) return turn + 4.0 * Pi;
    return std::max(0.0, turn);
  }

  // The solid angle on the left of one ring.
  double insideOfRing(size_t ring) const {
    VisibleMap::Cell alone;
    alone.firstRing = ring;
    alone.ringCount = 1;
    const double turn = turnOf(alone);
    return turn < 0.0 ? turn + 4.0 * Pi : turn;
  }

  // If nearly a whole sphere is missing from the sum, it is that of the cell around all.
  void settleWholeSpheres() {
    double sum = 0.0;
    int around = NoCell;
    for (size_t i = 0; i < map.cells.size(); ++i) {
      sum += map.cells[i].solidAngle;
      if (mayBeLarge(i) && turns[i] <= 0.0 &&
          (around == NoCell || turns[i] < turns[static_cast<size_t>(around)]))
        around = static_cast<int>(i);
    }
    if (map.field != Field::Sphere || around == NoCell || sum > 3.0 * Pi) return;
    map.cells[static_cast<size_t>(around)].solidAngle =
        turns[static_cast<size_t>(around)] + 4.0 * Pi;
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

  // ---- distances

  // 1 / distance along a direction d is plane.d.
  Vec3 planeOf(std::int32_t polygon) const {
    const ScenePlane& plane = setup.state->planes[static_cast<size_t>(polygon)];
    return nearnessOf(plane, offsetFrom(plane, setup.eye));
  }

  // The greatest distance of a flat cell is at a corner, the least at a corner, on an edge, or at
  // the foot of the perpendicular, which `measureCells` looks at. Where a cell has several planes,
  // its pieces of border know theirs.
  void measureDistances() {
    if (setup.parallel != nullptr) return;  // there is no eye to be distant from
    for (const VisibleMap::Edge& edge : map.edges)
      for (const int cell : {edge.left, edge.right}) {
        if (cell == NoCell || severalPolygons[static_cast<size_t>(cell)] != 0) continue;
        reach(cell, cellPolygons[static_cast<size_t>(cell)], vertexAt(edge.from),
              vertexAt(edge.to));
      }
    for (const Piece& piece : parts.pieces)
      for (const int area : {piece.left, piece.right}) {
        const int cell = severalAt(area);
        if (cell == NoCell) continue;
        const auto at = [&](int vertex) {
          return directionOf(parts.vertices[static_cast<size_t>(vertex)]);
        };
        reach(cell, parts.areas[static_cast<size_t>(area)].polygon, at(piece.from), at(piece.to));
      }
    for (size_t i = 0; i < parts.areas.size(); ++i) {
      const int cell = severalAt(static_cast<int>(i));
      if (cell != NoCell) morePolygons.emplace_back(cell, parts.areas[i].polygon);
    }
    std::sort(morePolygons.begin(), morePolygons.end());
    morePolygons.erase(std::unique(morePolygons.begin(), morePolygons.end()), morePolygons.end());
  }

  // The cell of an area, if the cell has several planes and the area is of its region.
  int severalAt(int area) {
    const int first = cellOfArea[static_cast<size_t>(parts.areaSets.find(area))];
    if (first == NoCell || !found[static_cast<size_t>(first)].several) return NoCell;
    return cellNumbers[static_cast<size_t>(first)];
  }

  void reach(int cell, std::int32_t polygon, Vec3 a, Vec3 b) {
    if (polygon < 0) return;
    const Vec3 plane = planeOf(polygon);
    const double atA = Kernel::dot(plane, a);
    const double atB = Kernel::dot(plane, b);
    if (!(atA > 0.0) || !(atB > 0.0)) return;
    const double distanceA = 1.0 / atA;
    const double distanceB = 1.0 / atB;
    VisibleMap::Cell& c = map.cells[static_cast<size_t>(cell)];
    const double least = distanceToSegment(distanceA * a, distanceB * b);
    c.minDistance = c.minDistance == 0.0 ? least : std::min(c.minDistance, least);
    c.maxDistance = std::max({c.maxDistance, distanceA, distanceB});
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

  // The same for a cell of any size: the first arc on the great circle from d by u has d on its
  // left or on its right.
  bool containsAround(const VisibleMap::Cell& cell, Vec3 d) const {
    for (const Vec3 axis : {Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0}, Vec3{0.0, 0.0, 1.0}}) {
      const Vec3 m = Kernel::cross(d, axis);
      const Vec3 u = Kernel::cross(m, d);
      double first = 4.0;
      bool inside = false;
      forArcs(cell, [&](Vec3 a, Vec3 b) {
        const double atA = Kernel::dot(m, a);
        const double atB = Kernel::dot(m, b);
        if ((atA >= 0.0) == (atB >= 0.0)) return;
        const Vec3 met = std::fabs(atB) * a + std::fabs(atA) * b;
        const double turn = quarterTurns(Kernel::dot(met, d), Kernel::dot(met, u));
        if (turn >= first) return;
        first = turn;
        inside = atA >= 0.0;
      });
      if (first < 4.0) return inside;
    }
    return cell.solidAngle > 2.0 * Pi;
  }

  // Rises with the angle of a direction from the x axis, from 0 to 4.
  static double quarterTurns(double x, double y) {
    const double part = x / (std::fabs(x) + std::fabs(y));
    return y >= 0.0 ? 1.0 - part : 3.0 + part;
  }

  bool isIn(const VisibleMap::Cell& cell, Vec3 d) const {
    const auto number = static_cast<size_t>(&cell - map.cells.data());
    return severalPolygons[number] != 0 ? containsAround(cell, d) : contains(cell, d);
  }

  void lookAtFoot(VisibleMap::Cell& cell, std::int32_t polygon) const {
    const Vec3 plane = planeOf(polygon);
    const double distance = 1.0 / lengthInRange(plane);
    if (!(distance < cell.minDistance) || !isIn(cell, unit(inRange(plane)))) return;
    cell.minDistance = distance;
  }

  // The nearest points of the edges between the pieces of a region that is not flat.
  void lookAtEdges(VisibleMap::Cell& cell, std::int32_t polygon) const {
    const IndexState& state = *setup.state;
    const auto begin = state.cornerOffsets[static_cast<size_t>(polygon)];
    const auto end = state.cornerOffsets[static_cast<size_t>(polygon) + 1];
    for (auto i = begin; i < end; ++i) {
      const auto next = i + 1 == end ? begin : i + 1;
      const Vec3 nearest =
          nearestOfSegment(offsetFromEye(state.cornerVertices[static_cast<size_t>(i)]),
                           offsetFromEye(state.cornerVertices[static_cast<size_t>(next)]));
      const double distance = lengthInRange(nearest);
      if (distance < cell.minDistance && distance > 0.0 && isIn(cell, unit(inRange(nearest))))
        cell.minDistance = distance;
    }
  }

  void measureCells() {
    const Vec3 forward = {map.forward[0], map.forward[1], map.forward[2]};
    turns.assign(map.cells.size(), 0.0);
    forEachInParallel(map.cells.size(), options.threads, [&](size_t i) {
      VisibleMap::Cell& cell = map.cells[i];
      outerRingFirst(cell);
      turns[i] = turnOf(cell);
      cell.solidAngle = cell.ringCount == 0 ? 4.0 * Pi : solidAngleOf(i, turns[i]);
      if (map.field == Field::Hemisphere) {
        double sum = 0.0;
        forArcs(cell, [&](Vec3 a, Vec3 b) { sum += arcViewFactor(a, b, forward); });
        cell.viewFactor = std::max(0.0, sum);
      }
      if (cellPolygons[i] >= 0 && setup.parallel == nullptr) lookAtFoot(cell, cellPolygons[i]);
    });
    for (const auto& [cell, polygon] : morePolygons) {
      lookAtFoot(map.cells[static_cast<size_t>(cell)], polygon);
      lookAtEdges(map.cells[static_cast<size_t>(cell)], polygon);
    }
  }

  MapParts& parts;
  const LookSetup& setup;
  BuildOptions options;
  VisibleMap& map;
  std::vector<Link> links;
  std::vector<Found> found;
  std::vector<int> cellOfArea;   // positions in `found`, of areas that stand for their set
  std::vector<Vec3> directions;  // of vertices
  Buckets atVertex;
  std::vector<Link> edges;
  std::vector<int> vertexNumbers;
  std::vector<int> cellNumbers;  // of `found`, in the map
  std::vector<std::int32_t> cellPolygons;
  std::vector<char> severalPolygons;
  std::vector<double> turns;  // of cells
  std::vector<std::pair<int, std::int32_t>> morePolygons;
};

}  // namespace

void buildMap(MapParts& parts, const LookSetup& setup, const BuildOptions& options,
              VisibleMap& map) {
  Builder(parts, setup, options, map).run();
}

}  // namespace Lumivane::Visibility
