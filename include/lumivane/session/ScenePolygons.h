#pragma once

#include <lumivane/export.h>
#include <lumivane/session/ViewSettings.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Lumivane::Session {

/// Flat polygons as plain arrays, from which `LoadedScene::fromPolygons` makes a scene. A value.
///
/// An array with "[P]" has one element for each point, one with "[N]" one for each polygon, and one
/// with "[C]" one for each corner of all polygons. The arrays that may be empty say what that
/// means.
struct LUMIVANE_EXPORT ScenePolygons {
  /// Which side of a polygon is seen. To show both, give it twice, once the other way round.
  enum class Seen {
    Clockwise,        ///< the one from which its corners run clockwise, as in scene files
    CounterClockwise  ///< the one from which they run counter-clockwise, as in most mesh formats
  };

  std::vector<Vector> points;  ///< [P] x, y and z in scene units
  /// [N + 1] Polygon i has the corners from position `offsets[i]` up to, but without,
  /// `offsets[i + 1]`, at least three; it is closed implicitly. The first is 0, the last C.
  std::vector<std::size_t> offsets{0};
  std::vector<int> corners;  ///< [C] positions from 0 in `points`
  /// [N] The object of each polygon: a position from 0 in `objectIds`. Polygon k of an object
  /// becomes its region and its face k, counted from 1. Empty: all belong to object 0.
  std::vector<int> objects;
  /// The ids, all different and none empty. Empty: "object 1" and so on, as many as `objects`
  /// names.
  std::vector<std::string> objectIds;
  /// [N] Red, green, blue and opacity, 0 to 255 each. Empty: all are light grey.
  std::vector<std::array<std::uint8_t, 4>> colors;
  /// [C] 1 if the edge from this corner to the next one is a docking edge (an inner edge that is
  /// not drawn). Empty: all are drawn.
  std::vector<std::uint8_t> docking;
  Seen seen = Seen::Clockwise;  ///< for all polygons

  /// Appends a polygon with its object and no more: `colors` and `docking` are left as they are.
  void add(const std::vector<int>& polygonCorners, int object = 0);
  /// Appends the 8 points and 6 polygons of a box along the axes that is seen from outside, by
  /// `add`, in the order low x, high x, low y, high y, low z, high z.
  void addBox(const Vector& low, const Vector& high, int object = 0);
};

}  // namespace Lumivane::Session
