#pragma once

#include <lumivane/visibility/PolygonScene.h>

#include <atomic>
#include <functional>

namespace Lumivane::Visibility {

/// Which directions a map holds.
enum class Field {
  Hemisphere,  ///< all directions within 90 degrees of forward
  Sphere       ///< all directions
};

/// How a scene is looked at.
struct LookOptions {
  Field field = Field::Hemisphere;  ///< which directions the map holds
  Vector forward{1.0, 0.0, 0.0};    ///< the middle of the hemisphere, of any length but zero
  /// Upwards in pictures of the map. A vector along `forward`, or zero, is replaced by the axis of
  /// the scene that is farthest from `forward`, z first.
  Vector up{0.0, 0.0, 1.0};
  bool twoSided = false;  ///< whether polygons are seen from behind, too
  int threads = 1;  ///< how many threads look; 0 for all processors. Results do not depend on it.
  /// Whether to measure each object as if nothing stood in front of it (`VisibleMap::alone`). It
  /// takes about as long as another look.
  bool alone = false;
  bool edgeSources = false;  ///< whether to fill `VisibleMap::edgeSources`
  /// Is called with the finished part, from 0 to 1 and never falling, by the thread that called
  /// `look`, about ten times a second. May be empty. An exception ends the look and comes through.
  std::function<void(double)> progress;
  /// Ends the look soon after it has become true; `look` then throws `Cancelled`. May be null; must
  /// live as long as the look.
  const std::atomic<bool>* cancelled = nullptr;
};

}  // namespace Lumivane::Visibility
