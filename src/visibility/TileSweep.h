#pragma once

#include "visibility/EdgeOrder.h"
#include "visibility/LookPolygons.h"
#include "visibility/MapParts.h"
#include "visibility/TileContent.h"
#include "visibility/TileLines.h"
#include "visibility/TilePlanes.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// The map of a tile in which few edges are left.
///
/// A line sweeps over the tile from left to right and stops where an edge begins, ends or crosses
/// another one. Between two stops the edges that span the tile there have one order, and between
/// neighbours in it lies a gap, whose polygons are known by counting edges from below. The nearest
/// of them is seen. A gap goes on over a stop if nothing around it changes, so that a stop costs
/// what changes there and not what the line passes.
///
/// Why no rounding can break it: the gaps between two stops fill the tile without overlap, whatever
/// order and height the edges are given; what is joined or bordered at a stop is found from the
/// heights of the gaps on both sides. Wrong by rounding are only heights, by about a unit of the
/// cube, 9e-16 rad. Which polygons cover a gap follows from the exact crossings of the tile's
/// corners and sides.
namespace Lumivane::Visibility {

class TileSweep {
 public:
  TileSweep(const LookPolygons& lookPolygons, MapParts& mapParts)
      : allParts(mapParts),
        sources(*lookPolygons.setup().state),
        planes(lookPolygons),
        lines(lookPolygons) {}

  /// Appends the tile's areas and pieces, and gives what lies along its sides.
  Sides run(const Tile& sweptTile, const TileContent& content);

 private:
  struct Gap {
    int area;           // -1 for an empty gap
    std::int32_t slot;  // what is seen; -1 for the sky
    Coordinate since;   // where it begins
    int wallVertex;     // where the border above it begins, if there is one
  };
  // The height of a border of a gap at a stop.
  struct Mark {
    Coordinate y;
    Coordinate tolerance;
    int rank;  // the greatest gives its height to all that are one with it
  };
  // Marks that are one.
  struct Point {
    Coordinate y;
    int vertex;  // -1 until asked for
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
  using Change = TileLines::Change;

  void sweep();
  void stopAt(const Change& change);
  void replaceGaps(const Change& change);
  void findSeen(const Change& change);
  // Any gap before the stop.
  const Gap& gapBefore(size_t gap) const {
    const Change& change = lines.change();
    return gap < change.from    ? gaps[gap]
           : gap < change.oldTo ? oldGaps[gap - change.from]
                                : gaps[gap - change.oldTo + change.newTo];
  }
  bool passHidden(const Change& change);
  bool anySteep(const TileLines::Order& order, size_t from, size_t to) const;
  size_t endOfArea(const Change& change, size_t gap) const;
  void openAreas(const Change& change);
  int addArea(std::int32_t slot);
  void placeMarks(const Change& change);
  Mark markAt(const TileLines::Order& order, size_t border, Coordinate x) const;
  void addMarks(const TileLines::Order& order, size_t from, size_t to, Coordinate x);
  void placeSteepMarks(const TileLines::Order& order, size_t firstMark, size_t firstBorder,
                       Coordinate x);
  void joinMarks(size_t oldCount);
  void joinAcross(const Change& change);
  template <class AreaOf>
  static int areaAcross(AreaOf areaOf, const TileLines::Order& order, size_t gap);
  void sideStretches(SideList& side, const std::vector<Gap>& gaps, const std::vector<int>& borders,
                     Coordinate x);
  template <class Visit>
  void forWalls(const TileLines::Order& order, size_t from, size_t to, Visit visit) const;
  void closeWalls(const Change& change);
  void openWalls(const Change& change);
  bool divides(const Gap& below, const Gap& above) const {
    return parts.regionOf(below.area) != parts.regionOf(above.area);
  }
  bool keepWall(size_t below, size_t above);
  void extendBorders(const Change& change);
  void closeGap(size_t gap);
  bool addCut(const PlanePair& pair);
  void addStopBehind(const PlanePair& pair, Coordinate since);
  void borderStretch(SideList& side, OpenStretch& open, int area, Coordinate x, int point);
  std::int32_t regionOf(std::int32_t slot) const {
    return slot < 0 ? SkyRegion : planes[slot].region;
  }
  int vertexOf(int point, Coordinate x);
  void emitWall(int vertexFrom, int vertexTo, size_t below, size_t above);
  void emitUpright(int from, int to, Coordinate x, int left, int right);
  void chooseSource(const TileLines::Line& line, std::int32_t regionA, std::int32_t regionB,
                    Piece& piece, int& best) const;

  MapParts& allParts;
  TileParts parts;
  SourceOrder sources;
  TilePlanes planes;
  TileLines lines;
  Tile tile{};
  std::vector<PlanePair> cuts;
  std::vector<MaskWord> isCut;          // a mask for each slot, unless there are no cuts
  std::vector<Coordinate> stopsBehind;  // at which what is seen is found out again
  std::vector<Gap> gaps;                // behind the stop
  std::vector<Gap> oldGaps;             // of those before it that change
  std::vector<Mark> marks;
  std::vector<TileLines::Heights> heights;  // scratch
  std::vector<Point> points;
  std::vector<int> oldPoints;  // of the borders of the changed gaps, from below
  std::vector<int> newPoints;
  int wallFromBelow = -1;  // where that above the last gap that stays began, if another begins now
  std::vector<int> kept;   // lowest lines of walls that go on over a stop
  Sides sides;
  OpenStretch lower;  // along the lower side
  OpenStretch upper;
  bool planesCross = false;
};

}  // namespace Lumivane::Visibility
