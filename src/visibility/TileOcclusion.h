#pragma once

#include "visibility/LookPolygons.h"
#include "visibility/TileContent.h"
#include "visibility/TileLines.h"
#include "visibility/TilePlanes.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

/// What several polygons hide together, as a row of house fronts hides a town of which no front
/// hides much.
///
/// The polygons that are seen at a few places of a tile are swept as if they were alone. In each
/// gap of that sweep one of them is known to be in front of what lies behind its plane. So a
/// polygon or a box that is behind in all gaps that it touches is hidden, whatever else is in the
/// tile: of the places nothing depends but how much is found.
namespace Lumivane::Visibility {

/// Where on a face a polygon or a box may be seen, and more than its 1 / distance there. In units
/// of the face, as `depthAt`.
struct SeenRange {
  double x0, y0, x1, y1;
  double bound;
};

class TileOcclusion {
  /// What is in front between two lines from x0 to x1.
  struct ScreenGap {
    double x0, x1;
    double below[2];  // heights at x0 and x1
    double above[2];
    double a, b, c;  // 1 / distance of what is in front
    double error;
    double floor;  // less than its 1 / distance; -infinity where nothing is
    std::int32_t layer;

    double slopes[2];  // of the lines below and above
    double middle[2];  // a point of it

    double belowAt(double x) const { return below[0] + slopes[0] * (x - x0); }
    double aboveAt(double x) const { return above[0] + slopes[1] * (x - x0); }
  };
  /// A little more than what a gap or a range takes: x from, y from, and negative, x to, y to.
  struct alignas(16) Frame {
    float least[4];

    Frame(double x0, double y0, double x1, double y1);
    Frame() = default;
    // Of the frame of a range that is turned around.
    bool meets(const Frame& turned) const {
#ifdef __SSE2__
      return _mm_movemask_ps(_mm_cmple_ps(_mm_load_ps(least), _mm_load_ps(turned.least))) == 0xF;
#else
      return (least[0] <= turned.least[0]) & (least[1] <= turned.least[1]) &
             (least[2] <= turned.least[2]) & (least[3] <= turned.least[3]);
#endif
    }
    // Ends before that range begins.
    bool isBefore(const Frame& turned) const { return least[2] > turned.least[2]; }
  };

 public:
  /// Some gaps, by number. Those of a tile hold for every part of it.
  struct Screen {
    std::size_t first = 0;
    std::size_t end = 0;
    double floor = -std::numeric_limits<double>::infinity();  // what is less is hidden
    Tile tile{};

    bool isEmpty() const { return first == end; }
  };
  /// A screen with its gaps, for another thread.
  class LoneScreen {
    friend class TileOcclusion;
    Screen screen;
    std::vector<ScreenGap> gaps;
    std::vector<Frame> frames;
  };

  explicit TileOcclusion(const LookPolygons& lookPolygons)
      : polygons(lookPolygons), planes(lookPolygons), lines(lookPolygons) {}

  /// The gaps of what is in front at some places of the tile; none if that hides nothing.
  Screen screenOf(const Tile& tile, const TileContent& content);
  std::size_t size() const { return gaps.size(); }
  /// Forgets all gaps from `count` on.
  void truncate(std::size_t count) {
    gaps.resize(count);
    frames.resize(count);
  }

  LoneScreen copyOf(const Screen& screen) const;
  /// Adds the gaps of a screen.
  Screen add(const LoneScreen& other);

  /// Whether an entry of the tile, by its number, is in front at one of the places.
  bool isChosen(std::size_t entry) const { return chosenNumbers[entry] != 0; }
  bool hides(const Screen& screen, const Tile& tile, const TileEntry& entry,
             const std::uint32_t* segments) const;
  bool hides(const Screen& screen, const SeenRange& range) const;

 private:
  // An edge of the polygon that is being asked about.
  struct Edge {
    double x0, y0, x1, y1;
    double slope;
    double crossing;  // where it crosses the lower side of the tile
    bool crosses;
  };
  // Neighbouring gaps of the sweep in which the same is in front, for so long as the same lines are
  // around them: edges that are hidden behind it divide no gap of a screen.
  struct Band {
    std::size_t from;  // gaps of the sweep
    std::size_t to;
    std::int32_t slot;
    int below;  // the lines around it
    int above;
    double since;

    bool goesOn(const Band& next) const {
      return slot == next.slot && below == next.below && above == next.above;
    }
  };

  static constexpr std::int32_t EmptyGap = -2;

  bool chooseInFront(const Tile& tile, const TileContent& content);
  void sweep(Screen& screen);
  void placeSlots(const TileLines::Change& change);
  void changeBands(const TileLines::Change& change, Screen& screen);
  void placeBands(std::size_t from, std::size_t to, double x);
  void close(const Band& band, double to, Screen& screen);
  template <class IsBehind>
  bool behindAll(const Screen& screen, const Frame& turned, IsBehind behind) const;
  static Frame turnedFrame(const SeenRange& range);
  static bool touches(const ScreenGap& gap, const SeenRange& range);
  void readEdges(const Tile& tile, const TileEntry& entry, const std::uint32_t* segments) const;
  bool reaches(const ScreenGap& gap, double tileX, double tileY, bool coversCorner) const;
  bool isBehind(const ScreenGap& gap, const SeenRange& range, const LookPolygon& polygon,
                const CubeFace& face) const;

  const LookPolygons& polygons;
  TilePlanes planes;
  TileLines lines;
  std::vector<ScreenGap> gaps;
  std::vector<Frame> frames;             // of each gap
  mutable std::vector<Edge> edges;       // scratch
  mutable std::size_t lastShown = 0;     // the gap in which something was seen last
  std::vector<std::int32_t> frontSlots;  // for each gap of the sweep, or EmptyGap
  std::vector<Band> bands;               // from below
  std::vector<Band> newBands;
  std::vector<TileEntry> chosen;
  std::vector<char> chosenNumbers;  // of entries, then covers
  std::vector<std::int32_t> chosenCovers;
};

}  // namespace Lumivane::Visibility
