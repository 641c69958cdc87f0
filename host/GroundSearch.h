#pragma once

#include "SceneSurfaces.h"

#include <lumivane/visibility/SceneIndex.h>

#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Host {

/// Looks for the surface under points of a plan, along exact vertical lines. Surfaces count that
/// are seen from above.
class GroundSearch {
 public:
  /// Where a vertical line meets a surface.
  struct Hit {
    double z = 0.0;
    Visibility::Label label;
  };

  /// \param above  `surface`, the highest one; `ground`, the lowest one that is neither of a
  ///               building nor the upper side of a closed body; `terrain`, the highest one of a
  ///               class of what lies on the ground; or a class, the highest one of it
  /// Index and surfaces are borrowed.
  /// \throws HostError if no surface of the scene is of the class
  GroundSearch(const Visibility::SceneIndex& theIndex, const SceneSurfaces& theSurfaces,
               const std::string& above, const std::string& scene);

  /// The surface at x and y; nothing if there is none.
  std::optional<Hit> at(double x, double y) const;
  /// Whether a point is clearly below a height.
  bool isBelow(const Visibility::Vector& point, double z) const { return point[2] < z - step; }
  /// The lowest surface at x and y that is seen from below; nothing if there is none.
  std::optional<Hit> lowestUnderside(double x, double y) const { return next(x, y, low, 1.0); }
  /// The surface straight above a point that is met first, if its upper side alone is seen, so that
  /// the point is behind it; nothing otherwise.
  std::optional<Hit> backAbove(const Visibility::Vector& point) const;

 private:
  std::optional<Hit> next(double x, double y, double from, double upwards) const;
  std::optional<Hit> ground(double x, double y) const;
  bool hasUnderside(double x, double y, const Hit& top) const;

  const Visibility::SceneIndex& index;
  const SceneSurfaces& surfaces;
  bool isGround;
  std::vector<std::string> classes;  // that count; all if empty
  double low = 0.0;                  // under the whole scene
  double high = 0.0;                 // over it
  double step = 0.0;  // surfaces closer than this to one above them are not looked for
};

}  // namespace Lumivane::Host
