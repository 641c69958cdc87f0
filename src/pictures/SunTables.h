#pragma once

#include <lumivane/measure/SunHours.h>
#include <lumivane/pictures/ReportPage.h>
#include <lumivane/visibility/VisibleMap.h>

#include <cstddef>
#include <vector>

namespace Lumivane::Pictures {

/// A table of sun hours for pages.
struct SunTable {
  ReportPage::Table table;
  std::size_t firstNumber = 1;  ///< the cells from here on are numbers
};

/// The hours of the days, or of their months if there are more than 31; from when to when the sun
/// shines on a single day; and what stands in front of the sun how long, longest first. None of no
/// days.
/// \param names  of the objects and classes; may be null
std::vector<SunTable> sunTables(const std::vector<Measure::SunDay>& days,
                                const Measure::TimeZone& zone,
                                const Visibility::VisibleMap::Names* names);

}  // namespace Lumivane::Pictures
