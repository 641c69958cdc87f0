#pragma once

#include "visibility/LookPolygons.h"
#include "visibility/MapParts.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// The map of a tile in which few edges are left.
///
/// A line sweeps over the tile from left to right and stops where an edge begins, ends or crosses
/// another one. Between two stops the edges that span the tile there have one order, and between
/// neighbours in it lies a gap, whose polygons are known by counting edges from below. The nearest
/// of them is seen. A gap goes on over a stop if nothing around it changes.
///
/// Why no rounding can break it: the gaps between two stops fill the tile without overlap, whatever
/// order and height the edges are given; what is joined or bordered at a stop is found from the
/// heights of the gaps on both sides. Wrong by rounding are only heights, by about a unit of the
/// cube, 9e-16 rad. Which polygons cover a gap follows from the exact crossings of the tile's
/// corners and sides.
namespace Lumivane::Visibility {

/// A square or rectangle of a face. It holds the points with x0 < x <= x1 and y0 < y <= y1.
struct Tile {
  int face;
  Coordinate x0;
  Coordinate y0;
  Coordinate x1;
  Coordinate y1;
};

/// A polygon that has edges in a tile.
struct TileEntry {
  std::int32_t polygon;  // position in LookPolygons
  std::uint32_t firstSegment;
  std::uint32_t segmentCount;  // of positions in the list of segments
  bool coversCorner;           // the lower left one
};

/// What is in a tile: entries, their segments, and polygons that cover all of it.
struct TileContent {
  const TileEntry* entries = nullptr;
  size_t entryCount = 0;
  const std::uint32_t* segments = nullptr;
  const std::int32_t* covers = nullptr;
  size_t coverCount = 0;
};

/// Whether a part of the segment lies in the tile, without doubt at its border.
bool touchesTile(const Segment& s, const Tile& tile);

class TileSweep {
 public:
  TileSweep(const LookPolygons& lookPolygons, MapParts& mapParts)
      : polygons(lookPolygons), parts(mapParts) {}

  /// Appends the tile's areas and pieces, and gives what lies along its sides.
  Sides run(const Tile& sweptTile, const TileContent& content);

 private:
  using Word = std::uint64_t;
  static constexpr int LowerBorder = -1;
  static constexpr int UpperBorder = -2;

  // A polygon of the tile, with 1 / distance as a x + b y + c.
  struct Slot {
    double a, b, c;
    double error;
    std::int32_t position;
    std::int32_t layer;
    std::int32_t region;
    std::int32_t number;
  };
  // An edge of one polygon in a group.
  struct Owner {
    std::int32_t edge;
    std::int32_t slot;
    bool inner;
  };
  // A line that is swept over: all edges that coincide, or the line where two planes meet.
  struct Line {
    Coordinate x0, y0;  // a point of it, from which heights are told
    double slope;
    Coordinate xa, ya, xb, yb;    // the part in the tile
    bool togglesAtA, togglesAtB;  // it crosses the lower border there
    bool fixedA, fixedB;          // an end of the edge, not of the tile
    Coordinate tolerance;         // heights within it are one
    std::int32_t firstOwner, ownerCount;
    std::int32_t crossed[2];  // slots of the two planes; -1 for edges
  };
  struct Raw {
    const Segment* segment;
    std::int32_t slot;
  };
  struct Gap {
    int below;  // line, or LowerBorder
    int above;  // line, or UpperBorder
    bool empty;
    int area;
    std::int32_t slot;  // what is seen; -1 for the sky
    Coordinate since;   // where it begins
    int wallVertex;     // where the border above it begins, if there is one
  };
  // The order between two stops.
  struct Slab {
    std::vector<int> order;        // lines from below
    std::vector<Coordinate> low;   // their heights at the left stop
    std::vector<Coordinate> high;  // and at the right one
    std::vector<Gap> gaps;         // one more than lines
    std::vector<Word> masks;       // `words` for each gap
  };
  struct Mark {
    Coordinate y;
    Coordinate tolerance;
    int rank;    // the greatest gives its height to all that are one with it
    int vertex;  // -1 until asked for
    int joined;  // number of the point that it is part of
  };
  // What lies along a side now, and since where.
  struct OpenStretch {
    int area = -1;
    Coordinate since = 0;
    int vertex = -1;
  };
  struct PlanePair {
    std::int32_t a;
    std::int32_t b;
  };

