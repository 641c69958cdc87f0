#pragma once

#include "kernel/Vec.h"
#include "visibility/BlockList.h"
#include "visibility/InParallel.h"
#include "visibility/IndexState.h"
#include "visibility/LookPolygons.h"
#include "visibility/MapParts.h"
#include "visibility/PageMemory.h"
#include "visibility/Watch.h"
#include "visibility/WideEdge.h"

#include <lumivane/visibility/LookOptions.h>
#include <lumivane/visibility/VisibleMap.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace Lumivane::Visibility {

/// Makes the map of the joined parts of all faces: joins pieces of one edge, closes rings, measures
/// cells. Fills all but the map's view and names. \return the regions that are seen, if what is
/// hidden may have changed a byte of the map; else none. \throws Cancelled
std::vector<std::int32_t> buildMap(MapParts& parts, const LookSetup& setup,
                                   const LookOptions& options, VisibleMap& map);

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
  /// Whether lines were so near to each other that what they show may depend on tiles and stops.
  bool hasDoubt() const { return isDoubtful; }
  /// The regions that are seen in the map, ascending.
  std::vector<std::int32_t> seenRegions() const;

 private:
  // Gives its memory back: of millions of cells every list takes as much as the map.
  template <class List>
  static void release(List& list) {
    list = List();
  }

  // Calls `visit(i, scratch)` once for each i below `count`, by several threads, each for
  // `worthAThread` of them or more and with a Scratch of its own.
  template <class Scratch, class Visit>
  void forEachWith(size_t count, Visit visit, size_t worthAThread = ManyQuickItems) {
    constexpr size_t Items = 256;
    forEachInParallelWith<Scratch>(
        count, threads,
        [&](size_t i, Scratch& scratch) {
          if (i % Items == 0) watch.check();
          visit(i, scratch);
        },
        worthAThread);
  }
  // The same without anything of a thread's own.
  template <class Visit>
  void forEach(size_t count, Visit visit) {
    struct Nothing {};
    forEachWith<Nothing>(count, [&](size_t i, Nothing) { visit(i); });
  }

  static constexpr int NoCell = -1;
  // Distance within which a corner or a meeting of lines is the vertex that the sweep has found.
  static constexpr double PlaceTolerance = 3e-13;
  // Solid angle, in steradian, below which the sky may be all of a sphere or nothing of it.
  static constexpr double NearlyNothing = 1e-6;

  // A cell as its areas have made it.
  struct Found {
    std::int32_t region;
    std::int32_t polygon;  // one of those of its region that are seen in it
    bool several;          // more than one is
    int mergedInto;        // itself, or the cell that it has become a part of
  };

  // Lists of items by key, in one array.
  template <class Item, class Items = LargeVector<Item>>
  class BasicBuckets {
   public:
    template <class Visit>
    void fill(size_t keys, Visit visit) {
      // Two places further than they end up, so that each offset can move along while items come.
      offsets.assign(keys + 2, 0);
      visit([this](int key, const Item&) { ++offsets[static_cast<size_t>(key) + 2]; });
      for (size_t i = 2; i < offsets.size(); ++i) offsets[i] += offsets[i - 1];
      items.resize(static_cast<size_t>(offsets.back()));
      visit([this](int key, const Item& item) {
        items[static_cast<size_t>(offsets[static_cast<size_t>(key) + 1]++)] = item;
      });
    }
    Item* begin(int key) { return items.data() + placeOf(key); }
    const Item* begin(int key) const { return items.data() + placeOf(key); }
    const Item* end(int key) const { return items.data() + placeOf(key + 1); }
    size_t size(int key) const { return placeOf(key + 1) - placeOf(key); }
    // Of all keys.
    size_t size() const { return items.size(); }
    // Of the first item of a key among those of all keys.
    size_t placeOf(int key) const { return static_cast<size_t>(offsets[static_cast<size_t>(key)]); }
    // Takes all items away; their places remain.
    Items takeItems() { return std::move(items); }

   private:
    LargeVector<int> offsets;
    Items items;
  };
  using Buckets = BasicBuckets<int>;

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
  void numberCells();
  void findBentCells();
  void makeLinks();
  void numberVertices();
  void closeRings();
  void joinOpen(LargeVector<int>& open, LargeVector<std::uint64_t>& balance);

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
  // What the links around a cell say of it.
  struct Extent {
    double area = 0.0;
    double length = 0.0;
    double shared = 0.0;     // the longest link
    int neighbour = NoCell;  // across that
    int from = -1;           // a corner; -1 for cells that are measured from elsewhere
  };
  void dropSlivers(BlockList<Link>& borders);
  bool dropSliversOnce(BlockList<Link>& borders);
  LargeVector<Extent> extentsOf(const BlockList<Link>& borders);
  template <class IsAsked, class Measure, class Add>
  void forTriangles(const BlockList<Link>& borders, const LargeVector<Extent>& extents,
                    IsAsked isAsked, Measure measure, Add add);
  LargeVector<char> thosePerhapsThin(const BlockList<Link>& borders,
                                     const LargeVector<Extent>& extents);
  bool isSliver(int cell, const Extent& extent) const;
  void joinAlike(const BlockList<Link>& borders);
  int settled(int cell) const;

  // ---- edges

  // The links at each vertex, if there are no more than two.
  class LinkPairs {
   public:
    LinkPairs(size_t vertices, const BlockList<Link>& links, Watch& watch);
    bool isPair(int vertex) const { return pairs[static_cast<size_t>(vertex)].second >= 0; }
    int first(int vertex) const { return pairs[static_cast<size_t>(vertex)].first; }
    int second(int vertex) const { return pairs[static_cast<size_t>(vertex)].second; }

   private:
    static constexpr int None = -1;
    static constexpr int More = -2;
    void add(int vertex, int link);
    LargeVector<std::pair<int, int>> pairs;
  };
  // What has become of a link: the edge that it begins, by its other end and its direction, or one
  // of these.
  static constexpr int NotFollowed = -1;
  static constexpr int Followed = -2;

  static bool continues(int vertex, const Link& a, const Link& b);
  bool isMiddleOfWide(Source source, Kernel::Vec3 direction) const;
  bool middleOfWide(Source source, Kernel::Vec3& middle) const;
  bool passes(int vertex) const;
  void chainLinks();
  void chainEdges();
  void follow(int first, int start);
  bool isLongOfField(double turned, int start, int end) const;
  void addEdges(const std::vector<int>& rings);
  void addFieldArc(int start, int end, double turned, int head);

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
  void placeVertex(int vertex, const std::vector<Source>& lines);
  bool placeAtEnd(Kernel::Vec3& place, const std::vector<Source>& lines) const;
  bool placeAtMeeting(Kernel::Vec3& place, const std::vector<Source>& lines) const;
  // Of an edge that looks short, rounding does more to the usual normal. What has no place by that
  // is asked for again, and may be as far off as where the sweep takes lines for one.
  enum class Exactness { Usual, Full };
  Kernel::Vec3 meetingAt(Kernel::Vec3 place, const std::vector<Source>& lines,
                         Exactness exactness) const;
  Kernel::Vec3 normalOf(Source source, Exactness exactness = Exactness::Usual) const;
  double doubtOf(Source source) const;
  Kernel::Vec3 comparedNearness(Source polygon) const;
  void contractEdges();

  // ---- kinds, order and rings

  // A half of an edge and the cell on its left.
  struct Half {
    int number;
    int cell;
  };
  using HalvesAt = BasicBuckets<Half>;

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
  void orderVertices();
  LargeVector<std::uint64_t> firstEdges();
  void orderCells(const LargeVector<std::uint64_t>& firstEdge);
  void orderEdges();
  void makeRings();
  void placeEdge(const Link& edge, size_t place);
  void ringsOf(size_t place, const std::vector<int>& halves, const HalvesAt& leaving,
               LargeVector<char>& taken, LargeVector<char>& isFirst);
  int nextHalf(int half, const HalvesAt& leaving, const LargeVector<char>& taken, int first) const;

  // ---- measures

  // The arcs of some rings.
  struct Arc {
    Kernel::Vec3 from;
    Kernel::Vec3 to;
  };
  using Arcs = std::vector<Arc>;
  void addArcs(size_t ring, Arcs& arcs) const;
  void arcsOf(const VisibleMap::Cell& cell, Arcs& arcs) const;
  static Kernel::Vec3 farFromArcs(const Arcs& arcs);
  static double cosineToArc(Kernel::Vec3 d, Kernel::Vec3 a, Kernel::Vec3 b);
  static double turnOf(const Arcs& arcs);
  bool mayBeLarge(size_t cell) const;
  double solidAngleOf(size_t cell, double turn) const;
  double insideOfRing(size_t ring) const;
  void settleWholeSpheres();
  void outerRingFirst(VisibleMap::Cell& cell);
  void measureCells();
  void measureCell(size_t cell, Arcs& arcs);

  // ---- distances

  // How far away a cell is, from the least to the greatest.
  struct Reach {
    double least = 0.0;
    double greatest = 0.0;
  };
  // A cell of a region of which several polygons are seen, before cells are in their order.
  struct Bent {
    Reach reach;
    std::vector<std::int32_t> polygons;  // in ascending order
  };
  Kernel::Vec3 planeOf(std::int32_t polygon) const;
  void measureDistances(size_t cell, const Arcs& arcs);
  static void reach(Reach& r, Kernel::Vec3 plane, Kernel::Vec3 a, Kernel::Vec3 b);
  Reach reachOfCorners(std::int32_t polygon) const;
  static bool contains(const Arcs& arcs, Kernel::Vec3 d);
  bool containsAround(const VisibleMap::Cell& cell, const Arcs& arcs, Kernel::Vec3 d) const;
  static double quarterTurns(double x, double y);
  bool isIn(const VisibleMap::Cell& cell, const Arcs& arcs, Kernel::Vec3 d) const;
  void lookAtFoot(VisibleMap::Cell& cell, const Arcs& arcs, std::int32_t polygon) const;
  void lookAtEdges(VisibleMap::Cell& cell, const Arcs& arcs, std::int32_t polygon) const;

  MapParts& parts;
  const LookSetup& setup;
  const LookOptions& options;
  const size_t threads;
  Watch watch;
  VisibleMap& map;
  std::atomic<bool> isDoubtful{false};
  LargeVector<int> cellOfArea;  // positions in `found`, of areas that stand for their set
  BlockList<Link> links;        // pieces after joining, between cells
  LargeVector<Found> found;
  std::vector<Bent> bent;
  LargeVector<int> bentCells;            // of `found`, positions in `bent`; empty if there are none
  LargeVector<Kernel::Vec3> directions;  // of vertices
  size_t foundVertices = 0;              // that pieces have; the others divide the end of the field
  LargeVector<int> outcomes;             // of links
  std::unique_ptr<const LinkPairs> atVertex;
  std::vector<std::pair<int, Link>> fieldArcs;  // by the link that begins them
  BlockList<Link> edges;
  bool edgesAreFewer = false;  // than chainLinks has made
  LargeVector<int> vertexNumbers;
  LargeVector<int> bentNumbers;  // of cells of the map, positions in `bent`; empty as above
  LargeVector<std::int32_t> cellPolygons;
  LargeVector<char> severalPolygons;
  LargeVector<double> turns;  // of cells
};

}  // namespace Lumivane::Visibility
