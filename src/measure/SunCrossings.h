#pragma once

#include "kernel/Vec.h"

#include <lumivane/measure/SunPath.h>

#include <vector>

namespace Lumivane::Measure {

/// When the sun's path crosses great circles: all roots, none of which is looked for by steps.
///
/// Seen from a place the sun runs around the celestial pole at a declination that hardly changes,
/// so that its distance from a plane is all but A + B cos(H - H0) of its hour angle H. Between two
/// extremes of that there is at most one root, which is found on the path itself.
class SunCrossings {
 public:
  explicit SunCrossings(const SunPath& path);

  /// Within what the path lies, for one span of time of at most about a day.
  struct Span {
    double from = 0.0;  ///< moments
    double to = 0.0;
    double hourAngle = 0.0;    ///< in the middle
    double tangent = 0.0;      ///< of the declination in the middle
    double lowestSine = 0.0;   ///< of the declination, with a reserve
    double highestSine = 0.0;  ///< likewise
  };
  Span span(double from, double to) const;

  /// A plane through the eye, by its normal of any length, and how the path lies to it.
  struct Plane {
    Kernel::Vec3 normal;
    double extreme = 0.0;  ///< the hour angle H0
    double ratio = 0.0;    ///< its part along the pole by that across it
  };
  Plane plane(Kernel::Vec3 normal) const;

  /// Adds the moments of a span at which the dot product of direction and normal becomes `level`.
  void addRoots(const Span& span, const Plane& plane, double level,
                std::vector<double>& moments) const;
  /// Whether roots may lie near the arc from a to b of the plane's circle; never false if one does.
  bool mayMeet(const Span& span, const Plane& plane, Kernel::Vec3 a, Kernel::Vec3 b) const;

  /// The least and the greatest sine of the declination on the arc.
  std::pair<double, double> declinations(Kernel::Vec3 a, Kernel::Vec3 b) const;
  Kernel::Vec3 direction(double moment) const;

 private:
  double momentOf(const Span& span, double hourAngle) const;
  double root(Kernel::Vec3 normal, double level, double from, double valueFrom, double to,
              double valueTo) const;
  double extremeNear(Kernel::Vec3 normal, double moment) const;

  const SunPath& path;
  Kernel::Vec3 pole;      // the celestial pole in the north
  Kernel::Vec3 meridian;  // on the equator, hour angle 0
  Kernel::Vec3 west;      // on the equator, hour angle a right angle
};

}  // namespace Lumivane::Measure
