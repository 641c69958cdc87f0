// A polygon is flattened onto its plane, blown up or shrunk to one size, and handed to the
// tesselator of GLU, a sweep over its corners. Its triangles come in no good shape, long slivers
// where corners lie on one line among them, which a shot might draw on the wrong side; so the inner
// edges of slivers are flipped where a Delaunay triangulation has the other diagonal (C. L. Lawson,
// "Transforming triangulations", 1972).
//
// The sweep searches the edges that it crosses one by one, and finds every crossing of two edges.
// Both are counted beforehand, so that no outline takes it minutes: it sweeps along the axis across
// which fewer edges lie side by side. What it cuts off it walks round as a whole, which takes time
// by the square of the corners in the worst case: it counts as well.

#include "importers/OutlineCutter.h"

#include "kernel/BoxTree.h"
#include "kernel/Polygon2.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <utility>

#include <GL/glu.h>

namespace Lumivane::Importers {
namespace {

using Kernel::Vec2;
using Kernel::Vec3;
using Triangle = std::array<int, 3>;

// The side of the square into which a polygon is scaled.
constexpr double FlatSize = 1000.0;
// Two edges that cross this near to a corner, there, meet in it.
constexpr double MeetingDistance = 1e-4;
// A filling that covers another area than the polygon by more than this share is no filling.
constexpr double AreaTolerance = 1e-3;
// What one outline may ask of the sweep, a few seconds; and all those of a model, together with the
// search for crossings. Most outlines take far less than what is counted.
constexpr std::int64_t MostStepsOfOne = 400000000;
constexpr std::int64_t MostSteps = 5 * MostStepsOfOne;
// Crossings near corners are settled by the sweep; more of them are no noise.
constexpr int MostCrossings = 1000;

const Vec3& at(const std::vector<Vec3>& vertices, int number) {
  return vertices[static_cast<size_t>(number)];
}

// A polygon in the coordinates of its plane.
class Flattening {
 public:
  Flattening(const std::vector<Loop>& loops, const std::vector<Vec3>& vertices)
      : plane(planeOf(loops.front(), vertices)) {
    const Vec3 axis = std::abs(plane.normal.x) < 0.6 ? Vec3{1, 0, 0} : Vec3{0, 1, 0};
    right = Kernel::normalise(Kernel::cross(axis, plane.normal)).direction;
    up = Kernel::cross(plane.normal, right);
    double extent = 0.0;
    for (const int v : loops.front()) {
      const Vec2 p = flat(at(vertices, v));
      extent = std::max({extent, std::abs(p.x), std::abs(p.y)});
    }
    factor = extent > 0.0 ? FlatSize / extent : 1.0;
  }

  Vec2 operator()(const Vec3& point) const {
    const Vec2 p = flat(point);
    return {p.x * factor, p.y * factor};
  }

 private:
  Vec2 flat(const Vec3& point) const {
    const Vec3 offset = point - plane.origin;
    return {Kernel::dot(offset, right), Kernel::dot(offset, up)};
  }

