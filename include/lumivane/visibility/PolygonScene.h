#pragma once

#include <lumivane/visibility/export.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace Lumivane::Scene {
class Scene3D;
}
namespace Lumivane::Session {
class LoadedScene;
}

namespace Lumivane::Visibility {

/// A point or direction of the scene: x, y, z.
using Vector = std::array<double, 3>;

/// What is seen somewhere: numbers from 1 as in the scene. The sky has 0 for all three; the face is
/// -1 for a region of no face.
struct Label {
  int object = 0;  ///< from 1 in the scene's objects; 0 for the sky
  int face = 0;    ///< from 1 in the object's faces; -1 if the region is of no face
  int region = 0;  ///< from 1 in the object's regions

  /// Whether all three numbers are equal.
  friend bool operator==(const Label& a, const Label& b) {
    return a.object == b.object && a.face == b.face && a.region == b.region;
  }
  /// The negation of ==.
  friend bool operator!=(const Label& a, const Label& b) { return !(a == b); }
};

/// Flat polygons as plain arrays: what a `SceneIndex` is made from.
///
/// Outline i has the corners `corners[offsets[i]]` up to, but without, `corners[offsets[i + 1]]`;
/// it is closed implicitly, and filled by the even-odd rule. It is seen from the side from which
/// its corners run clockwise.
struct PolygonScene {
  std::vector<Vector> points;        ///< in scene units
  std::vector<std::size_t> offsets;  ///< one more than there are outlines; the first is 0
  std::vector<int> corners;          ///< positions from 0 in `points`
  /// One for each outline, in the scene's order: by object, then by region. Empty: outline i is
  /// face -1, region i + 1 of object 1.
  std::vector<Label> labels;
  /// One for each corner: whether the edge that starts there is a docking edge (an inner edge that
  /// is not drawn). Empty: none is.
  std::vector<std::uint8_t> docking;
  /// The id of object i + 1, for tables. May be shorter than there are objects.
  std::vector<std::string> objectIds;
  /// One for each outline: its class, a position in `classNames`, or -1. Empty: no classes.
  std::vector<int> classes;
  std::vector<std::string> classNames;  ///< e.g. roof, wall, ground
};

/// All regions of a scene as plain arrays, those that a `SceneIndex` of the scene is made from.
/// What has no points, a null region included, is an outline without corners, so that labels and
/// regions match. \throws std::invalid_argument that names object and region for a point that is
/// not there, or
///         has a coordinate that is not finite or beyond 1e30
LUMIVANE_VISIBILITY_EXPORT PolygonScene polygonsOf(const Scene::Scene3D& scene);
/// The same of a loaded scene, with its classes.
LUMIVANE_VISIBILITY_EXPORT PolygonScene polygonsOf(const Session::LoadedScene& scene);

}  // namespace Lumivane::Visibility
