// From polygons to faces, object by object:
//  1. Each polygon becomes one piece of one or more regions: itself if a shot is sure to show it as
//     it is, else triangles. The triangles of a polygon that bends by little stay one piece; those
//     of one that bends become pieces of their own. Edges between them are hidden either way.
//  2. Pieces that share an edge are neighbours if they run along it in opposite directions, so that
//     their outsides are on one side, and have one material.
//  3. From the largest piece on, each piece not yet taken starts a face and gathers neighbours, and
//     theirs, as long as they keep to the plane of the piece it started from. Measuring against
//     that piece, and not from neighbour to neighbour, keeps a curved surface from creeping into
//     one face.
//  4. An edge between two regions of one face is hidden, and so is one that bends by less than the
//     crease angle.
//
// A shot cuts a polygon of more than four corners into triangles by cutting off ear after ear,
// which fails where an outline is concave and bends, were it by a tenth of a millimetre. Nothing of
// it is seen then. Triangles are never lost, so concave outlines and those that bend are cut here.

#include "importers/SourceFaces.h"

#include "importers/OutlineCutter.h"
#include "kernel/Planar.h"

#include <lumivane/check/SceneChecker.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <tuple>

namespace Lumivane::Importers {
namespace {

using Kernel::Vec3;

constexpr double RadiansPerDegree = Kernel::Pi / 180.0;

struct Tolerances {
  double rounding = 0.0;  // of a corner off its plane, by the grid
  double share = 0.0;     // of the size of what is put together, by which it may bend
  double flatCosine = 1.0;
  bool joins = true;

  double distance(double size) const { return std::max(rounding, share * size); }
};

struct Piece {
  OutlinePlane plane;
  double size = 0.0;  // of the outline
  std::vector<SurfaceRegion> regions;
  int material = 0;
};

// The cosine of an angle, a little smaller, so that equal directions pass for 0 degrees.
double cosineOf(double degrees) { return std::cos(degrees * RadiansPerDegree) - 1e-12; }

double creaseOf(const SourceObject& object, const ImportOptions& options) {
  if (options.creaseDegrees >= 0.0) return options.creaseDegrees;
  return object.isTerrain ? ImportOptions::TerrainCreaseDegrees : ImportOptions::MeshCreaseDegrees;
}

class PieceMaker {
 public:
  PieceMaker(const SourceModel& source, const Tolerances& limits, ImportReport& target)
      : model(source), tolerances(limits), report(target), cutter(source.vertices) {}

  void add(int number, std::vector<Piece>& pieces) {
    const SourcePolygon& polygon = model.polygons[static_cast<size_t>(number)];
    const Loop& outline = polygon.loops.front();
    const OutlinePlane plane = planeOf(outline, model.vertices);
    const double size = outline.size() < 3 ? 0.0 : extentOf(outline, model.vertices);
    if (outline.size() < 3 || !(plane.area > ThinnestShare * size * size)) {
      ++report.emptyPolygons;
      return;
    }
    if (isShownAsItIs(polygon, plane))
      pieces.push_back({plane, size, {{outline, polygon.material, {}, number}}, polygon.material});
    else
      addTriangles(number, plane, size, pieces);
  }

 private:
  bool isShownAsItIs(const SourcePolygon& polygon, const OutlinePlane& plane) const {
    const Loop& outline = polygon.loops.front();
    if (polygon.loops.size() > 1 || visitsAVertexTwice(outline)) return false;
    if (outline.size() == 3) return true;
    if (bend(polygon, plane) > tolerances.rounding) return false;
    if (outline.size() == 4) return true;
    return outline.size() <= MostCorners && isConvex(plane, outline, model.vertices) &&
           Check::SceneChecker::seenShare(cornersOf(outline)) > LeastSeen;
  }

  std::vector<std::array<double, 3>> cornersOf(const Loop& loop) const {
    std::vector<std::array<double, 3>> corners;
    for (const int v : loop) corners.push_back({vertex(v).x, vertex(v).y, vertex(v).z});
    return corners;
  }

