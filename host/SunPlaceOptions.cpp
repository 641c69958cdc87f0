#include "SunPlaceOptions.h"

#include "OptionParts.h"

#include <cmath>
#include <cstdlib>
#include <tuple>

#include <CLI/CLI.hpp>

namespace Lumivane::Host {
namespace {

void addDegrees(CLI::App& command, const std::string& name, std::optional<double>& target,
                double limit, const std::string& help, const std::string& group) {
  command
      .add_option_function<std::string>(
          name,
          [name, limit, &target](const std::string& text) {
            target = finiteNumber(text);
            if (target && std::abs(*target) <= limit) return;
            const std::string range = std::to_string(static_cast<int>(limit));
            throw CLI::ValidationError(name + ": \"" + text + "\" is not from -" + range + " to " +
                                       range + " degrees");
          },
          help)
      ->type_name("DEGREES")
      ->group(group);
}

// An angle, or a direction with a level part.
Vector readNorth(const std::string& text) {
  constexpr double Degree = 3.141592653589793 / 180.0;
  if (text.find(',') == std::string::npos) {
    if (const std::optional<double> angle = finiteNumber(text))
      return {std::cos(*angle * Degree), std::sin(*angle * Degree), 0.0};
  } else {
    const Vector north = readVector("--north", text);
    const double length = std::hypot(north[0], north[1]);
    if (std::isfinite(length) && std::isfinite(north[2]) && length > 0.0) return north;
  }
  throw CLI::ValidationError("--north: \"" + text +
                             "\" is neither an angle in degrees from x towards y nor a direction "
                             "X,Y,Z that is not upright");
}

}  // namespace

std::optional<double> finiteNumber(const std::string& text) {
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  const bool isNumber =
      !text.empty() && *end == '\0' && text.find_first_of(" \t\n\v\f\r") == std::string::npos;
  return isNumber && std::isfinite(number) ? std::optional<double>(number) : std::nullopt;
}

void addSunPlace(CLI::App& command, SunPlaceOptions& options, const std::string& group) {
  addDegrees(command, "--latitude", options.latitude, 90.0, "of the scene, north positive", group);
  addDegrees(command, "--longitude", options.longitude, 180.0, "of the scene, east positive",
             group);
  command
      .add_option("--time-zone", options.timeZone,
                  "what clocks show: hours ahead of UTC, or a name as Europe/Amsterdam")
      ->type_name("ZONE")
      ->group(group);
  command
      .add_option_function<std::string>(
          "--north", [&options](const std::string& text) { options.north = readNorth(text); },
          "the direction to the north in the scene, or its angle in degrees from x towards y: 90 "
          "where y points north")
      ->type_name("X,Y,Z|ANGLE")
      ->group(group);
  for (const auto& [name, target, help] :
       {std::make_tuple("--day", &options.day, "one day"),
        std::make_tuple("--from", &options.from, "the first of some days"),
        std::make_tuple("--to", &options.to, "the last of them")})
    command.add_option(name, *target, help)->type_name("YYYY-MM-DD")->group(group);
  command.add_option("--year", options.year, "all days of a year")
      ->check(CLI::Range(1900, 2100))
      ->type_name("YYYY")
      ->group(group);
  command.get_option("--from")->needs("--to")->excludes("--day")->excludes("--year");
  command.get_option("--to")->needs("--from");
  command.get_option("--year")->excludes("--day");
}

}  // namespace Lumivane::Host
