// Dates as day numbers and back by whole-number arithmetic, and clocks as offsets from UTC that
// hold from one moment on. Nothing asks the C library for local times, whose zone is the whole
// process's.
#include <lumivane/measure/CivilTime.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace Lumivane::Measure {
namespace {

constexpr std::int64_t DaySeconds = 86400;

// Years that begin in March have the leap day at their end, and months whose first days are evenly
// spread over them: E. G. Richards, Mapping Time (1998).
constexpr std::int64_t DaysOf400Years = 146097;
constexpr std::int64_t FirstOfMarch0 = -719468;  // day number of 0000-03-01

// What clocks show, as seconds since they showed 1970-01-01 00:00.
double shownAs(const CivilDate& date, double seconds) {
  return static_cast<double>(dayNumber(date) * DaySeconds) + seconds;
}

std::int64_t floorOf(std::int64_t a, std::int64_t b) { return (a >= 0 ? a : a - b + 1) / b; }

bool isDigits(const std::string& text, size_t from, size_t count) {
  return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(from),
                     text.begin() + static_cast<std::ptrdiff_t>(from + count),
                     [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

std::int64_t dayNumber(const CivilDate& date) {
  const std::int64_t year = static_cast<std::int64_t>(date.year) - (date.month <= 2 ? 1 : 0);
  const std::int64_t era = floorOf(year, 400);
  const std::int64_t ofEra = year - era * 400;
  const std::int64_t month = (date.month + 9) % 12;
  const std::int64_t ofYear = (153 * month + 2) / 5 + date.day - 1;
  return era * DaysOf400Years + ofEra * 365 + ofEra / 4 - ofEra / 100 + ofYear + FirstOfMarch0;
}

CivilDate dateOfDay(std::int64_t number) {
  const std::int64_t days = number - FirstOfMarch0;
  const std::int64_t era = floorOf(days, DaysOf400Years);
  const std::int64_t ofEra = days - era * DaysOf400Years;
  const std::int64_t year = (ofEra - ofEra / 1460 + ofEra / 36524 - ofEra / 146096) / 365;
  const std::int64_t ofYear = ofEra - (365 * year + year / 4 - year / 100);
  const std::int64_t month = (5 * ofYear + 2) / 153;
  CivilDate date;
  date.day = static_cast<int>(ofYear - (153 * month + 2) / 5 + 1);
  date.month = static_cast<int>(month < 10 ? month + 3 : month - 9);
  date.year = static_cast<int>(year + era * 400 + (date.month <= 2 ? 1 : 0));
  return date;
}

std::optional<CivilDate> readDate(const std::string& text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  if (!isDigits(text, 0, 4) || !isDigits(text, 5, 2) || !isDigits(text, 8, 2)) return std::nullopt;
  const CivilDate date = {std::stoi(text.substr(0, 4)), std::stoi(text.substr(5, 2)),
                          std::stoi(text.substr(8, 2))};
  if (date.month < 1 || date.month > 12 || date.day < 1) return std::nullopt;
  if (dateOfDay(dayNumber(date)) != date) return std::nullopt;
  return date;
}

std::string dateText(const CivilDate& date) {
  char buffer[48];
  std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d", date.year, date.month, date.day);
  return buffer;
}

TimeZone::TimeZone(int offset) : steps(1, Step{0.0, offset}) {}

TimeZone::TimeZone(std::vector<Step> theSteps) : steps(std::move(theSteps)) {
  if (steps.empty()) throw std::invalid_argument("a time zone has no step");
  for (size_t i = 1; i < steps.size(); ++i)
    if (!(steps[i - 1].from < steps[i].from))
      throw std::invalid_argument("the steps of a time zone are not in the order of time");
}

int TimeZone::offsetAt(double moment) const {
  const auto after =
      std::upper_bound(steps.begin(), steps.end(), moment,
                       [](double time, const Step& step) { return time < step.from; });
  return after == steps.begin() ? steps.front().offset : (after - 1)->offset;
}

double TimeZone::momentOf(const CivilDate& date, double seconds) const {
  const double shown = shownAs(date, seconds);
  for (size_t i = 0; i + 1 < steps.size(); ++i) {
    const double moment = shown - steps[i].offset;
    if (moment < steps[i + 1].from) return i == 0 ? moment : std::max(moment, steps[i].from);
  }
  const double moment = shown - steps.back().offset;
  return steps.size() == 1 ? moment : std::max(moment, steps.back().from);
}

std::vector<double> TimeZone::momentsAt(const CivilDate& date, double seconds) const {
  const double shown = shownAs(date, seconds);
  std::vector<double> moments;
  for (size_t i = 0; i < steps.size(); ++i) {
    const double moment = shown - steps[i].offset;
    const bool isLate = i + 1 < steps.size() && moment >= steps[i + 1].from;
    const bool isEarly = i > 0 && moment < steps[i].from;
    if (!isLate && !isEarly) moments.push_back(moment);
  }
  return moments;
}

CivilDate TimeZone::dateAt(double moment) const {
  return dateOfDay(static_cast<std::int64_t>(
      std::floor((moment + offsetAt(moment)) / static_cast<double>(DaySeconds))));
}

std::string TimeZone::text(double moment, int decimals) const {
  decimals = std::clamp(decimals, 0, 6);
  const int offset = offsetAt(moment);
  const double scale = std::pow(10.0, decimals);
  // What rounding takes from a whole step is given back.
  const double shown = std::floor((moment + offset) * scale + 1e-3) / scale;
  const double day = std::floor(shown / static_cast<double>(DaySeconds));
  const double rest = shown - day * static_cast<double>(DaySeconds);
  const int whole = static_cast<int>(rest);
  const int part = static_cast<int>(std::floor((rest - whole) * scale + 1e-3));
  char clock[64];
  std::snprintf(clock, sizeof clock, "T%02d:%02d:%02d", whole / 3600, whole / 60 % 60, whole % 60);
  std::string result = dateText(dateOfDay(static_cast<std::int64_t>(day))) + clock;
  if (decimals > 0) {
    std::snprintf(clock, sizeof clock, ".%0*d", decimals, part);
    result += clock;
  }
  const int minutes = std::abs(offset) / 60;
  std::snprintf(clock, sizeof clock, "%c%02d:%02d", offset < 0 ? '-' : '+', minutes / 60,
                minutes % 60);
  return result + clock;
}

}  // namespace Lumivane::Measure
