// From texts to moments. A time that the clocks of a place do not show just once is refused with
// what to write in its place: any choice would be a guess of an hour.
#include "SunPlace.h"

#include "HostError.h"
#include "SunZone.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <tuple>
#include <vector>

namespace Lumivane::Host {
namespace {

using Measure::CivilDate;
using Measure::Place;
using Measure::SunPath;

constexpr double HourSeconds = 3600.0;
constexpr int FirstYear = 1900;
constexpr int LastYear = 2100;

CivilDate dateOf(const char* option, const std::string& text) {
  const std::optional<CivilDate> date = Measure::readDate(text);
  if (!date) throw ArgumentError(option, "\"" + oneLine(text) + "\" is no day YYYY-MM-DD");
  return *date;
}

// Two digits at a place of a text, as a number below a limit; -1 if they are none.
int twoDigits(const std::string& text, size_t at, int below) {
  if (at + 2 > text.size()) return -1;
  const bool isNumber = std::isdigit(static_cast<unsigned char>(text[at])) != 0 &&
                        std::isdigit(static_cast<unsigned char>(text[at + 1])) != 0;
  const int value = isNumber ? (text[at] - '0') * 10 + (text[at + 1] - '0') : below;
  return value < below ? value : -1;
}

// Z, +HH:MM or -HH:MM; nothing if it is neither.
std::optional<int> readOffset(const std::string& text) {
  if (text == "Z") return 0;
  const bool isOffset = text.size() == 6 && (text[0] == '+' || text[0] == '-') && text[3] == ':';
  const int hours = isOffset ? twoDigits(text, 1, 24) : -1;
  const int minutes = isOffset ? twoDigits(text, 4, 60) : -1;
  if (hours < 0 || minutes < 0) return std::nullopt;
  const int seconds = hours * 3600 + minutes * 60;
  return text[0] == '-' ? -seconds : seconds;
}

std::string clock(const Measure::TimeZone& zone, double moment) {
  return zone.text(moment, 0).substr(0, 16);
}

std::string offsetText(const Measure::TimeZone& zone, double moment) {
  return zone.text(moment, 0).substr(19);
}

template <class Value>
void need(const Value& isThere, const char* option, const std::string& why) {
  if (!isThere) throw ArgumentError(option, "is needed " + why);
}

}  // namespace

DayRange daysOf(const SunPlaceOptions& options, const DayRange& others) {
  if (options.year) return {{*options.year, 1, 1}, {*options.year, 12, 31}};
  if (!options.from.empty()) {
    const DayRange range{dateOf("--from", options.from), dateOf("--to", options.to)};
    const auto order = [](const CivilDate& d) { return std::tuple(d.year, d.month, d.day); };
    if (order(range.last) < order(range.first))
      throw ArgumentError("--to", "is before --from " + oneLine(options.from));
    return range;
  }
  if (!options.day.empty()) return {dateOf("--day", options.day), dateOf("--day", options.day)};
  return others;
}

WrittenTime readTime(const std::string& text) {
  const std::optional<CivilDate> date = Measure::readDate(text.substr(0, 10));
  const bool isWhole = text.size() >= 16 && (text[10] == 'T' || text[10] == ' ') && text[13] == ':';
  const int hour = isWhole ? twoDigits(text, 11, 24) : -1;
  const int minute = isWhole ? twoDigits(text, 14, 60) : -1;
  const std::string rest = isWhole ? text.substr(16) : "";
  const std::optional<int> offset = readOffset(rest);
  if (!date || hour < 0 || minute < 0 || (!rest.empty() && !offset))
    throw ArgumentError("--at", "\"" + oneLine(text) +
                                    "\" is no time YYYY-MM-DDTHH:MM, with or without an offset "
                                    "from UTC as +02:00");
  return {*date, hour * HourSeconds + minute * 60.0, offset, text};
}

double momentOf(const WrittenTime& time, const Measure::TimeZone& zone) {
  if (time.offset)
    return static_cast<double>(Measure::dayNumber(time.date)) * 24.0 * HourSeconds + time.seconds -
           *time.offset;
  const std::vector<double> moments = zone.momentsAt(time.date, time.seconds);
  if (moments.size() == 1) return moments[0];
  const std::string start = "\"" + oneLine(time.text) + "\" is shown ";
  if (moments.empty()) {
    const double change = zone.momentOf(time.date, time.seconds);
    throw ArgumentError("--at", start + "by no clock of the place: they are put forward to " +
                                    clock(zone, change) + " there; name a time before or after");
  }
  throw ArgumentError("--at", start + "twice, since clocks are put back: add " +
                                  offsetText(zone, moments.front()) + " or " +
                                  offsetText(zone, moments.back()));
}

Place placeOf(const SunPlaceOptions& options, const DayRange& days) {
  Place place;
  place.latitude = options.latitude.value_or(0.0);
  place.longitude = options.longitude.value_or(0.0);
  if (options.north) place.north = *options.north;
  if (!options.timeZone.empty())
    place.zone = timeZoneOf(options.timeZone, std::clamp(days.first.year, FirstYear, LastYear),
                            std::clamp(days.last.year, FirstYear, LastYear));
  return place;
}

SunPath pathOf(const Place& place, const DayRange& days) {
  if (!SunPath::isBuilt())
    throw HostError("sun hours",
                    "this program was built without libnova, which knows where the sun is");
  try {
    SunPath path(place, days.first, days.last);
    if (path.start() < path.end()) return path;
  } catch (const std::invalid_argument& error) {
    throw HostError("the days", error.what());
  }
  throw HostError("the days", Measure::dateText(days.first) +
                                  " is in no calendar of the place, whose clocks are put forward "
                                  "over it: name another day");
}

void needPlace(const SunPlaceOptions& options) {
  need(options.latitude, "--latitude", "to know where the sun stands");
  need(options.longitude, "--longitude", "to know where the sun stands");
  need(!options.timeZone.empty(), "--time-zone", "to know what clocks show");
  needNorth(options);
}

void needDays(const SunPlaceOptions& options) {
  need(options.hasDays(), "--day", "unless there are --from and --to, or --year");
}

void needNorth(const SunPlaceOptions& options) {
  need(options.north, "--north", "to know how the scene lies: 90 where y points north");
}

}  // namespace Lumivane::Host
