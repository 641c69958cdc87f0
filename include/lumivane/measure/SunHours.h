#pragma once

#include <lumivane/measure/SunPath.h>
#include <lumivane/measure/export.h>
#include <lumivane/visibility/LookOptions.h>
#include <lumivane/visibility/SceneIndex.h>
#include <lumivane/visibility/VisibleMap.h>

#include <vector>

namespace Lumivane::Measure {

/// A time during which the sun's centre is above the horizon and in sight, or behind one object.
struct SunSpan {
  double start = 0.0;  ///< seconds since 1970-01-01 00:00 UTC
  double end = 0.0;    ///< likewise
  int object = 0;      ///< what stands in front of the sun, from 1; 0 if it shines on the eye
  int classNumber =
      -1;  ///< of what stands there: position in `VisibleMap::Names::classNames`, or -1

  bool isLit() const { return object == 0; }      ///< Whether the sun shines on the eye.
  double seconds() const { return end - start; }  ///< How long it lasts.
};

/// A day from midnight to midnight by the clocks of the place.
struct LUMIVANE_MEASURE_EXPORT SunDay {
  CivilDate date;              ///< of the place's calendar
  std::vector<SunSpan> spans;  ///< in the order of time; none while the sun is below the horizon

  double litSeconds() const;       ///< How long the sun shines on the eye.
  double daylightSeconds() const;  ///< How long it is above the horizon.
};

/// The days of one month.
struct SunMonth {
  int year = 0;                  ///< of the calendar
  int month = 0;                 ///< from 1
  int days = 0;                  ///< how many of its days were asked for
  double litSeconds = 0.0;       ///< of these days together
  double daylightSeconds = 0.0;  ///< likewise
};

/// Days by month, in the order of time.
LUMIVANE_MEASURE_EXPORT std::vector<SunMonth> sunMonths(const std::vector<SunDay>& days);

/// How long an object stands in front of the sun.
struct SunShade {
  int object = 0;        ///< from 1
  int classNumber = -1;  ///< of the surfaces that do; as `SunSpan::classNumber`
  double seconds = 0.0;  ///< of all days together
};

/// What stands in front of the sun on some days, longest first.
LUMIVANE_MEASURE_EXPORT std::vector<SunShade> sunShades(const std::vector<SunDay>& days);

/// When the sun shines on one eye point, and what stands in front of it otherwise.
///
/// The sun is its centre, which rises and sets at elevation 0 or what the options say; there is no
/// refraction. Within a cell of the visibility map nothing changes, so that the moments at which
/// the sun's path crosses edges of the map are all that is looked for: as roots of the exact test
/// of the side of an edge, to a tenth of a millisecond of the path. Nothing is sampled.
class LUMIVANE_MEASURE_EXPORT SunHours {
 public:
  /// What counts as sunshine.
  struct Options {
    double lowestElevation = 0.0;  ///< degrees, 0 to 90: below it the sun is not up
  };

  /// \param upwards  a map of the hemisphere above the eye, as `lookUpwards` asks for
  /// \throws std::invalid_argument for another map, and an elevation out of range
  SunHours(const Visibility::VisibleMap& upwards, const SunPath& path, const Options& options);
  /// With the default options.
  SunHours(const Visibility::VisibleMap& upwards, const SunPath& path);
  /// Looks from the eye first. \throws as `SceneIndex::look`
  SunHours(const Visibility::SceneIndex& scene, const Visibility::Vector& eye, const SunPath& path,
           bool twoSided = false);

  /// All days of the path, without those that the place's calendar leaves out.
  const std::vector<SunDay>& days() const { return theDays; }
  std::vector<SunMonth> months() const;  ///< The days by month, in the order of time.
  std::vector<SunShade> shades() const;  ///< What stands in front of the sun, longest first.
  double litSeconds() const;             ///< Of all days together.
  double daylightSeconds() const;        ///< Of all days together.

 private:
  std::vector<SunDay> theDays;
};

/// How to look for a map of the sky: upwards, with north at the upper edge of pictures.
LUMIVANE_MEASURE_EXPORT Visibility::LookOptions lookUpwards(const Place& place);

}  // namespace Lumivane::Measure
