#pragma once

#include "visibility/IndexBuilder.h"
#include "visibility/LookPolygons.h"
#include "visibility/Polygons.h"
#include "visibility/TileContent.h"
#include "visibility/TileLines.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

/// What one tile of the first face of the cube holds, without the descent that finds it.
namespace Lumivane::Visibility::Samples {

/// The point of a scene that an eye in the origin sees at (x, y) of the first face, each from -1 to
/// 1, at a depth along the face's axis.
inline Vector onFace(double x, double y, double depth) {
  const CubeFace& f = CubeFaces[0];
  FrameVector v{};
  v.c[f.axis] = f.sign * depth;
  v.c[f.u] = x * depth;
  v.c[f.v] = y * depth;
  const Kernel::Vec3 p = toScene(v);
  return {p.x, p.y, p.z};
}

/// A rectangle of the face, at one depth on its left and another on its right.
inline Outline rectangle(double x0, double y0, double x1, double y1, double left, double right) {
  return {onFace(x0, y0, left), onFace(x0, y1, left), onFace(x1, y1, right), onFace(x1, y0, right)};
}

inline Outline rectangle(double x0, double y0, double x1, double y1, double depth) {
  return rectangle(x0, y0, x1, y1, depth, depth);
}

inline Coordinate unitsOf(double part) {
  return static_cast<Coordinate>(part * static_cast<double>(CubeHalf));
}

class TileScene {
 public:
  /// Polygons are seen from both sides.
  TileScene(const PolygonScene& scene, const Tile& wantedTile) : tile(wantedTile) {
    buildIndex(scene, {}, state);
    setup.state = &state;
    setup.twoSided = true;
    setup.hemisphere = false;
    polygons = std::make_unique<LookPolygons>(setup);
    for (std::size_t i = 0; i < state.polygonCount(); ++i)
      add(polygons->find(static_cast<std::int32_t>(i)));
  }

  TileContent content() const {
    return {entries.data(), entries.size(), segments.data(), covers.data(), covers.size()};
  }

  /// Whether a point of the face is in a polygon, by its position.
  bool holds(std::int32_t position, Coordinate x, Coordinate y) const {
    const LookPolygon& polygon = (*polygons)[position];
    const auto face = static_cast<std::size_t>(tile.face);
    std::vector<std::uint32_t> all;
    for (std::uint32_t i = polygon.firstSegment[face]; i < polygon.firstSegment[face + 1]; ++i)
      all.push_back(i);
    const bool corner = (polygon.cornerParity >> tile.face & 1) != 0;
    return corner != crossingParity(
                         all,
                         [this](std::uint32_t i) -> const Segment& { return polygons->segment(i); },
                         -CubeHalf, -CubeHalf, x, y);
  }

  Tile tile;
  IndexState state;
  LookSetup setup;
  std::unique_ptr<LookPolygons> polygons;
  std::vector<TileEntry> entries;
  std::vector<std::uint32_t> segments;
  std::vector<std::int32_t> covers;

 private:
  void add(std::int32_t position) {
    if (position == LookPolygons::NotSeen) return;
    const LookPolygon& polygon = (*polygons)[position];
    const auto face = static_cast<std::size_t>(tile.face);
    const auto first = static_cast<std::uint32_t>(segments.size());
    for (std::uint32_t i = polygon.firstSegment[face]; i < polygon.firstSegment[face + 1]; ++i)
      if (touchesTile(polygons->segment(i), tile)) segments.push_back(i);
    const auto count = static_cast<std::uint32_t>(segments.size()) - first;
    const bool covered = holds(position, tile.x0, tile.y0);
    if (count > 0)
      entries.push_back({position, first, count, covered});
    else if (covered)
      covers.push_back(position);
  }
};

}  // namespace Lumivane::Visibility::Samples
