#pragma once

#include <lumivane/measure/export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Measure {

/// A day of the Gregorian calendar.
struct CivilDate {
  int year = 2000;  ///< any
  int month = 1;    ///< from 1
  int day = 1;      ///< from 1

  /// Whether they are the same day.
  friend bool operator==(const CivilDate& a, const CivilDate& b) {
    return a.year == b.year && a.month == b.month && a.day == b.day;
  }
  /// The negation of ==.
  friend bool operator!=(const CivilDate& a, const CivilDate& b) { return !(a == b); }
};

/// How many days a date is after 1970-01-01; below 0 before it.
LUMIVANE_MEASURE_EXPORT std::int64_t dayNumber(const CivilDate& date);
/// The date of a day number.
LUMIVANE_MEASURE_EXPORT CivilDate dateOfDay(std::int64_t number);
/// The date that a text YYYY-MM-DD names; nothing if there is no such day.
LUMIVANE_MEASURE_EXPORT std::optional<CivilDate> readDate(const std::string& text);
/// YYYY-MM-DD.
LUMIVANE_MEASURE_EXPORT std::string dateText(const CivilDate& date);

/// How far the clocks of a place are ahead of UTC (coordinated universal time), and when that
/// changes. Moments are seconds since 1970-01-01 00:00 UTC, leap seconds not counted.
class LUMIVANE_MEASURE_EXPORT TimeZone {
 public:
  /// From when clocks show what.
  struct Step {
    double from = 0.0;  ///< the moment
    int offset = 0;     ///< seconds that clocks are ahead of UTC from then on; below 0 in the west
  };

  /// The same all the time. \param offset  seconds that clocks are ahead of UTC
  explicit TimeZone(int offset = 0);
  /// Daylight saving time and the like. The first step holds for all time before it, too.
  /// \throws std::invalid_argument if there is none, or they are not in the order of time
  explicit TimeZone(std::vector<Step> steps);

  int offsetAt(double moment) const;  ///< Seconds that clocks are ahead of UTC.
  /// The first moment at which clocks show a time of a day, in seconds after its midnight, or a
  /// later one: where they are put forward over it, the moment at which that is done. So a day
  /// begins where the one before it ends, and a day that the place's calendar leaves out has no
  /// length.
  double momentOf(const CivilDate& date, double seconds = 0.0) const;
  /// All moments at which clocks show a time of a day, in their order: one, but none for a time
  /// over which they are put forward, and two for one that comes again when they are put back.
  std::vector<double> momentsAt(const CivilDate& date, double seconds) const;
  CivilDate dateAt(double moment) const;  ///< What calendars of the place show.
  /// What clocks show, as YYYY-MM-DDTHH:MM:SS and the offset as +HH:MM (ISO 8601), cut off after
  /// so many decimals of the second (0 to 6).
  std::string text(double moment, int decimals = 2) const;

 private:
  std::vector<Step> steps;
};

}  // namespace Lumivane::Measure