  OutlinePlane plane;
  Vec3 right;
  Vec3 up;
  double factor = 1.0;
};

struct Corner {
  int vertex;
  Vec2 place;
};

struct Edge {
  Vec2 from;
  Vec2 to;
};

using FlatLoop = std::vector<Corner>;

// Twice the area, positive if the triangle runs counter-clockwise.
double turn(Vec2 a, Vec2 b, Vec2 c) { return Kernel::rotate(a, b, c); }

double areaOf(const FlatLoop& loop) {
  double sum = 0.0;
  for (size_t i = 1; i + 1 < loop.size(); ++i)
    sum += turn(loop[0].place, loop[i].place, loop[i + 1].place);
  return sum / 2.0;
}

// What the outline encloses, without its holes.
double areaOf(const std::vector<FlatLoop>& loops) {
  double area = std::abs(areaOf(loops.front()));
  for (size_t i = 1; i < loops.size(); ++i) area -= std::abs(areaOf(loops[i]));
  return area;
}

std::vector<FlatLoop> flatLoops(const std::vector<Loop>& loops, const std::vector<Vec3>& vertices) {
  const Flattening flattening(loops, vertices);
  std::vector<FlatLoop> result;
  for (const Loop& loop : loops) {
    if (loop.size() < 3) continue;
    result.emplace_back();
    for (const int v : loop) result.back().push_back({v, flattening(at(vertices, v))});
  }
  return result;
}

std::vector<Edge> edgesOf(const std::vector<FlatLoop>& loops) {
  std::vector<Edge> edges;
  for (const FlatLoop& loop : loops)
    for (size_t i = 0; i < loop.size(); ++i)
      edges.push_back({loop[i].place, loop[(i + 1) % loop.size()].place});
  return edges;
}

// How many edges a sweep along one axis meets at all corners together.
std::int64_t sweepSteps(const std::vector<Edge>& edges, double Vec2::*axis) {
  std::vector<double> starts;
  std::vector<double> ends;
  for (const Edge& edge : edges) {
    starts.push_back(std::min(edge.from.*axis, edge.to.*axis));
    ends.push_back(std::max(edge.from.*axis, edge.to.*axis));
  }
  std::sort(starts.begin(), starts.end());
  std::sort(ends.begin(), ends.end());
  std::int64_t steps = 0;
  size_t ended = 0;
  for (size_t started = 0; started < starts.size(); ++started) {
    while (ends[ended] < starts[started]) ++ended;
    steps += static_cast<std::int64_t>(started - ended + 1);
  }
  return steps;
}

Kernel::Box boxOf(const Edge& edge) {
  return {std::min(edge.from.x, edge.to.x), std::max(edge.from.x, edge.to.x),
          std::min(edge.from.y, edge.to.y), std::max(edge.from.y, edge.to.y)};
}

// Whether more edges cross than noise makes, or more come near each other than `budget` allows to
// look at; what has been looked at is taken off it.
bool isTangled(const std::vector<Edge>& edges, std::int64_t& budget) {
  std::vector<Kernel::Box> boxes;
  for (const Edge& edge : edges) boxes.push_back(boxOf(edge));
  const Kernel::BoxTree tree(boxes);
  std::vector<std::uint32_t> found(edges.size() + 1);
  int crossings = 0;
  for (std::uint32_t i = 0; i < edges.size(); ++i) {
    const size_t count = tree.findMeeting(boxes[i], i, found.data());
    budget -= static_cast<std::int64_t>(count);
    if (budget < 0) return true;
    for (size_t k = 0; k < count; ++k) {
      const Edge& other = edges[found[k]];
      if (Kernel::segmentsCross(edges[i].from, edges[i].to, other.from, other.to) &&
          ++crossings > MostCrossings)
        return true;
    }
  }
  return false;
}

// A directed edge that comes twice runs over itself, were it only three corners again and again.
bool repeatsAnEdge(const std::vector<Loop>& loops) {
  std::vector<std::pair<int, int>> edges;
  for (const Loop& loop : loops)
    for (size_t i = 0; i < loop.size(); ++i)
      edges.emplace_back(loop[i], loop[(i + 1) % loop.size()]);
  std::sort(edges.begin(), edges.end());
  return std::adjacent_find(edges.begin(), edges.end()) != edges.end();
}

// Flips inner edges until none is better across. Edges of the outline stay.
class Flipper {
 public:
  Flipper(const std::vector<FlatLoop>& loops, std::vector<Triangle>& flipped) : triangles(flipped) {
    for (const FlatLoop& loop : loops)
      for (size_t i = 0; i < loop.size(); ++i) {
        places.emplace(loop[i].vertex, loop[i].place);
        fixed.insert(keyOf(loop[i].vertex, loop[(i + 1) % loop.size()].vertex));
      }
    for (size_t t = 0; t < triangles.size(); ++t)
      for (size_t e = 0; e < 3; ++e) owners[edge(t, e)].push_back(t);
  }

  void run() {
    for (const auto& [key, users] : owners) waiting.push_back(key);
    // A triangulation has few flips to make; rounding must not make it go in circles.
    for (size_t flips = 0; !waiting.empty() && flips < 4 * triangles.size();) {
      const Key key = waiting.back();
      waiting.pop_back();
      if (flip(key)) ++flips;
    }
  }

  double areaOf(const Triangle& t) const {
    return turn(place(t[0]), place(t[1]), place(t[2])) / 2.0;
  }

 private:
  using Key = std::pair<int, int>;

