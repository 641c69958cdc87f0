// Named zones are the C library's: it is asked for the offset of every hour of the years, and where
// that changes, for the second in between.
#include "SunZone.h"

#include "HostError.h"

#include <cctype>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;
using Measure::TimeZone;

constexpr int HourSeconds = 3600;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// H, HH, HH:MM or HHMM, with or without a sign, as seconds.
std::optional<int> offsetOf(std::string_view text) {
  const bool isWest = !text.empty() && text[0] == '-';
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
  std::string digits;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool isColon = text[i] == ':' && text.size() >= 4 && i == text.size() - 3;
    if (!isDigit(text[i]) && !isColon) return std::nullopt;
    if (!isColon) digits += text[i];
  }
  const bool hasMinutes = digits.size() > 2;
  if (digits.empty() || digits.size() > 4) return std::nullopt;
  const int number = std::stoi(digits);
  const int hours = hasMinutes ? number / 100 : number;
  const int minutes = hasMinutes ? number % 100 : 0;
  if (hours > 14 || minutes > 59) return std::nullopt;
  const int seconds = hours * HourSeconds + minutes * 60;
  return isWest ? -seconds : seconds;
}

bool isKnown(const std::string& name) {
  if (name.empty() || name[0] == '/' || name.find("..") != std::string::npos) return false;
  for (const char c : name)
    if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '/' && c != '_' && c != '-' &&
        c != '+')
      return false;
  const char* const folder = std::getenv("TZDIR");
  std::error_code error;
  return fs::is_regular_file(fs::path(folder != nullptr ? folder : "/usr/share/zoneinfo") / name,
                             error);
}

// While it lives, local times are those of a zone.
class LocalZone {
 public:
  explicit LocalZone(const std::string& name) {
    if (const char* const zone = std::getenv("TZ")) before = zone;
    ::setenv("TZ", (":" + name).c_str(), 1);
    ::tzset();
  }
  LocalZone(const LocalZone&) = delete;
  LocalZone& operator=(const LocalZone&) = delete;
  ~LocalZone() {
    if (before)
      ::setenv("TZ", before->c_str(), 1);
    else
      ::unsetenv("TZ");
    ::tzset();
  }

  static int offsetAt(std::time_t moment) {
    std::tm local{};
    ::localtime_r(&moment, &local);
    return static_cast<int>(local.tm_gmtoff);
  }

 private:
  std::optional<std::string> before;
};

std::time_t momentOf(int year) {
  return static_cast<std::time_t>(Measure::dayNumber({year, 1, 1})) * 24 * HourSeconds;
}

// Looks every hour, and for the second of a change in between.
TimeZone zoneOf(const std::string& name, int firstYear, int lastYear) {
  const LocalZone zone(name);
  constexpr std::time_t Around = 3 * 24 * HourSeconds;
  const std::time_t end = momentOf(lastYear + 1) + Around;
  std::time_t at = momentOf(firstYear) - Around;
  std::vector<TimeZone::Step> steps;
  steps.push_back({static_cast<double>(at), LocalZone::offsetAt(at)});
  for (; at < end; at += HourSeconds) {
    if (LocalZone::offsetAt(at + HourSeconds) == steps.back().offset) continue;
    std::time_t low = at;
    std::time_t high = at + HourSeconds;
    while (high - low > 1) {
      const std::time_t middle = low + (high - low) / 2;
      (LocalZone::offsetAt(middle) == steps.back().offset ? low : high) = middle;
    }
    steps.push_back({static_cast<double>(high), LocalZone::offsetAt(high)});
  }
  return TimeZone(steps);
}

}  // namespace

TimeZone timeZoneOf(const std::string& zone, int firstYear, int lastYear) {
  if (const std::optional<int> offset = offsetOf(zone)) return TimeZone(*offset);
  if (isKnown(zone)) return zoneOf(zone, firstYear, lastYear);
  throw HostError("--time-zone", "\"" + oneLine(zone) +
                                     "\" is neither an offset from UTC in hours, as 1 or -07:30, "
                                     "nor the name of a zone that this system knows, as "
                                     "Europe/Amsterdam");
}

}  // namespace Lumivane::Host
