#pragma once

#include <lumivane/measure/CivilTime.h>

#include <string>

namespace Lumivane::Host {

/// What clocks of a zone show in some years.
/// \param zone  an offset from UTC in hours (1, -7, +05:30), UTC, or the name of a zone in the
///              system's data (Europe/Amsterdam), which the C library reads: no other thread may
///              ask for local times meanwhile
/// \throws HostError for what is neither
Measure::TimeZone timeZoneOf(const std::string& zone, int firstYear, int lastYear);

}  // namespace Lumivane::Host