  // How far a corner lies off the plane.
  double bend(const SourcePolygon& polygon, const OutlinePlane& plane) const {
    double greatest = 0.0;
    for (const Loop& loop : polygon.loops)
      greatest = std::max(greatest, greatestDistance(plane, loop, model.vertices));
    return greatest;
  }

  void addTriangles(int number, const OutlinePlane& plane, double size,
                    std::vector<Piece>& pieces) {
    const SourcePolygon& polygon = model.polygons[static_cast<size_t>(number)];
    const std::vector<Loop> triangles = cutter.triangles(polygon.loops);
    if (triangles.empty()) {
      ++report.unfilledPolygons;
      return;
    }
    ++report.splitPolygons;
    const bool isOnePiece = bend(polygon, plane) <= tolerances.distance(size);
    Piece whole{plane, size, {}, polygon.material};
    for (const Loop& triangle : triangles) {
      SurfaceRegion region{triangle, polygon.material, {}, number};
      const OutlinePlane own = planeOf(triangle, model.vertices);
      if (isOnePiece)
        whole.regions.push_back(std::move(region));
      else if (own.area > 0.0)
        pieces.push_back(
            {own, extentOf(triangle, model.vertices), {std::move(region)}, polygon.material});
    }
    if (isOnePiece) pieces.push_back(std::move(whole));
  }

  const Vec3& vertex(int number) const { return model.vertices[static_cast<size_t>(number)]; }

  // Thinner than this everywhere counts as without area.
  static constexpr double ThinnestShare = 1e-9;
  // Cutting off ears takes time by the square of the corners, in every shot.
  static constexpr size_t MostCorners = 1000;
  static constexpr double LeastSeen = 0.9999;

  const SourceModel& model;
  const Tolerances& tolerances;
  ImportReport& report;
  OutlineCutter cutter;
};

// One edge of one region, under the smaller and the greater of its vertices.
struct EdgeUse {
  int low = 0;
  int high = 0;
  bool rises = true;  // runs from the smaller to the greater
  int piece = 0;
  int region = 0;
  int edge = 0;

