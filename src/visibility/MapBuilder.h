#pragma once

#include "kernel/Vec.h"
#include "visibility/InParallel.h"
#include "visibility/IndexState.h"
#include "visibility/LookPolygons.h"
#include "visibility/MapParts.h"
#include "visibility/Watch.h"
#include "visibility/WideEdge.h"

#include <lumivane/visibility/LookOptions.h>
#include <lumivane/visibility/VisibleMap.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace Lumivane::Visibility {

/// Makes the map of the joined parts of all faces: joins pieces of one edge, closes rings, measures
/// cells. Fills all but the map's view and names. \throws Cancelled
void buildMap(MapParts& parts, const LookSetup& setup, const LookOptions& options, VisibleMap& map);

/// Makes a map, step by step: pieces that follow each other on one edge of the scene, with the same
/// cells on both sides, become one edge, so that neither the tiles nor what is hidden leaves a
/// trace. Each chapter of it is a file, MapBuilderVertices.cpp and so on.
class MapBuilder {
 public:
  MapBuilder(MapParts& theParts, const LookSetup& theSetup, const LookOptions& theOptions,
             VisibleMap& theMap)
      : parts(theParts),
        setup(theSetup),
        options(theOptions),
        threads(threadCount(theOptions.threads)),
        watch(theOptions.cancelled, theOptions.progress),
        map(theMap) {}

  void run();

 private:
  // Gives its memory back: of millions of cells every list takes as much as the map.
  template <class List>
  static void release(List& list) {
    List().swap(list);
  }
  void forgetParts();

  // Calls `visit(i)` once for each i below `count`, by several threads, each for
  // `worthAThread` of them or more.
  template <class Visit>
  void forEach(size_t count, Visit visit, size_t worthAThread = ManyQuickItems) {
    constexpr size_t Items = 256;
    forEachInParallel(
        count, threads,
        [&](size_t i) {
          if (i % Items == 0) watch.check();
          visit(i);
        },
        worthAThread);
  }

  static constexpr int NoCell = -1;
  // Distance within which a corner or a meeting of lines is the vertex that the sweep has found.
  static constexpr double PlaceTolerance = 3e-13;
  // Solid angle, in steradian, below which the sky may be all of a sphere or nothing of it.
  static constexpr double NearlyNothing = 1e-6;

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
    // Of all keys.
    size_t size() const { return items.size(); }
    // Of the first number of a key among those of all keys.
    size_t placeOf(int key) const { return static_cast<size_t>(offsets[static_cast<size_t>(key)]); }

