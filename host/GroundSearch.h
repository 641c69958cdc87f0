#pragma once

#include "SceneSurfaces.h"

#include <lumivane/visibility/SceneIndex.h>

#include <mutex>
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

/// Whether eyes are under the ground of a scene, as `ground` of `GroundSearch` finds it: from there
/// it is seen from behind, and so not at all. At a place without such ground an eye is under it if
/// the lowest surface there is terrain above the eye that looks down, as the ground surface of a
/// house does, or if the eye is lower than all ground of the scene.
class UnderGroundTest {
 public:
  /// The index is borrowed.
  explicit UnderGroundTest(const Visibility::SceneIndex& index);
  UnderGroundTest(const UnderGroundTest&) = delete;
  UnderGroundTest& operator=(const UnderGroundTest&) = delete;
  /// Any number of threads may ask.
  bool isUnder(const Visibility::Vector& eye) const;

 private:
  bool isBelowAllGround(double z) const;
  bool hasGround() const;

  SceneSurfaces surfaces;
  GroundSearch search;
  double lowestTerrain = 0.0;  // of what is terrain by its class; infinite without any
  double lowest = 0.0;         // of the scene; infinite without points
  mutable std::once_flag isSearched;
  mutable bool isGroundFound = false;
};

}  // namespace Lumivane::Host