  bool sharesEdge(const EdgeUse& other) const { return low == other.low && high == other.high; }
  bool operator<(const EdgeUse& other) const {
    return std::tie(low, high, piece, region, edge) <
           std::tie(other.low, other.high, other.piece, other.region, other.edge);
  }
};

std::vector<EdgeUse> edgesOf(const std::vector<Piece>& pieces) {
  std::vector<EdgeUse> uses;
  for (size_t p = 0; p < pieces.size(); ++p) {
    for (size_t r = 0; r < pieces[p].regions.size(); ++r) {
      const Loop& loop = pieces[p].regions[r].loop;
      for (size_t e = 0; e < loop.size(); ++e) {
        const int a = loop[e];
        const int b = loop[(e + 1) % loop.size()];
        uses.push_back({std::min(a, b), std::max(a, b), a < b, static_cast<int>(p),
                        static_cast<int>(r), static_cast<int>(e) + 1});
      }
    }
  }
  std::sort(uses.begin(), uses.end());
  return uses;
}

template <class Visit>
void visitPairs(const std::vector<EdgeUse>& uses, size_t start, size_t end, const Visit& visit) {
  for (size_t i = start; i < end; ++i)
    for (size_t j = i + 1; j < end; ++j)
      if (uses[i].rises != uses[j].rises) visit(uses[i], uses[j]);
}

// Each use with one of the other direction at most.
template <class Visit>
void visitInTurn(const std::vector<EdgeUse>& uses, size_t start, size_t end, const Visit& visit) {
  std::vector<const EdgeUse*> rising, falling;
  for (size_t i = start; i < end; ++i) (uses[i].rises ? rising : falling).push_back(&uses[i]);
  for (size_t i = 0; i < std::min(rising.size(), falling.size()); ++i)
    visit(*rising[i], *falling[i]);
}

// A surface has an edge in two polygons, and where several surfaces meet, in a few more. Of an edge
// in thousands of them not every two are looked at.
constexpr size_t MostUses = 16;

// Calls back with every two uses of one edge in opposite directions.
template <class Visit>
void forNeighbours(const std::vector<EdgeUse>& uses, const Visit& visit) {
  for (size_t start = 0; start < uses.size();) {
    size_t end = start + 1;
    while (end < uses.size() && uses[end].sharesEdge(uses[start])) ++end;
    if (end - start <= MostUses)
      visitPairs(uses, start, end, visit);
    else
      visitInTurn(uses, start, end, visit);
    start = end;
  }
}

// The diagonal of the bounds of an object.
double sizeOf(const std::vector<Piece>& pieces, const std::vector<Vec3>& points) {
  constexpr double Far = std::numeric_limits<double>::infinity();
  Vec3 lower{Far, Far, Far};
  Vec3 upper = -lower;
  for (const Piece& piece : pieces)
    for (const SurfaceRegion& region : piece.regions)
      for (const int v : region.loop) {
        const Vec3 p = points[static_cast<size_t>(v)];
        lower = {std::min(lower.x, p.x), std::min(lower.y, p.y), std::min(lower.z, p.z)};
        upper = {std::max(upper.x, p.x), std::max(upper.y, p.y), std::max(upper.z, p.z)};
      }
  return pieces.empty() ? 0.0 : Kernel::distance(lower, upper);
}

// Which pieces make up a face: the number of the face of each piece.
class FaceGatherer {
 public:
  FaceGatherer(const std::vector<Piece>& all, const std::vector<EdgeUse>& uses,
               const std::vector<Vec3>& points, const Tolerances& limits)
      : pieces(all),
        vertices(points),
        tolerances(limits),
        limit(limits.distance(sizeOf(all, points))),
        neighbours(all.size()),
        faceOf(all.size(), -1) {
    if (!tolerances.joins) return;
    forNeighbours(uses, [this](const EdgeUse& a, const EdgeUse& b) {
      if (a.piece == b.piece) return;
      neighbours[static_cast<size_t>(a.piece)].push_back(b.piece);
      neighbours[static_cast<size_t>(b.piece)].push_back(a.piece);
    });
  }

  std::vector<int> gather() {
    std::vector<size_t> order(pieces.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(), [this](size_t a, size_t b) {
      return pieces[a].plane.area > pieces[b].plane.area;
    });
    int face = 0;
    for (const size_t start : order)
      if (faceOf[start] < 0) gatherFrom(start, face++);
    return std::move(faceOf);
  }

 private:
  void gatherFrom(size_t start, int face) {
    std::vector<size_t> waiting = {start};
    faceOf[start] = face;
    while (!waiting.empty()) {
      const size_t piece = waiting.back();
      waiting.pop_back();
      for (const int next : neighbours[piece]) {
        const size_t n = static_cast<size_t>(next);
        if (faceOf[n] >= 0 || !fits(pieces[start], pieces[n])) continue;
        faceOf[n] = face;
        waiting.push_back(n);
      }
    }
  }

  bool fits(const Piece& start, const Piece& piece) const {
    if (piece.material != start.material) return false;
    if (Kernel::dot(start.plane.normal, piece.plane.normal) < tolerances.flatCosine) return false;
    return std::all_of(piece.regions.begin(), piece.regions.end(),
                       [&](const SurfaceRegion& region) {
                         return greatestDistance(start.plane, region.loop, vertices) <= limit;
                       });
  }

