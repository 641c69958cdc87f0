#pragma once

#include "visibility/LookPolygons.h"
#include "visibility/MapParts.h"
#include "visibility/TileOcclusion.h"
#include "visibility/TileSweep.h"

#include <atomic>
#include <cstdint>
#include <vector>

/// Descends from a tile of a face to smaller ones, together with the hierarchy of boxes, until few
/// edges are left in each; what lies behind a polygon that covers a whole tile is left out there
/// (J. E. Warnock, 1969; N. Greene, M. Kass and G. Miller, Hierarchical Z-Buffer Visibility, 1993).
/// So what is hidden costs hardly anything.
namespace Lumivane::Visibility {

/// Joins two tiles that touch along an upright line (alongX) or a level one; `low` is the left or
/// lower one.
Sides joinTiles(MapParts& parts, const Tile& low, const Sides& lowSides, const Sides& highSides,
                bool alongX);

/// A box of the hierarchy from the eye.
struct SeenBox {
  double low[3];
  double high[3];
  double reach;           // greatest magnitude of a coordinate
  double squareDistance;  // of its nearest point; along parallel lines, from in front of all
  double squareSize;      // of its diagonal, in units of its distance, or as wide as it looks
};

class TileDescent {
 public:
  /// `cancelled` may be null.
  TileDescent(LookPolygons& lookPolygons, MapParts& mapParts, const std::atomic<bool>* cancelled);

  /// Appends the map of a tile, and gives what lies along its sides. Throws Cancelled.
  Sides run(const Tile& tile);

 private:
  // Ranges of the stacks below: what may be seen in a tile.
  struct Content {
    size_t entries, entriesEnd;
    size_t nodes, nodesEnd;
    size_t covers, coversEnd;
    size_t segments;  // all from here on to the end belong to the entries
    TileOcclusion::Screen screen;
  };
  // A half space normal.p + constant > 0 of points p from the eye.
  struct HalfSpace {
    Kernel::Vec3 normal;
    double constant;
  };
  // What is seen in a tile lies in all of these: before the eye, and within the tile's sides.
  struct Pyramid {
    HalfSpace sides[5];    // before the eye, then left, right, lower and upper
    Kernel::Vec3 axes[3];  // of the face: u, v and forward, in the scene's
    double size;           // of the tile, in units of the distance to the face
  };
  // Sides of a pyramid by number.
  struct SideRange {
    int from;
    int to;
  };
  static constexpr SideRange AllSides{0, 5};
  static constexpr SideRange NoSides{0, 0};
  static constexpr int RightSide = 2;  // the left one before it
  static constexpr int UpperSide = 4;  // the lower one before it
  struct SeenNode {
    std::int32_t number;
    SeenBox box;
  };
  // Whether the screen of the content is new, or all has been compared with it already.
  enum class Screening { Known, New };
  struct Progress {
    int level;
    size_t segments;  // in the last tile above that had twice as many
    int stalled;      // levels since
    int unscreened;   // levels since the last screen
  };

  // Boxes of the content lie within all sides but the new ones.
  Sides descend(const Tile& tile, Content content, Progress progress, SideRange newSides);
  Sides split(const Tile& tile, const Content& content, Progress progress);
  Sides sweepTile(const Tile& tile, const Content& content);
  Sides uniformTile(const Tile& tile, std::int32_t cover);
  Content narrowed(const Tile& parent, const Tile& tile, const Content& content);
  void refineNodes(const Tile& tile, Content& content, double limit, SideRange sides);
  void addPolygon(const Tile& tile, Content& content, std::int32_t number);
  void addCover(const Tile& tile, Content& content, std::int32_t position);
  void dropHidden(const Tile& tile, Content& content, Screening screening);
  void placeScreen(const Tile& tile, Content& content);
  SeenRange rangeOf(const SeenBox& box) const;
  bool hiddenByCover(const Tile& tile, const Content& content, std::int32_t position) const;
  bool hidden(const Tile& tile, const Content& content, const TileEntry& entry) const;
  bool hides(const Tile& tile, const LookPolygon& cover, const LookPolygon& polygon) const;
  SeenBox boxFromEye(std::int32_t number) const;
  bool hiddenByCover(const Content& content, const SeenBox& box) const;
  bool hidden(const Content& content, const SeenBox& box) const;
  bool misses(const SeenBox& box, SideRange sides) const;  // lies outside one of them
  size_t polygonsIn(const Content& content, size_t limit);
  bool isBundle(const Tile& tile, const Content& content) const;
  Pyramid pyramidOf(const Tile& tile) const;

  LookPolygons& polygons;
  MapParts& parts;
  TileSweep sweep;
  TileOcclusion occlusion;
  const IndexState& state;
  const std::atomic<bool>* cancelled;
  std::vector<TileEntry> entries;
  std::vector<SeenNode> nodes;
  std::vector<std::int32_t> covers;
  std::vector<std::uint32_t> segments;
  std::vector<SeenNode> waiting;        // nodes that are being refined
  std::vector<std::int32_t> openNodes;  // scratch
  Pyramid pyramid{};
};

}  // namespace Lumivane::Visibility
