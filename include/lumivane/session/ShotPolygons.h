#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Lumivane::Session {

/// The polygons of a shot as plain arrays, in the order in which they are drawn: what comes later
/// lies in front of what comes earlier. The arrays own all that they hold, and stay as they are
/// whatever becomes of shot and scene.
///
/// With N polygons that have P points in all, an array with "[N]" has one element for each polygon
/// and one with "[P]" one for each point.
struct ShotPolygons {
  /// [P] The corners of all polygons, one polygon after the other, in plane coordinates: x to the
  /// right and y upward, the forward direction at (0, 0), the field within -1 to 1. Each polygon is
  /// closed implicitly.
  std::vector<std::array<double, 2>> points;
  /// [N + 1] Polygon i has the points from position `offsets[i]` up to, but without,
  /// `offsets[i + 1]`; the first is 0, the last P.
  std::vector<std::size_t> offsets;
  /// [P] 1 if the edge from this point to the next one of its polygon is drawn; 0 for a docking
  /// edge, which only joins two pieces of one surface.
  std::vector<std::uint8_t> drawnEdges;

  std::vector<int> objects;  ///< [N] where it is from: its object, from 1 in the scene's objects
  std::vector<int> faces;    ///< [N] its face, from 1 in the faces that the object has in the scene
  std::vector<int> regions;  ///< [N] its region, from 1 in the object's regions
  /// [N] What it is filled with: red, green, blue and opacity, 0 to 255 each. The colour that a
  /// scale gave it, or else that of its brush.
  std::vector<std::array<std::uint8_t, 4>> colors;
  /// The id of object i + 1, as `idText` shows it.
  std::vector<std::string> objectIds;

  /// How many polygons there are: N.
  std::size_t count() const { return objects.size(); }
};

}  // namespace Lumivane::Session
