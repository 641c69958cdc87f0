#pragma once

#include "visibility/LookPolygons.h"
#include "visibility/TileContent.h"
#include "visibility/TileOcclusion.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Lumivane::Visibility {

/// A box of the hierarchy from the eye.
struct SeenBox {
  double low[3];
  double high[3];
  double reach;           // greatest magnitude of a coordinate
  double squareDistance;  // of its nearest point; along parallel lines, from in front of all
  double squareSize;      // of its diagonal, in units of its distance, or as wide as it looks
};

/// A node of the hierarchy that may be seen in a tile.
struct SeenNode {
  std::int32_t number;
  SeenBox box;
};

/// Sides of the pyramid that a tile is seen in, by number: before the eye, then left, right, lower
/// and upper.
struct SideRange {
  int from;
  int to;
};
constexpr SideRange AllSides{0, 5};
constexpr SideRange NoSides{0, 0};
constexpr int RightSide = 2;  // the left one before it
constexpr int UpperSide = 4;  // the lower one before it

/// How far a descent has come.
struct DescentProgress {
  int level;
  std::size_t segments;  // in the last tile above that had twice as many
  int stalled;           // levels since
  int unscreened;        // levels since the last screen; less after one that hid nothing
};

/// What may be seen in a tile, for a thread that knows polygons by other positions than the one
/// that has found it: so here they have their numbers, and segments those within their polygon.
struct TileStart {
  Tile tile{};
  bool wholeFace = false;  // nothing is known yet
  DescentProgress progress{0, ~std::size_t{0}, 0, 0};
  SideRange newSides = AllSides;
  std::vector<TileEntry> entries;
  std::vector<std::uint32_t> segments;
  std::vector<std::int32_t> covers;
  std::vector<SeenNode> nodes;
  TileOcclusion::LoneScreen screen;
};

}  // namespace Lumivane::Visibility
