#pragma once

#include "visibility/LookPolygons.h"
#include "visibility/TileContent.h"
#include "visibility/TilePlanes.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/// The lines of a tile, and their order from stop to stop of a line that sweeps over it from left
/// to right and stops where one begins, ends or crosses another.
namespace Lumivane::Visibility {

/// Whether a part of the segment lies in the tile, without doubt at its border.
bool touchesTile(const Segment& s, const Tile& tile);

class TileLines {
 public:
  static constexpr int LowerBorder = -1;
  static constexpr int UpperBorder = -2;

  /// An edge of one polygon on a line.
  struct Owner {
    std::int32_t edge;
    std::int32_t slot;
    bool inner;
  };
  /// All edges that coincide, or the line where two planes meet.
  struct Line {
    Coordinate x0, y0;  // a point of it, from which heights are told
    double slope;
    Coordinate xa, ya, xb, yb;    // the part in the tile
    Coordinate tolerance;         // heights within it are one
    bool togglesAtA, togglesAtB;  // it crosses the lower border there
    bool fixedA, fixedB;          // an end of the edge, not of the tile
    std::int32_t firstOwner, ownerCount;
    std::int32_t crossed[2];  // slots of the two planes; -1 for edges
  };
  /// The order between two stops. Gap k lies below line k of it.
  struct Slab {
    std::vector<int> order;        // lines from below
    std::vector<Coordinate> low;   // their heights at the left stop
    std::vector<Coordinate> high;  // and at the right one
    std::vector<char> empty;       // gaps too narrow to be any
    std::vector<MaskWord> masks;   // what covers each gap

    size_t gapCount() const { return empty.size(); }
    int below(size_t gap) const { return gap == 0 ? LowerBorder : order[gap - 1]; }
    int above(size_t gap) const { return gap == order.size() ? UpperBorder : order[gap]; }
    void clear();
  };

  explicit TileLines(const LookPolygons& lookPolygons) : polygons(lookPolygons) {}

  /// Takes the edges of a tile.
  void gather(const Tile& sweptTile, const TileContent& content, const TilePlanes& planes);
  /// Goes back to the edges.
  void dropCrossingLines();
  /// Adds the line on which two planes are at one distance.
  void addCrossingLine(const TilePlanes& planes, std::int32_t slotA, std::int32_t slotB);

  /// Finds the stops, the first and last of which are the sides of the tile, and goes before the
  /// first one.
  void start();
  const std::vector<Coordinate>& allStops() const { return stops; }
  /// Makes the slab up to the next stop that of the left side, and the one behind it that of the
  /// right side.
  void advance(Coordinate from, Coordinate to);
  /// Behind the last stop there is none.
  void finish();

  /// On the left and on the right side of the stop.
  const Slab& before() const { return old; }
  const Slab& behind() const { return now; }
  /// How many gaps from below, and from above, are the same on both sides.
  size_t samePrefix() const { return prefix; }
  size_t sameSuffix() const { return suffix; }

  size_t words() const { return wordCount; }
  const MaskWord* maskBefore(size_t gap) const { return &old.masks[gap * wordCount]; }
  const MaskWord* maskBehind(size_t gap) const { return &now.masks[gap * wordCount]; }

  const std::vector<Line>& all() const { return lines; }
  const Line& operator[](int line) const { return lines[static_cast<size_t>(line)]; }
  const Owner* ownersOf(const Line& line) const {
    return owners.data() + static_cast<size_t>(line.firstOwner);
  }
  Coordinate heightAt(int line, Coordinate x) const;
  /// Of a line or a border, without rounding.
  double exactHeightAt(int line, double x) const;

 private:
  struct Raw {
    Coordinate x0;
    const Segment* segment;
    std::int32_t slot;
  };
  // What is asked of a line between any two stops.
  struct Course {
    double x0, y0, slope;
    double least, most;
    Coordinate here;  // its height at the stop
    Coordinate xb;
  };

  void addLine(size_t firstRaw, size_t lastRaw);
  bool clipLine(const Segment& s, Line& line) const;
  void addMeetings();
  void orderLines(Coordinate from, Coordinate to);
  void placeGaps(Coordinate to);
  void findSame(bool cut);
  void placeMasks();

  const LookPolygons& polygons;
  Tile tile{};
  size_t wordCount = 1;
  std::vector<MaskWord> cornerMask;
  std::vector<Raw> raws;
  std::vector<Owner> owners;
  std::vector<Line> lines;
  size_t edgeLines = 0;
  std::vector<MaskWord> toggles;   // `words` for each line
  std::vector<Coordinate> breaks;  // where an upright crossing line cuts all gaps
  std::vector<Coordinate> stops;
  std::vector<Course> courses;                     // of the lines
  std::vector<std::pair<Coordinate, int>> starts;  // lines by xa
  size_t nextStart = 0;
  std::vector<std::pair<Coordinate, int>> lowerToggles;  // by x
  size_t nextToggle = 0;
  std::vector<MaskWord> lowerMask;
  std::vector<std::pair<double, int>> keys;
  Slab old;
  Slab now;
  size_t prefix = 0;
  size_t suffix = 0;
};

}  // namespace Lumivane::Visibility