  static Key keyOf(int a, int b) { return {std::min(a, b), std::max(a, b)}; }
  Key edge(size_t t, size_t e) const { return keyOf(triangles[t][e], triangles[t][(e + 1) % 3]); }
  Vec2 place(int vertex) const { return places.at(vertex); }

  // The corner of a triangle behind its edge with this key.
  size_t edgeIn(size_t t, const Key& key) const {
    for (size_t e = 0; e < 3; ++e)
      if (edge(t, e) == key) return e;
    return 3;
  }

  bool flip(const Key& key) {
    const auto users = owners.find(key);
    if (fixed.count(key) > 0 || users == owners.end() || users->second.size() != 2) return false;
    const size_t first = users->second[0];
    const size_t second = users->second[1];
    const size_t e = edgeIn(first, key);
    const size_t f = edgeIn(second, key);
    const int a = triangles[first][e];
    const int b = triangles[first][(e + 1) % 3];
    const int c = triangles[first][(e + 2) % 3];
    const int d = triangles[second][(f + 2) % 3];
    if (triangles[second][f] != b || c == d || owners.count(keyOf(c, d)) > 0) return false;
    if (!isBetterAcross(place(a), place(b), place(c), place(d))) return false;
    forget(first);
    forget(second);
    remember(first, {a, d, c});
    remember(second, {d, b, c});
    return true;
  }

  // For triangles a b c and b a d: whether d lies within the circle through a, b and c, and both
  // triangles at the other diagonal run the right way round.
  static bool isBetterAcross(Vec2 a, Vec2 b, Vec2 c, Vec2 d) {
    if (!isThin(a, b, c) && !isThin(b, a, d)) return false;
    if (!(turn(a, d, c) > 0.0 && turn(d, b, c) > 0.0)) return false;
    return circle(a, b, c, d) > 1e-9 * (turn(a, d, c) + turn(d, b, c)) * FlatSize;
  }

  // So thin that rounding to single precision could turn it round.
  static bool isThin(Vec2 a, Vec2 b, Vec2 c) {
    constexpr double Thin = 1e-6;
    const double longest =
        std::max({lengthSquared(a, b), lengthSquared(b, c), lengthSquared(c, a)});
    return turn(a, b, c) < Thin * longest;
  }

  static double lengthSquared(Vec2 a, Vec2 b) {
    return (b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y);
  }

  static double circle(Vec2 a, Vec2 b, Vec2 c, Vec2 d) {
    const Vec2 p{a.x - d.x, a.y - d.y}, q{b.x - d.x, b.y - d.y}, r{c.x - d.x, c.y - d.y};
    const double pp = p.x * p.x + p.y * p.y;
    const double qq = q.x * q.x + q.y * q.y;
    const double rr = r.x * r.x + r.y * r.y;
    return pp * (q.x * r.y - q.y * r.x) - qq * (p.x * r.y - p.y * r.x) +
           rr * (p.x * q.y - p.y * q.x);
  }

  void forget(size_t t) {
    for (size_t e = 0; e < 3; ++e) {
      const auto found = owners.find(edge(t, e));
      auto& users = found->second;
      users.erase(std::find(users.begin(), users.end(), t));
      if (users.empty()) owners.erase(found);
    }
  }

  void remember(size_t t, const Triangle& triangle) {
    triangles[t] = triangle;
    for (size_t e = 0; e < 3; ++e) {
      owners[edge(t, e)].push_back(t);
      waiting.push_back(edge(t, e));
    }
  }

  std::vector<Triangle>& triangles;
  std::map<int, Vec2> places;
  std::set<Key> fixed;
  std::map<Key, std::vector<size_t>> owners;
  std::vector<Key> waiting;
};

using Callback = void (*)();

}  // namespace

struct OutlineCutter::Tesselator {
  Tesselator() : glu(gluNewTess()) {
    gluTessProperty(glu, GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_ODD);
    gluTessNormal(glu, 0.0, 0.0, 1.0);
    gluTessCallback(glu, GLU_TESS_VERTEX_DATA, reinterpret_cast<Callback>(&addCorner));
    gluTessCallback(glu, GLU_TESS_COMBINE_DATA, reinterpret_cast<Callback>(&meet));
    gluTessCallback(glu, GLU_TESS_ERROR_DATA, reinterpret_cast<Callback>(&fail));
    // Whoever asks for the flags of edges gets single triangles, and no strips.
    gluTessCallback(glu, GLU_TESS_EDGE_FLAG, reinterpret_cast<Callback>(&ignoreFlag));
  }
  Tesselator(const Tesselator&) = delete;
  Tesselator& operator=(const Tesselator&) = delete;
  ~Tesselator() { gluDeleteTess(glu); }

