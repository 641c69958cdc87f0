#pragma once

#include <lumivane/measure/CivilTime.h>
#include <lumivane/measure/export.h>
#include <lumivane/visibility/PolygonScene.h>

#include <memory>

namespace Lumivane::Measure {

/// Where a scene stands on the Earth. Its z axis points up.
struct Place {
  double latitude = 0.0;   ///< degrees, -90 to 90, north positive
  double longitude = 0.0;  ///< degrees, -180 to 180, east positive
  TimeZone zone;           ///< what its clocks show
  /// The direction to the north in the scene, of any length; its z does not count.
  Visibility::Vector north{0.0, 1.0, 0.0};
};

/// The sun as it is seen from the centre of the Earth.
struct SunPosition {
  double hourAngle = 0.0;    ///< at Greenwich, radians westwards
  double declination = 0.0;  ///< apparent, radians
  double distance = 1.0;     ///< astronomical units
};

/// The apparent position at a moment (seconds since 1970-01-01 00:00 UTC): the Earth's orbit and
/// nutation are libnova's (VSOP87, IAU 1980), precession and aberration are added. UTC is taken for
/// UT1, from which it differs by at most 0.9 s. Right to 0.5" between 1950 and 2050,
/// to 2" between 1900 and 2100. Bits may
/// differ between machines, since libnova uses the C library's functions of angles.
/// \throws std::runtime_error if it was built without libnova
LUMIVANE_MEASURE_EXPORT SunPosition sunPosition(double moment);

/// The sun's path over some days as seen from a place: the directions to the centre of its disc,
/// with the parallax of the place and without refraction. Immutable, for any number of threads at a
/// time; copies share all.
class LUMIVANE_MEASURE_EXPORT SunPath {
 public:
  /// \param first,last  days of the place's calendar, both included, of the years 1900 to 2100
  /// \throws std::invalid_argument for a place that is none, a north of no length, or days that are
  ///         none or in the wrong order
  /// \throws std::runtime_error if it was built without libnova
  SunPath(const Place& place, const CivilDate& first, const CivilDate& last);
  static bool isBuilt();  ///< Whether there are positions: false without libnova.

  const Place& place() const;      ///< As given.
  const CivilDate& first() const;  ///< The first day.
  const CivilDate& last() const;   ///< The last day.
  double start() const;            ///< The moment at which the first day begins.
  double end() const;              ///< The moment at which the last day ends.

  /// The unit vector to the sun in the scene's axes. Between positions every six hours the path is
  /// interpolated, to 1e-9. \throws std::out_of_range for a moment more than a day outside
  Visibility::Vector direction(double moment) const;
  /// Geocentric, radians: hour angle of the place (westwards, any number of turns), declination.
  SunPosition position(double moment) const;

  Visibility::Vector north() const;  ///< Unit vector, level.
  Visibility::Vector east() const;   ///< Unit vector, level.

 private:
  struct State;
  std::shared_ptr<const State> state;
};

}  // namespace Lumivane::Measure
