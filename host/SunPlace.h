#pragma once

#include "SunPlaceOptions.h"

#include <lumivane/measure/CivilTime.h>
#include <lumivane/measure/SunPath.h>

#include <string>

namespace Lumivane::Host {

/// Days of a place's calendar, both included.
struct DayRange {
  Measure::CivilDate first;
  Measure::CivilDate last;
};

/// A time of a day as it is written, YYYY-MM-DDTHH:MM, with or without an offset from UTC.
struct WrittenTime {
  Measure::CivilDate date;
  double seconds = 0.0;       ///< after midnight
  std::optional<int> offset;  ///< seconds ahead of UTC
  std::string text;           ///< as it was given
};

/// The days that are asked for; `others` if none are. \throws ArgumentError
DayRange daysOf(const SunPlaceOptions& options, const DayRange& others);

/// \throws ArgumentError that names --at
WrittenTime readTime(const std::string& text);

/// The moment of a time: where it has no offset, that at which the clocks of the place show it.
/// \throws ArgumentError that names --at for a time that they never show, or twice
double momentOf(const WrittenTime& time, const Measure::TimeZone& zone);

/// A place with what its clocks show in the years of some days, and a year on both sides. What is
/// not given is 0, or the y axis for north. \throws HostError
Measure::Place placeOf(const SunPlaceOptions& options, const DayRange& days);

/// \throws HostError for days out of range, or all of which the place's calendar leaves out, and if
///         the program was built without libnova
Measure::SunPath pathOf(const Measure::Place& place, const DayRange& days);

/// Fails unless place, clocks and north are given. \throws ArgumentError
void needPlace(const SunPlaceOptions& options);
/// Fails unless days are given. \throws ArgumentError
void needDays(const SunPlaceOptions& options);
/// Fails unless north is given. \throws ArgumentError
void needNorth(const SunPlaceOptions& options);

}  // namespace Lumivane::Host
