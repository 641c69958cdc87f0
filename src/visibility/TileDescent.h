#pragma once

#include "visibility/LookPolygons.h"
#include "visibility/MapParts.h"
#include "visibility/TileOcclusion.h"
#include "visibility/TileStart.h"
#include "visibility/TileSweep.h"
#include "visibility/TileTeam.h"

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

class TileDescent final : private PolygonUser {
 public:
  TileDescent(LookPolygons& lookPolygons, MapParts& mapParts, TileTeam& tileTeam);
  TileDescent(const TileDescent&) = delete;
  TileDescent& operator=(const TileDescent&) = delete;
  ~TileDescent() { polygons.removeUser(); }

  /// Appends the map of a tile, and gives what lies along its sides. Throws Cancelled and
  /// TileTeam::Stopped.
  Sides run(const TileStart& start);
  /// Appends the map of a tile that another thread has taken. Does other tiles while that is busy.
  Sides resultOf(TileJob& job);
  /// Does a job of the team.
  static void run(TileJob& job, LookPolygons& lookPolygons, TileTeam& tileTeam);

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
    HalfSpace sides[5];    // see SideRange
    Kernel::Vec3 axes[3];  // of the face: u, v and forward, in the scene's
    double size;           // of the tile, in units of the distance to the face
  };
  // Whether the screen of the content is new, or all has been compared with it already.
  enum class Screening { Known, New };
  using Progress = DescentProgress;
  // The half of a tile that waits while the other one is looked at.
  struct HighHalf {
    const Tile& parent;
    const Content& content;  // of the parent
    size_t segments;         // in the parent
    Progress progress;
    Tile tile;
    SideRange newSides;
    TileJob* job;  // null while it has not been offered to other threads
  };

  // Boxes of the content lie within all sides but the new ones.
  Sides descend(const Tile& tile, Content content, Progress progress, SideRange newSides);
  Sides split(const Tile& tile, const Content& content, Progress progress);
  Sides highHalf(HighHalf& half);
  Sides descendHalf(const HighHalf& half, const Tile& tile, SideRange newSides);
  void offerLargestHalf();
  bool isWorthGiving(const HighHalf& half);
  Sides sweepTile(const Tile& tile, const Content& content);
  Sides uniformTile(const Tile& tile, std::int32_t cover);
  Content wholeFace(const Tile& tile);
  Content contentOf(const TileStart& start);
  TileStart startOf(const Tile& tile, const Content& content) const;
  void addPositions(std::vector<std::int32_t>& positions) const override;
  void follow(const MovedPolygons& moved) override;
  void truncate(const Content& content);  // what came after the beginning of the content
  Content narrowed(const Tile& parent, const Tile& tile, const Content& content);
  void refineNodes(const Tile& tile, Content& content, double limit, SideRange sides);
  void addPolygon(const Tile& tile, Content& content, std::int32_t number);
  void addCover(const Tile& tile, Content& content, std::int32_t position);
  void dropHidden(const Tile& tile, Content& content, Screening screening);
  bool placeScreen(const Tile& tile, Content& content);
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
  TileTeam& team;
  std::vector<HighHalf*> waitingHalves;  // the largest first
  size_t offeredHalves = 0;              // of those, from the front
  std::vector<TileEntry> entries;
  std::vector<SeenNode> nodes;
  std::vector<std::int32_t> covers;
  std::vector<std::uint32_t> segments;
  std::vector<SeenNode> waiting;        // nodes that are being refined
  std::vector<std::int32_t> openNodes;  // scratch
  Pyramid pyramid{};
};

}  // namespace Lumivane::Visibility
