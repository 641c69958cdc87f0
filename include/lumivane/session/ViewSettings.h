#pragma once

#include <lumivane/base/ViewCameraKind.h>
#include <lumivane/base/ViewDisplayStyle.h>
#include <lumivane/export.h>

#include <array>
#include <cstdint>
#include <string>

namespace Lumivane::Session {

/// A point or direction of the scene: x, y, z.
using Vector = std::array<double, 3>;

/// The direction of the picture's upper edge where none is asked for: up (z), and for a look
/// straight up or down, where up is the middle of the picture or behind it, north (y).
LUMIVANE_EXPORT Vector usualUp(const Vector& forward);

/// From where and how a shot is taken and drawn: a plain value.
struct LUMIVANE_EXPORT ViewSettings {
  Vector eye{0.0, 0.0, 0.0};      ///< where the eye stands, in scene units
  Vector forward{1.0, 0.0, 0.0};  ///< the direction of the picture's centre, of any length
  Vector up{0.0, 0.0, 1.0};       ///< the direction of the picture's upper edge, of any length

  /// Spherical: the radial projection onto the unit disc. Normal: the square one onto the square
  /// from -1 to 1.
  Base::ViewCameraKind camera = Base::ViewCameraKind::Spherical;

  int property = -1;  ///< the own number of the property to colour by; -1 for none
  int scale = -1;     ///< the number, from 1, of the scale to colour by; -1 for none

  double d1 = 0.01;  ///< scene units: an eye closer than this to a polygon is moved off it,
  double d2 = 1.0;   ///< if it looks along the polygon to within this many degrees

  int segments = 6;         ///< least number of pieces of an edge, at least 1
  double maxLength = 0.02;  ///< greatest length of a piece in the round picture, twice it in the
                            ///< square one; no limit if 0 or above 1

  /// Points of the picture closer than this on both axes become one; 0 for what
  /// `Geometry::Point2d::Precision` says. Smaller makes larger shots and truer visible shares.
  double mergeDistance = 0.0;

  Base::ViewDisplayStyle style = Base::ViewDisplayStyle::Filled;  ///< for drawing only

  /// How many point references the polygons of the shot may have together; 0 for any number. A
  /// polygon close to the eye is split finely, and all pieces of its region with it. Corners times
  /// pieces are counted before they are made, and what would be more than twice the limit is
  /// refused at once; up to there, points that fall together count once.
  std::int64_t limitPoints = 50'000'000;
  /// How many bytes of memory taking and writing the shot may need, besides the scene, as estimated
  /// from such counts; 0 for any number.
  std::int64_t limitMemory = std::int64_t{2} << 30U;

  /// How many threads project and sort; 0 for one for each processor. Results do not depend on it.
  int threads = 1;

  /// Whether a take first looks for the scene's errors (`Check::SceneChecker::errors`) and refuses
  /// a scene that has any. Without the look, wrong numbers are found when they are met, if at all:
  /// corners that are not finite and objects of one id give wrong shots without a word.
  bool checkScene = true;

  /// Why no shot can be taken with these; empty if one can. Directions must not be zero nor
  /// parallel, numbers finite, limits not negative.
  std::string fault() const;
};

}  // namespace Lumivane::Session
