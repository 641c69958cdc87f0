#pragma once

#include <lumivane/measure/SkyLight.h>
#include <lumivane/measure/SunHours.h>
#include <lumivane/measure/export.h>
#include <lumivane/visibility/VisibleMap.h>

#include <memory>
#include <string>
#include <vector>

namespace Lumivane::Measure {

/// The sun hours of one eye point among others.
struct SunEye {
  std::string name;                 ///< in the first column of every table
  Visibility::Vector eye{0, 0, 0};  ///< where it stands
  bool isInside = false;            ///< whether that is inside a body
  std::vector<SunDay> days;         ///< as `SunHours::days`; may be empty in other tables
  std::vector<double> values;       ///< of the sky, as columns that the caller names
};

/// Sun hours of eyes as tables: RFC 4180 with a heading, or one JSON object with `version` and
/// `rows`, whose keys are the columns. Times are those that clocks of the place show, with their
/// offset from UTC (ISO 8601), cut off after a hundredth of a second. Numbers have a point whatever
/// the locale.
class LUMIVANE_MEASURE_EXPORT SunText {
 public:
  /// What a table becomes.
  enum class Format { Csv, Json };

  /// \param zone    whose clocks show the times
  /// \param names   of the objects and classes; may be null
  /// \param isSafe  texts that a spreadsheet would take for formulas get an apostrophe in front
  SunText(TimeZone zone, std::shared_ptr<const Visibility::VisibleMap::Names> names,
          bool isSafe = false);

  /// `name,date,start,end,seconds,state,object,id,class`: a row for each time between sunrise and
  /// sunset in which nothing changes. The state is `sun` or `shade`; object, id and class are of
  /// what stands in front of the sun.
  std::string spans(const std::vector<SunEye>& eyes, Format format) const;
  /// `name,date,sunrise,sunset,first_sun,last_sun,sun_hours,daylight_hours`.
  std::string days(const std::vector<SunEye>& eyes, Format format) const;
  /// `name,month,days,sun_hours,daylight_hours`, months as YYYY-MM.
  std::string months(const std::vector<SunEye>& eyes, Format format) const;
  /// `name,x,y,z,inside,days,sun_hours,daylight_hours,sun_share`: a row for each eye.
  std::string totals(const std::vector<SunEye>& eyes, Format format) const;
  /// `name,x,y,z,inside` and one column for each of the values of the eyes.
  std::string values(const std::vector<SunEye>& eyes, const std::vector<std::string>& columns,
                     Format format) const;

 private:
  TimeZone zone;
  std::shared_ptr<const Visibility::VisibleMap::Names> names;
  bool isSafe;
};

}  // namespace Lumivane::Measure