  // The triangles, counter-clockwise; none after a failure. The sweep runs along x, or along y.
  std::vector<Triangle> fill(const std::vector<FlatLoop>& loops, bool alongY) {
    turned = alongY;
    corners.clear();
    hasFailed = false;
    gluTessBeginPolygon(glu, this);
    for (const FlatLoop& loop : loops) {
      gluTessBeginContour(glu);
      for (const Corner& corner : loop) {
        const Vec2 p = swept(corner);
        double place[3] = {p.x, p.y, 0.0};
        gluTessVertex(glu, place, const_cast<Corner*>(&corner));
      }
      gluTessEndContour(glu);
    }
    gluTessEndPolygon(glu);
    std::vector<Triangle> triangles;
    if (hasFailed) return triangles;
    for (size_t i = 0; i + 2 < corners.size(); i += 3)
      triangles.push_back({corners[i]->vertex, corners[i + 1]->vertex, corners[i + 2]->vertex});
    return triangles;
  }

 private:
  static void ignoreFlag(GLboolean) {}

  static void addCorner(void* corner, void* self) {
    static_cast<Tesselator*>(self)->corners.push_back(static_cast<const Corner*>(corner));
  }

  static void fail(GLenum, void* self) { static_cast<Tesselator*>(self)->hasFailed = true; }

  // Where edges cross, or corners lie in one place: a corner near by, or none, which fails.
  static void meet(const double place[3], void* nearby[4], const float[4], void** met, void* self) {
    *met = nullptr;
    auto& tesselator = *static_cast<Tesselator*>(self);
    for (size_t i = 0; i < 4 && *met == nullptr; ++i)
      if (nearby[i] != nullptr && tesselator.isAt(*static_cast<const Corner*>(nearby[i]), place))
        *met = nearby[i];
    if (*met == nullptr) tesselator.hasFailed = true;
  }

  bool isAt(const Corner& corner, const double place[3]) const {
    const Vec2 p = swept(corner);
    return std::hypot(p.x - place[0], p.y - place[1]) <= MeetingDistance;
  }

  // A quarter of a turn keeps the way round.
  Vec2 swept(const Corner& corner) const {
    return turned ? Vec2{corner.place.y, -corner.place.x} : corner.place;
  }

  GLUtesselator* glu;
  std::vector<const Corner*> corners;
  bool turned = false;
  bool hasFailed = false;
};

OutlineCutter::OutlineCutter(const std::vector<Vec3>& vertices)
    : points(vertices), tesselator(std::make_unique<Tesselator>()), stepsLeft(MostSteps) {}

OutlineCutter::~OutlineCutter() = default;

std::vector<Loop> OutlineCutter::triangles(const std::vector<Loop>& loops) {
  if (loops.size() == 1 && loops.front().size() == 3) return loops;
  if (loops.front().size() < 3 || repeatsAnEdge(loops)) return {};
  const std::vector<FlatLoop> flat = flatLoops(loops, points);
  const std::vector<Edge> edges = edgesOf(flat);
  const std::int64_t alongX = sweepSteps(edges, &Vec2::x);
  const std::int64_t alongY = sweepSteps(edges, &Vec2::y);
  const auto corners = static_cast<std::int64_t>(edges.size());
  const std::int64_t steps = std::min(alongX, alongY) + corners * corners / 2;
  if (steps > MostStepsOfOne) return {};
  stepsLeft -= steps;
  if (stepsLeft < 0 || isTangled(edges, stepsLeft)) return {};
  std::vector<Triangle> filled = tesselator->fill(flat, alongY < alongX);
  Flipper flipper(flat, filled);
  flipper.run();
  double area = 0.0;
  std::vector<Loop> result;
  for (const Triangle& t : filled) {
    const double size = flipper.areaOf(t);
    area += size;
    if (size > 0.0) result.push_back({t[0], t[1], t[2]});
  }
  const double wanted = areaOf(flat);
  if (!(std::abs(area - wanted) <= AreaTolerance * wanted)) return {};
  return result;
}

}  // namespace Lumivane::Importers
