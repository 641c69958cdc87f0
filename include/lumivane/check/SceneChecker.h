#pragma once

#include <lumivane/check/Finding.h>
#include <lumivane/export.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Scene {
class Scene3D;
}

namespace Lumivane::Check {

/// Looks for everything in a scene that would make a shot fail, be wrong or be surprising.
///
/// Reading is lenient: what is no point counts as (0, 0, 0), an unknown key as nothing. So a scene
/// can be wrong for long without a word; these checks say it. They change nothing.
///
/// Findings come in the order of the document: those of its text, then for each object its own and
/// those of its regions and faces. There are no more than `Most`, then one that says so, and
/// the first error if it comes later still.
class LUMIVANE_EXPORT SceneChecker {
 public:
  static constexpr int Most = 1000;  ///< findings reported in one check

  /// An edge that is shorter, in scene units, is reported.
  static constexpr double ShortestEdge = 0.0001;
  /// A point further off the plane of its region, in scene units, is reported; rounding of
  /// coordinates to 6 digits is allowed for.
  static constexpr double Flatness = 0.0001;
  /// The sine of an angle below which three points count as on one line.
  static constexpr double Straight = 1e-6;
  /// A larger coordinate is infinite in single precision, in which polygons are computed.
  static constexpr double LargestCoordinate = 0x1.fffffep127;
  /// Rounding of coordinates to single precision is reported where it exceeds this share of a
  /// region's shortest edge.
  static constexpr double Rounding = 1e-4;

  /// Checks the text of a scene file, then the scene in it as far as it can be read.
  ///
  /// \param json  the text as `IO::DataReader::readFileIntoString` gives it
  static std::vector<Finding> checkText(const std::string& json);

  /// Checks a scene in memory: all but what only a text can have wrong.
  static std::vector<Finding> check(Scene::Scene3D& scene);

  /// Only what makes shots of the scene fail or be wrong: numbers that point at nothing, corners
  /// that are not finite, null objects, no list of them, and objects of one id of which a later one
  /// can be seen. Quick: no shape is looked at.
  static std::vector<Finding> errors(Scene::Scene3D& scene);

  /// The share of a polygon that a shot can show at all, from 0 to 1, whatever the eye that looks
  /// at it from the side on which it is seen.
  ///
  /// A shot cuts a polygon of more than four corners into triangles by cutting off its ears, before
  /// it looks at the eye. Where an outline is concave and bends, by however little, no ear may be
  /// left to cut off, and the polygon is given up. This cuts it the same way, and leaves out what
  /// shots leave out as well: pieces that are wound the other way, or have an edge shorter than
  /// `ShortestEdge`. What an eye sees of the rest depends on the eye.
  ///
  /// \param corners  x, y and z of each, in scene units; time grows with the square of their number
  /// \return 0 for fewer than 3 corners, and for polygons without area
  static double seenShare(const std::vector<std::array<double, 3>>& corners);

  /// Regions of more corners are not asked for the share that can be seen.
  static constexpr int MostCorners = 10000;

  /// The one warning of `check` about regions so far from the origin that rounding their corners to
  /// single precision, in which polygons are computed, shows in a shot (see `Rounding`). It is
  /// about the region that suffers most, and says how many there are. None if all are near enough.
  static std::optional<Finding> farCoordinates(Scene::Scene3D& scene);
};

}  // namespace Lumivane::Check
