#pragma once

#include "visibility/LookPolygons.h"
#include "visibility/TileContent.h"
#include "visibility/TilePlanes.h"

#include <algorithm>
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
  /// Of heights on one line: that of the slope SteepestTolerance and of all steeper lines.
  static constexpr Coordinate SteepestTolerance = 65536;
  static constexpr Coordinate GreatestTolerance = Snap * SteepestTolerance;

  /// An edge of one polygon on a line.
  struct Owner {
    std::int32_t edge;
    std::int32_t slot;
    bool inner;
  };
  /// All edges that coincide, or the line where two planes meet.
  struct Line {
    Coordinate x0, y0;  // a point of it, from which heights are measured
    double slope;
    Coordinate xa, ya, xb, yb;    // the part in the tile
    Coordinate tolerance;         // heights within it are one
    bool togglesAtA, togglesAtB;  // it crosses the lower border there
    bool fixedA, fixedB;          // an end of the edge, not of the tile
    std::int32_t firstOwner, ownerCount;
    std::int32_t crossed[2];  // slots of the two planes; -1 for edges
  };
  /// The order between two stops. Gap k lies below line k of it.
  struct Order {
    std::vector<int> lines;   // from below
    std::vector<char> empty;  // gaps too narrow to be any, one more than lines

    size_t gapCount() const { return empty.size(); }
    bool isEmpty(size_t gap) const { return empty[gap] != 0; }
    int below(size_t gap) const { return gap == 0 ? LowerBorder : lines[gap - 1]; }
    /// The line or border below a gap, or above the last.
    int border(size_t number) const { return number < gapCount() ? below(number) : UpperBorder; }
    int above(size_t gap) const { return gap == lines.size() ? UpperBorder : lines[gap]; }
    void clear();
  };
  /// What changes at a stop: gaps from `from` up to `oldTo` of the order before it become those
  /// from `from` up to `newTo` of the order behind it. The others stay as they are.
  struct Change {
    Coordinate x;
    Coordinate next;  // the stop after it
    bool first;       // on the left side of the tile, before which there is nothing
    bool last;        // on its right side
    size_t from;
    size_t oldTo;
    size_t newTo;
  };

  explicit TileLines(const LookPolygons& lookPolygons) : polygons(lookPolygons) {}

  /// Takes the edges of a tile.
  void gather(const Tile& sweptTile, const TileContent& content, const TilePlanes& planes);
  /// Goes back to the edges.
  void dropCrossingLines();
  /// Adds the line on which two planes are at one distance.
  void addCrossingLine(const TilePlanes& planes, std::int32_t slotA, std::int32_t slotB);
  /// Adds a stop at which all gaps change, until the crossing lines are dropped.
  void addBreak(Coordinate x) { breaks.push_back(x); }

  /// Goes before the left side of the tile.
  void start();
  /// Goes to the next stop at which anything changes; the first and the last are the sides of the
  /// tile. \return false behind the last one
  bool advance();
  const Change& change() const { return here; }

  const Order& before() const { return old; }
  const Order& behind() const { return now; }
  /// What covers a gap, of those that change before the stop.
  const MaskWord* maskBefore(size_t gap) const { return &oldMasks[(gap - here.from) * wordCount]; }
  /// What covers a gap behind the stop.
  const MaskWord* maskBehind(size_t gap) const { return &masks[gap * wordCount]; }

  const std::vector<Line>& all() const { return lines; }
  const Line& operator[](int line) const { return lines[static_cast<size_t>(line)]; }
  const Owner* ownersOf(const Line& line) const {
    return owners.data() + static_cast<size_t>(line.firstOwner);
  }
  Coordinate heightAt(int line, Coordinate x) const;
  /// Whether the heights of a line or border at whole numbers say little about where it is: it may
  /// pass many others between two of them.
  bool isSteep(int line) const { return line >= 0 && (*this)[line].tolerance >= GreatestTolerance; }
  /// Heights from the lowest to the highest.
  struct Heights {
    Coordinate low;
    Coordinate high;
  };
  /// Those of a line from one unit before a place up to one behind it.
  Heights wayAround(int line, Coordinate x) const;
  /// Of a line or a border, without rounding.
  double exactHeightAt(int line, double x) const { return courseOf(line).at(x); }

 private:
  struct Raw {
    Coordinate x0;
    const Segment* segment;
    std::int32_t slot;
  };
  // What is asked of a line or a border at every stop.
  struct Course {
    double x0, y0, slope;
    double least, most;
    double tolerance;
    double end;  // where it ends

    double at(double x) const { return std::max(least, std::min(most, y0 + slope * (x - x0))); }
  };
  // How far a line or border lies above another one.
  struct Span {
    double tolerance;  // heights within it are one
    double end;        // where the first of the two ends
    double width;      // at the stop
    double last;       // at the end
  };
  struct Meeting {
    Coordinate x;
    int below;
    int above;
  };

  // A gap that is empty, and one that is not yet wide enough.
  static constexpr char Empty = 1;
  static constexpr char Opening = 2;
  static constexpr int FirstCourse = 2;  // of the lines

  void addLine(size_t firstRaw, size_t lastRaw);
  bool clipLine(const Segment& s, Line& line) const;
  Coordinate nextStop() const;
  void enterStop(Coordinate x);
  template <class List>
  void fitChange(List& list, size_t unit, size_t shift) const;
  void followChange();
  bool toggleLower(Coordinate x);
  void removeLines(Coordinate x);
  void insertLines(Coordinate x);
  void crossLines(Coordinate x);
  void checkOrder(Coordinate x);
  bool goesAbove(int line, int other, double x) const;
  Span spanBetween(int below, int above, double x) const;
  static bool mustSwap(const Span& span);
  void addMeeting(int below, int above, Coordinate x);
  Coordinate steepMeeting(int below, int above, Coordinate x) const;
  void swapLines(size_t below);
  void touch(size_t below, size_t above);
  void touchEnd(int line, Coordinate y, size_t place);
  bool findChange(bool sameLower);
  size_t countNarrow(size_t from, size_t to, double x) const;
  void changeWidths();
  void extendUpwards();
  bool placeMasks();
  bool placeGaps();
  char stateOfGap(size_t gap) const;
  void addState(size_t gap);
  double narrowingOf(const Span& span) const;
  void replaceGaps();
  bool finish();
  const Course& courseOf(int line) const { return courses.data()[line + FirstCourse]; }

  const LookPolygons& polygons;
  Tile tile{};
  size_t wordCount = 1;
  std::vector<MaskWord> cornerMask;
  std::vector<Raw> raws;
  std::vector<Owner> owners;
  std::vector<Line> lines;
  size_t edgeLines = 0;
  std::vector<MaskWord> toggles;   // `words` for each line
  std::vector<Coordinate> breaks;  // stops at which all gaps change
  std::vector<Course> courses;     // of the upper border, the lower one, and the lines
  // What waits, each by x.
  std::vector<std::pair<Coordinate, int>> starts;
  std::vector<std::pair<Coordinate, int>> ends;
  std::vector<std::pair<Coordinate, int>> lowerToggles;
  size_t nextStart = 0;
  size_t nextEnd = 0;
  size_t nextToggle = 0;
  size_t nextBreak = 0;
  std::vector<Meeting> meetings;  // a heap
  std::vector<MaskWord> lowerMask;
  Change here{};
  bool touched = false;
  size_t sameBelow = 0;  // lines that no step has touched at the stop, from below
  size_t sameAbove = 0;  // and from above
  Order old;
  Order now;
  std::vector<MaskWord> masks;     // `words` for each gap
  std::vector<MaskWord> oldMasks;  // of the changed gaps
  std::vector<MaskWord> newMasks;
  std::vector<char> newStates;
  std::vector<double> narrowFrom;  // for each gap: from there on its state is to be looked at
  std::vector<double> newNarrowings;
  // Of the gaps between lines that checkOrder has looked at, by gap.
  std::vector<Span> spans;
  size_t spansFrom = 0;
  size_t spansTo = 0;
};

}  // namespace Lumivane::Visibility
