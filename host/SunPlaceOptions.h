#pragma once

#include <lumivane/session/ViewSettings.h>

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace Lumivane::Host {

/// Where and on which days the sun is asked for, as the command line says.
struct SunPlaceOptions {
  std::optional<double> latitude;        ///< degrees, north positive
  std::optional<double> longitude;       ///< degrees, east positive
  std::string timeZone;                  ///< an offset from UTC or a name, or empty
  std::optional<Session::Vector> north;  ///< the direction to the north in the scene
  std::string day;                       ///< YYYY-MM-DD, or empty, and so for the next two
  std::string from;
  std::string to;
  std::optional<int> year;

  bool hasDays() const { return !day.empty() || !from.empty() || year; }
};

/// Declares them in one group of the help; `options` must live until they are parsed.
void addSunPlace(CLI::App& command, SunPlaceOptions& options, const std::string& group);

/// The number that a text is, if it is one and finite.
std::optional<double> finiteNumber(const std::string& text);

}  // namespace Lumivane::Host