  const std::vector<Piece>& pieces;
  const std::vector<Vec3>& vertices;
  const Tolerances& tolerances;
  double limit;
  std::vector<std::vector<int>> neighbours;
  std::vector<int> faceOf;
};

const SurfaceRegion& regionOf(const Piece& piece, const EdgeUse& use) {
  return piece.regions[static_cast<size_t>(use.region)];
}

void hide(std::vector<Piece>& pieces, const EdgeUse& use) {
  pieces[static_cast<size_t>(use.piece)]
      .regions[static_cast<size_t>(use.region)]
      .hiddenEdges.push_back(use.edge);
}

void hideEdges(std::vector<Piece>& pieces, const std::vector<EdgeUse>& uses,
               const std::vector<int>& faceOf, double creaseDegrees) {
  const double cosine = cosineOf(creaseDegrees);
  forNeighbours(uses, [&](const EdgeUse& a, const EdgeUse& b) {
    const Piece& p = pieces[static_cast<size_t>(a.piece)];
    const Piece& q = pieces[static_cast<size_t>(b.piece)];
    const bool oneFace =
        faceOf[static_cast<size_t>(a.piece)] == faceOf[static_cast<size_t>(b.piece)];
    const bool cut = regionOf(p, a).polygon == regionOf(q, b).polygon;
    const bool smooth =
        p.material == q.material && Kernel::dot(p.plane.normal, q.plane.normal) >= cosine;
    if (!oneFace && !cut && !smooth) return;
    hide(pieces, a);
    hide(pieces, b);
  });
}

void sortHiddenEdges(SurfaceRegion& region) {
  std::vector<int>& edges = region.hiddenEdges;
  std::sort(edges.begin(), edges.end());
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
}

// Puts the pieces of each face together, in the order of the faces' first pieces. The largest piece
// gives the normal.
ObjectSurfaces facesOf(std::vector<Piece>& pieces, const std::vector<int>& faceOf) {
  ObjectSurfaces faces;
  std::map<int, size_t> places;
  std::vector<double> largest;
  for (size_t p = 0; p < pieces.size(); ++p) {
    const auto [place, isNew] = places.emplace(faceOf[p], faces.size());
    if (isNew) {
      faces.emplace_back();
      largest.push_back(0.0);
    }
    SurfaceFace& face = faces[place->second];
    if (pieces[p].plane.area > largest[place->second]) {
      largest[place->second] = pieces[p].plane.area;
      face.normal = pieces[p].plane.normal;
    }
    for (SurfaceRegion& region : pieces[p].regions) {
      sortHiddenEdges(region);
      face.regions.push_back(std::move(region));
    }
  }
  return faces;
}

// A corner is rounded by half a step along each axis, and so are those that make its plane.
constexpr double StepsOffThePlane = 2.0;

Tolerances tolerancesFor(const ImportOptions& options, double step) {
  Tolerances tolerances;
  tolerances.rounding = StepsOffThePlane * step;
  tolerances.share = options.flatDistance;
  tolerances.joins = options.flatAngleDegrees >= 0.0;
  tolerances.flatCosine = cosineOf(std::max(0.0, options.flatAngleDegrees));
  return tolerances;
}

}  // namespace

std::vector<ObjectSurfaces> makeFaces(const SourceModel& model, const ImportOptions& options,
                                      double step, ImportReport& report) {
  const Tolerances tolerances = tolerancesFor(options, step);
  PieceMaker maker(model, tolerances, report);
  std::vector<std::vector<Piece>> pieces(model.objects.size());
  for (size_t i = 0; i < model.polygons.size(); ++i)
    maker.add(static_cast<int>(i), pieces[static_cast<size_t>(model.polygons[i].object)]);

  std::vector<ObjectSurfaces> result;
  for (size_t i = 0; i < pieces.size(); ++i) {
    const std::vector<EdgeUse> uses = edgesOf(pieces[i]);
    const std::vector<int> faceOf =
        FaceGatherer(pieces[i], uses, model.vertices, tolerances).gather();
    hideEdges(pieces[i], uses, faceOf, creaseOf(model.objects[i], options));
    result.push_back(facesOf(pieces[i], faceOf));
  }
  return result;
}

}  // namespace Lumivane::Importers
