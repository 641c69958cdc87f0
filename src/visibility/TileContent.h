#pragma once

#include "visibility/CubeFaces.h"

#include <cstddef>
#include <cstdint>

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
  std::size_t entryCount = 0;
  const std::uint32_t* segments = nullptr;
  const std::int32_t* covers = nullptr;
  std::size_t coverCount = 0;
};

}  // namespace Lumivane::Visibility
