#include "pictures/SunTables.h"

#include "kernel/DisplayText.h"

#include <cstdio>
#include <string>
#include <utility>

namespace Lumivane::Pictures {
namespace {

using Measure::SunDay;
using Measure::SunSpan;
using Names = Visibility::VisibleMap::Names;

constexpr std::size_t MostDays = 31;  // that are shown as days

std::string hours(double seconds) {
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%d:%02d:%02d", static_cast<int>(seconds / 3600.0),
                static_cast<int>(seconds / 60.0) % 60, static_cast<int>(seconds) % 60);
  return buffer;
}

std::string nameOf(const Names* names, int object, int classNumber) {
  if (names == nullptr) return std::to_string(object);
  const auto at = static_cast<std::size_t>(object) - 1;
  const auto number = static_cast<std::size_t>(classNumber);
  std::string result = at < names->objectIds.size() ? Kernel::idText(names->objectIds[at]) : "";
  if (classNumber >= 0 && number < names->classNames.size())
    result += " (" + names->classNames[number] + ")";
  return result;
}

SunTable spansOf(const SunDay& day, const Measure::TimeZone& zone, const Names* names) {
  SunTable result;
  result.firstNumber = 3;
  result.table.title = "From when to when";
  result.table.columns = {"from", "to", "what", "how long"};
  const auto clock = [&zone](double moment) { return zone.text(moment, 0).substr(11, 8); };
  for (const SunSpan& span : day.spans)
    result.table.rows.push_back(
        {clock(span.start), clock(span.end),
         span.isLit() ? "sun" : "behind " + nameOf(names, span.object, span.classNumber),
         hours(span.seconds())});
  return result;
}

SunTable hoursOf(const std::vector<SunDay>& days) {
  SunTable result;
  result.table.title = "Sun hours";
  result.table.columns = {days.size() > MostDays ? "month" : "day", "sun", "daylight"};
  double lit = 0.0;
  double daylight = 0.0;
  const auto add = [&](const std::string& name, double litSeconds, double daylightSeconds) {
    result.table.rows.push_back({name, hours(litSeconds), hours(daylightSeconds)});
    lit += litSeconds;
    daylight += daylightSeconds;
  };
  if (days.size() > MostDays) {
    for (const Measure::SunMonth& month : Measure::sunMonths(days))
      add(Measure::dateText({month.year, month.month, 1}).substr(0, 7), month.litSeconds,
          month.daylightSeconds);
  } else {
    for (const SunDay& day : days)
      add(Measure::dateText(day.date), day.litSeconds(), day.daylightSeconds());
  }
  if (days.size() > 1) result.table.rows.push_back({"together", hours(lit), hours(daylight)});
  return result;
}

SunTable shadesOf(const std::vector<SunDay>& days, const Names* names) {
  SunTable result;
  result.table.title = "In front of the sun";
  result.table.columns = {"what", "how long"};
  for (const Measure::SunShade& shade : Measure::sunShades(days))
    result.table.rows.push_back(
        {nameOf(names, shade.object, shade.classNumber), hours(shade.seconds)});
  return result;
}

}  // namespace

std::vector<SunTable> sunTables(const std::vector<SunDay>& days, const Measure::TimeZone& zone,
                                const Names* names) {
  std::vector<SunTable> tables;
  if (days.empty()) return tables;
  tables.push_back(hoursOf(days));
  if (days.size() == 1) tables.push_back(spansOf(days[0], zone, names));
  SunTable shades = shadesOf(days, names);
  if (!shades.table.rows.empty()) tables.push_back(std::move(shades));
  return tables;
}

}  // namespace Lumivane::Pictures
