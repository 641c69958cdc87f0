// From polygons to faces, object by object:
//  1. Each polygon becomes one piece of one or more regions: itself, if it is flat and without
//     holes, else triangles. The triangles of a flat polygon with holes stay one piece; those of a
//     polygon that is not flat become pieces of their own.
//  2. Pieces that share an edge are neighbours if they run along it in opposite directions, so that
//     their outsides are on one side, and have one material.
//  3. From the largest piece on, each piece not yet taken starts a face and gathers neighbours, and
//     theirs, as long as they keep to the plane of the piece it started from. Measuring against
//     that piece, and not from neighbour to neighbour, keeps a curved surface from creeping into
//     one face.
//  4. An edge between two regions of one face is hidden, and so is one that bends by less than the
//     crease angle.

#include "exchange/SourceFaces.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <tuple>

namespace Lumivane::Exchange {
namespace {

using Kernel::Vec3;

constexpr double RadiansPerDegree = 3.14159265358979323846 / 180.0;

struct Tolerances {
  double distance = 0.0;
  double flatCosine = 1.0;
  bool joins = true;
};

struct Piece {
  OutlinePlane plane;
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
      : model(source), tolerances(limits), report(target) {}

  void add(const SourcePolygon& polygon, std::vector<Piece>& pieces) {
    const Loop& outline = polygon.loops.front();
    const OutlinePlane plane = planeOf(outline, model.vertices);
    if (!hasArea(plane, outline)) {
      ++report.emptyPolygons;
      return;
    }
    const bool flat = isFlat(polygon, plane);
    const bool simple = polygon.loops.size() == 1 && !visitsAVertexTwice(outline);
    if (flat && simple)
      pieces.push_back({plane, {{outline, polygon.material, {}}}, polygon.material});
    else
      addTriangles(polygon, plane, flat, pieces);
  }

 private:
  // Thinner than the tolerance everywhere counts as without area.
  bool hasArea(const OutlinePlane& plane, const Loop& outline) const {
    if (outline.size() < 3 || !(plane.area > 0.0)) return false;
    double length = 0.0;
    for (const int v : outline)
      length = std::max(length, Kernel::distance(vertex(v), vertex(outline.front())));
    return plane.area > ThinnestShare * length * length;
  }

  bool isFlat(const SourcePolygon& polygon, const OutlinePlane& plane) const {
    return std::all_of(polygon.loops.begin(), polygon.loops.end(), [&](const Loop& loop) {
      return greatestDistance(plane, loop, model.vertices) <= tolerances.distance;
    });
  }

  void addTriangles(const SourcePolygon& polygon, const OutlinePlane& plane, bool flat,
                    std::vector<Piece>& pieces) {
    const std::vector<Loop> triangles = triangulated(polygon.loops, model.vertices);
    if (triangles.empty()) {
      ++report.unfilledPolygons;
      return;
    }
    ++report.splitPolygons;
    Piece whole{plane, {}, polygon.material};
    for (const Loop& triangle : triangles) {
      SurfaceRegion region{triangle, polygon.material, {}};
      if (flat) {
        whole.regions.push_back(std::move(region));
        continue;
      }
      const OutlinePlane own = planeOf(triangle, model.vertices);
      if (own.area > 0.0) pieces.push_back({own, {std::move(region)}, polygon.material});
    }
    if (flat) pieces.push_back(std::move(whole));
  }

  const Vec3& vertex(int number) const { return model.vertices[static_cast<size_t>(number)]; }

  static constexpr double ThinnestShare = 1e-9;

  const SourceModel& model;
  const Tolerances& tolerances;
  ImportReport& report;
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

// Calls back with every two uses of one edge in opposite directions.
template <class Visit>
void forNeighbours(const std::vector<EdgeUse>& uses, const Visit& visit) {
  for (size_t start = 0; start < uses.size();) {
    size_t end = start + 1;
    while (end < uses.size() && uses[end].sharesEdge(uses[start])) ++end;
    for (size_t i = start; i < end; ++i)
      for (size_t j = i + 1; j < end; ++j)
        if (uses[i].rises != uses[j].rises) visit(uses[i], uses[j]);
    start = end;
  }
}

// Which pieces make up a face: the number of the face of each piece.
class FaceGatherer {
 public:
  FaceGatherer(const std::vector<Piece>& all, const std::vector<EdgeUse>& uses,
               const std::vector<Vec3>& points, const Tolerances& limits)
      : pieces(all),
        vertices(points),
        tolerances(limits),
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
    return std::all_of(
        piece.regions.begin(), piece.regions.end(), [&](const SurfaceRegion& region) {
          return greatestDistance(start.plane, region.loop, vertices) <= tolerances.distance;
        });
  }

  const std::vector<Piece>& pieces;
  const std::vector<Vec3>& vertices;
  const Tolerances& tolerances;
  std::vector<std::vector<int>> neighbours;
  std::vector<int> faceOf;
};

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
    const bool smooth =
        p.material == q.material && Kernel::dot(p.plane.normal, q.plane.normal) >= cosine;
    if (!oneFace && !smooth) return;
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

Tolerances tolerancesFor(const ImportOptions& options, double diagonal) {
  Tolerances tolerances;
  tolerances.distance = options.flatDistance * diagonal;
  tolerances.joins = options.flatAngleDegrees >= 0.0;
  tolerances.flatCosine = cosineOf(std::max(0.0, options.flatAngleDegrees));
  return tolerances;
}

}  // namespace

std::vector<ObjectSurfaces> makeFaces(const SourceModel& model, const ImportOptions& options,
                                      double diagonal, ImportReport& report) {
  const Tolerances tolerances = tolerancesFor(options, diagonal);
  PieceMaker maker(model, tolerances, report);
  std::vector<std::vector<Piece>> pieces(model.objects.size());
  for (const SourcePolygon& polygon : model.polygons)
    maker.add(polygon, pieces[static_cast<size_t>(polygon.object)]);

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

}  // namespace Lumivane::Exchange