   private:
    std::vector<int> offsets;
    std::vector<int> items;
  };

  static Kernel::Vec3 unit(Kernel::Vec3 v) {
    const double length = Kernel::length3(v);
    return {v.x / length, v.y / length, v.z / length};
  }
  static Kernel::Vec3 directionOf(const CubePoint& p) {
    return unit(toScene(
        {{static_cast<double>(p.c[0]), static_cast<double>(p.c[1]), static_cast<double>(p.c[2])}}));
  }

  // ---- vertices and cells

  void joinVertices();
  void makeLinks();
  void numberCells();
  void closeRings();

  // ---- sources

  // A source that a piece may have.
  struct Candidate {
    int rank;  // 0 for none
    Source source;
    bool inner;
    bool shared;
  };
  void findSources();
  Candidate sourceOf(const Area& left, const Area& right, Kernel::Vec3 from, Kernel::Vec3 to) const;
  void findSourceAnew(Link& link) const;
  void offerEdges(std::int32_t polygon, std::int32_t other, Kernel::Vec3 from, Kernel::Vec3 to,
                  Candidate& best) const;
  bool hasEdge(std::int32_t polygon, Source edge) const;
  bool isOnLine(Source source, Kernel::Vec3 from, Kernel::Vec3 to) const;
  bool isOnEdge(Source edge, Kernel::Vec3 from, Kernel::Vec3 to) const;

  // ---- slivers

  // Cells narrower than what rounding does to two lines that should coincide become part of the
  // neighbour with which they share most of their border.
  void dropSliverLinks() { dropSlivers(links); }
  // Once more with the vertices in their final places.
  void dropSliverEdges() { dropSlivers(edges); }
  static std::int32_t orderOf(std::int32_t region) {
    return region == SkyRegion ? std::numeric_limits<std::int32_t>::max() : region;
  }
  void dropSlivers(std::vector<Link>& borders);
  bool dropSliversOnce(std::vector<Link>& borders);
  void joinAlike(const std::vector<Link>& borders);
  int settled(int cell) const;

  // ---- edges

  bool continues(int vertex, const Link& a, const Link& b) const;
  bool isMiddleOfWide(Source source, Kernel::Vec3 direction) const;
  bool middleOfWide(Source source, Kernel::Vec3& middle) const;
  bool passes(int vertex) const;
  void chainLinks();
  void follow(int first, int start);
  bool isLongOfField(double turned, int start, int end) const;
  void addEdge(int from, int to, Link link);
  void addFieldArc(int start, int end, double turned, bool forwards, const Link& link);

  // ---- places

  Kernel::Vec3 fromEye(std::int32_t vertex) const {
    return inRange(setup.directionTo(setup.state->vertices[static_cast<size_t>(vertex)]));
  }
  Kernel::Vec3 offsetFromEye(std::int32_t vertex) const {
    return setup.state->vertices[static_cast<size_t>(vertex)] - setup.eye;
  }
  void placeVertices();
  template <class Chosen>
  void placeVertices(Chosen isChosen);
  void placeVertex(int vertex, const Source* lines, size_t count);
  Kernel::Vec3 normalOf(Source source) const;
  double doubtOf(Source source) const;
  Kernel::Vec3 comparedNearness(Source polygon) const;
  void contractEdges();

  // ---- kinds, order and rings

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
  Kernel::Vec3 vertexAt(int number) const {
    const Vector& v = map.vertices[static_cast<size_t>(number)];
    return {v[0], v[1], v[2]};
  }
  bool isDocked(const Link& link) const;
  bool isOfCells(const Link& crossing) const;
  VisibleMap::EdgeKind kindOf(const Link& link) const;
  void orderMap();
  void orderCells(const std::vector<int>& firstVertex);
  void orderEdges();
  void makeRings();
  void ringsOf(int cell, const Buckets& halves, const Buckets& leaving, std::vector<char>& taken,
               std::vector<char>& isFirst);
  int nextHalf(int half, const Buckets& leaving, const std::vector<char>& taken, int first) const;

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
  Kernel::Vec3 farFromArcs(const VisibleMap::Cell& cell) const;
  static double cosineToArc(Kernel::Vec3 d, Kernel::Vec3 a, Kernel::Vec3 b);
  double turnOf(const VisibleMap::Cell& cell) const;
  bool mayBeLarge(size_t cell) const;
  double solidAngleOf(size_t cell, double turn) const;
  double insideOfRing(size_t ring) const;
  void settleWholeSpheres();
  void outerRingFirst(VisibleMap::Cell& cell);
  void measureCells();

  // ---- distances

  Kernel::Vec3 planeOf(std::int32_t polygon) const;
  void measureDistances();
  void reachArcs(size_t cell);
  int severalAt(int area);
  static void reach(VisibleMap::Cell& cell, Kernel::Vec3 plane, Kernel::Vec3 a, Kernel::Vec3 b);
  bool contains(const VisibleMap::Cell& cell, Kernel::Vec3 d) const;
  bool containsAround(const VisibleMap::Cell& cell, Kernel::Vec3 d) const;
  static double quarterTurns(double x, double y);
  bool isIn(const VisibleMap::Cell& cell, Kernel::Vec3 d) const;
  void lookAtFoot(VisibleMap::Cell& cell, std::int32_t polygon) const;
  void lookAtEdges(VisibleMap::Cell& cell, std::int32_t polygon) const;

  MapParts& parts;
  const LookSetup& setup;
  const LookOptions& options;
  const size_t threads;
  Watch watch;
  VisibleMap& map;
  std::vector<Link> links;
  std::vector<Found> found;
  std::vector<int> cellOfArea;           // positions in `found`, of areas that stand for their set
  std::vector<Kernel::Vec3> directions;  // of vertices
  Buckets atVertex;
  std::vector<Link> edges;
  std::vector<int> vertexNumbers;
  std::vector<int> cellNumbers;  // of `found`, in the map
  std::vector<std::int32_t> cellPolygons;
  std::vector<char> severalPolygons;
  std::vector<double> turns;  // of cells
  std::vector<std::pair<int, std::int32_t>> morePolygons;
};

}  // namespace Lumivane::Visibility