  void gatherSlots(const TileContent& content);
  void gatherLines(const TileContent& content);
  void addLine(size_t firstRaw, size_t lastRaw);
  void clipLine(const Segment& s, Line& line, bool& alive) const;
  void addCrossingLine(const PlanePair& pair);
  void gatherStops();
  void addMeetings();
  void sweep();
  void prepareSlab(Coordinate from, Coordinate to);
  void sortActive(Coordinate from, Coordinate to);
  void placeGaps(Coordinate from, Coordinate to);
  void stopAt(Coordinate x, bool first, bool last);
  void placeMarks(size_t oldFrom, size_t oldTo, size_t newFrom, size_t newTo, Coordinate x);
  void joinAcross(Coordinate x, size_t oldFrom, size_t oldTo, size_t newFrom, size_t newTo);
  void sideStretches(SideList& side, const Slab& slab, bool isNew);
  void closeWalls(Coordinate x, size_t from, size_t to);
  void openWalls(Coordinate x, size_t from, size_t to);
  bool divides(const Gap& below, const Gap& above) const {
    return parts.regionOf(below.area) != parts.regionOf(above.area);
  }
  bool keepWall(size_t below, size_t above);
  void openGap(Gap& gap, const Word* mask, Coordinate from, Coordinate to, int areaBelow);
  void closeGap(const Gap& gap, const Word* mask, Coordinate to);
  void borderStretch(SideList& side, OpenStretch& open, int area, Coordinate x, int mark);
  std::int32_t seenAt(const Word* mask, double x, double y) const;
  bool isInFront(const Slot& s, const Slot& t, double x, double y) const;
  std::int32_t regionOf(std::int32_t slot) const {
    return slot < 0 ? SkyRegion : slots[static_cast<size_t>(slot)].region;
  }
  Coordinate heightAt(int line, Coordinate x) const;
  double heightAt(const Line& line, double x) const;
  int vertexOf(int mark, Coordinate x);
  void emitWall(int from, int to, const Gap& below, const Gap& above, size_t firstLine,
                size_t lastLine);
  void emitUpright(Mark& from, Mark& to, Coordinate x, int left, int right);
  void chooseSource(const Line& line, std::int32_t regionA, std::int32_t regionB, Piece& piece,
                    int& best) const;

  const LookPolygons& polygons;
  MapParts& parts;
  Tile tile{};
  CubeFace face{};
  size_t words = 1;
  std::vector<Slot> slots;
  std::vector<Word> cornerMask;
  std::vector<Raw> raws;
  std::vector<Owner> owners;
  std::vector<Line> lines;
  std::vector<Word> toggles;  // `words` for each line
  std::vector<PlanePair> cuts;
  std::vector<Coordinate> breaks;  // where an upright crossing line cuts all gaps
  std::vector<Coordinate> stops;
  std::vector<int> starts;  // lines by xa
  size_t nextStart = 0;
  std::vector<std::pair<Coordinate, int>> lowerToggles;  // by x
  size_t nextToggle = 0;
  std::vector<Word> lowerMask;
  std::vector<int> active;
  std::vector<std::pair<double, int>> keys;
  Slab old;
  Slab now;
  std::vector<Mark> marks;
  std::vector<int> oldMarks;  // of the borders of the changed gaps, from below
  std::vector<int> newMarks;
  std::vector<int> kept;  // lowest lines of walls that go on over a stop
  Sides sides;
  OpenStretch lower;  // along the lower side
  OpenStretch upper;
  bool planesCross = false;
};

}  // namespace Lumivane::Visibility
