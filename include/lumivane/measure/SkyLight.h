#pragma once

#include <lumivane/measure/export.h>
#include <lumivane/visibility/VisibleMap.h>

#include <vector>

namespace Lumivane::Measure {

/// How bright the sky is from place to place.
struct LUMIVANE_MEASURE_EXPORT SkyType {
  /// 0: equally bright everywhere. 1 to 15: the types of the CIE Standard General Sky (ISO
  /// 15469:2004, CIE S 011:2003), of which 1 is overcast, 5 uniform and 12 clear. 16: the same
  /// standard's traditional overcast sky (P. Moon, D. E. Spencer, 1942), three times as bright in
  /// the zenith as at the horizon.
  int number = 0;

  /// Whether the brightness depends on where the sun stands: not so for 0, 1, 3, 5 and 16.
  bool needsSun() const;
  /// The luminance at an elevation and an angle from the sun, both radians, up to a factor that
  /// depends on the type and the sun alone. \throws std::invalid_argument for no type
  double luminance(double elevation, double fromSun) const;
};

/// The light that a small plane at the eye gets from the sky in sight, by what a level one would
/// get from the whole sky: the sky component. For a level plane and the uniform sky it is the sky
/// view factor; for an upright plane it is the vertical sky component, at most 0.5 of a uniform
/// sky.
///
/// What scene faces send back is not in it. Of the uniform sky it is a closed form; of the others
/// an adaptive integral along the borders of the sky, to 1e-7.
///
/// \param upwards  a map of the hemisphere above the eye, as `lookUpwards` asks for
/// \param normal   of the plane, of any length but zero
/// \param sun      the direction to the sun, of any length; used if `type.needsSun()`
/// \throws std::invalid_argument for another map, no type, a normal of zero and a sun that is
///         needed and not above the horizon
LUMIVANE_MEASURE_EXPORT double skyComponent(const Visibility::VisibleMap& upwards,
                                            const SkyType& type, const Visibility::Vector& normal,
                                            const Visibility::Vector& sun = {0.0, 0.0, 0.0});

/// A patch of the sky between two circles of latitude and two meridians.
struct SkyPatch {
  double lowest = 0.0;      ///< elevation, degrees
  double highest = 0.0;     ///< elevation, degrees
  double azimuth = 0.0;     ///< of the middle, degrees clockwise from north
  double width = 360.0;     ///< in azimuth, degrees
  double solidAngle = 0.0;  ///< of the whole patch, steradian
  double cosine = 0.0;      ///< its solid angle weighted by the sine of the elevation
};

/// The division of P. R. Tregenza, Subdivision of the sky hemisphere for luminance measurements
/// (1987), into 145 patches: seven rows of 12 degrees and a cap; and its refinements into 577 and
/// 2305 by C. F. Reinhart, each row of them 2 or 4 rows of 2 or 4 times as many patches. Rows from
/// the horizon up, in each the first patch in the north, then clockwise as seen from above; the cap
/// is last. It is the order that Radiance's programs have, without their patch of the ground.
/// \throws std::invalid_argument for another count
LUMIVANE_MEASURE_EXPORT std::vector<SkyPatch> skyPatches(int count);

/// What is in sight of each patch.
struct SkyPatchShares {
  std::vector<double> solidAngles;  ///< steradian; add up to that of the sky in sight
  std::vector<double> cosines;      ///< weighted by the sine of the elevation; at most pi together
};

/// How much of each patch is in sight: integrals in closed form along the borders of the sky, which
/// are cut where they cross those of patches; right to about 1e-12.
/// \param upwards  a map of the hemisphere above the eye, as `lookUpwards` asks for
/// \param north    the direction to the north in the scene; its z does not count
/// \throws std::invalid_argument for another map, a north of no length or another count
LUMIVANE_MEASURE_EXPORT SkyPatchShares visibleSkyPatches(const Visibility::VisibleMap& upwards,
                                                         const Visibility::Vector& north,
                                                         int count);

}  // namespace Lumivane::Measure
