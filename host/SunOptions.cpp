// The options of `sun` by what they are for, with the checks that need no file. Which of them need
// which others depends on what is asked for: SunCommand.cpp checks that.
#include "SunOptions.h"

#include "OptionParts.h"

#include <lumivane/pictures/MapPicture.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>

#include <CLI/CLI.hpp>

namespace Lumivane::Host {
namespace {

constexpr const char* PlaceGroup = "Place and days";
constexpr const char* SunGroup = "Sun";
constexpr const char* SkyGroup = "Sky";
constexpr const char* PictureGroup = "Sun-path diagram";

void addOptionalVector(CLI::App& command, const std::string& name, std::optional<Vector>& target,
                       const std::string& help, const std::string& group) {
  command
      .add_option_function<std::string>(
          name, [name, &target](const std::string& text) { target = readVector(name, text); }, help)
      ->type_name("X,Y,Z")
      ->group(group);
}

std::optional<double> numberOf(const std::string& text) {
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  const bool isNumber =
      !text.empty() && *end == '\0' && text.find_first_of(" \t\n\v\f\r") == std::string::npos;
  return isNumber && std::isfinite(number) ? std::optional<double>(number) : std::nullopt;
}

void addDegrees(CLI::App& command, const std::string& name, std::optional<double>& target,
                double limit, const std::string& help) {
  command
      .add_option_function<std::string>(
          name,
          [name, limit, &target](const std::string& text) {
            target = numberOf(text);
            if (target && std::abs(*target) <= limit) return;
            const std::string range = std::to_string(static_cast<int>(limit));
            throw CLI::ValidationError(name + ": \"" + text + "\" is not from -" + range + " to " +
                                       range + " degrees");
          },
          help)
      ->type_name("DEGREES")
      ->group(PlaceGroup);
}

// An angle, or a direction with a level part.
Vector readNorth(const std::string& text) {
  constexpr double Degree = 3.141592653589793 / 180.0;
  if (text.find(',') == std::string::npos) {
    if (const std::optional<double> angle = numberOf(text))
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

std::string tableFault(const std::string& path) {
  const std::string ending = std::filesystem::path(path).extension().string();
  return ending == ".csv" || ending == ".json" ? ""
                                               : "\"" + path + "\" does not end in .csv or .json";
}

void addTable(CLI::App& command, const std::string& name, std::string& target,
              const std::string& help, const char* group) {
  command.add_option(name, target, help + " (.csv or .json)")
      ->check(tableFault, "")
      ->type_name("FILE")
      ->group(group);
}

void addPlace(CLI::App& command, SunOptions& options) {
  addDegrees(command, "--latitude", options.latitude, 90.0, "of the scene, north positive");
  addDegrees(command, "--longitude", options.longitude, 180.0, "of the scene, east positive");
  command
      .add_option("--time-zone", options.timeZone,
                  "what clocks show: hours ahead of UTC, or a name as Europe/Amsterdam")
      ->type_name("ZONE")
      ->group(PlaceGroup);
  command
      .add_option_function<std::string>(
          "--north", [&options](const std::string& text) { options.north = readNorth(text); },
          "the direction to the north in the scene, or its angle in degrees from x towards y: 90 "
          "where y points north")
      ->type_name("X,Y,Z|ANGLE")
      ->group(PlaceGroup);
  for (const auto& [name, target, help] :
       {std::make_tuple("--day", &options.day, "one day"),
        std::make_tuple("--from", &options.from, "the first of some days"),
        std::make_tuple("--to", &options.to, "the last of them")})
    command.add_option(name, *target, help)->type_name("YYYY-MM-DD")->group(PlaceGroup);
  command.add_option("--year", options.year, "all days of a year")
      ->check(CLI::Range(1900, 2100))
      ->type_name("YYYY")
      ->group(PlaceGroup);
  command.get_option("--from")->needs("--to")->excludes("--day")->excludes("--year");
  command.get_option("--to")->needs("--from");
  command.get_option("--year")->excludes("--day");
}

void addSun(CLI::App& command, SunOptions& options) {
  addTable(command, "--intervals", options.intervals,
           "from when to when the sun shines, or what stands in front of it, to write", SunGroup);
  addTable(command, "--days", options.days, "sun hours of each day to write", SunGroup);
  addTable(command, "--months", options.months, "sun hours of each month to write", SunGroup);
  addTable(command, "--totals", options.totals, "sun hours of each eye to write", SunGroup);
  command
      .add_option("--sun-above", options.sunAbove,
                  "the elevation of the sun's centre below which it is not up")
      ->check(CLI::Range(0.0, 90.0))
      ->type_name("DEGREES")
      ->group(SunGroup)
      ->capture_default_str();
}

std::string skyFault(const std::string& text) {
  if (text == "uniform" || text == "patches:145" || text == "patches:577" || text == "patches:2305")
    return "";
  if (text.rfind("cie:", 0) == 0)
    for (int number = 1; number <= 16; ++number)
      if (text.substr(4) == std::to_string(number)) return "";
  return "\"" + text +
         "\" is not uniform, cie:1 to cie:16, patches:145, patches:577 or "
         "patches:2305";
}

void addSky(CLI::App& command, SunOptions& options) {
  command
      .add_option("--horizon", options.horizon,
                  "how high the sky begins around the eye, to write: .hor (azimuth from south, "
                  "elevation) or .txt (elevations from north, clockwise)")
      ->check(
          [](const std::string& path) -> std::string {
            const std::string ending = std::filesystem::path(path).extension().string();
            return ending == ".hor" || ending == ".txt"
                       ? ""
                       : "\"" + path + "\" does not end in .hor or .txt";
          },
          "")
      ->type_name("FILE")
      ->group(SkyGroup);
  command.add_option("--horizon-step", options.horizonStep, "between two azimuths; it divides 360")
      ->check(CLI::Range(0.001, 360.0))
      ->type_name("DEGREES")
      ->group(SkyGroup)
      ->capture_default_str();
  command
      .add_option("--sky", options.sky,
                  "the sky's light: uniform, cie:1 to cie:15 of the CIE Standard General Sky, "
                  "cie:16 overcast, or what is in sight of patches:145, 577 or 2305")
      ->check(skyFault, "")
      ->type_name("SKY")
      ->group(SkyGroup);
  addTable(command, "--sky-values", options.skyValues, "what each eye gets of it, to write",
           SkyGroup);
  addNames(command, "--patch-values", options.patchValues,
           "what is written of patches: solid angles, or weighted by the cosine to the zenith",
           {"solid-angle", "cosine"}, SkyGroup);
  addOptionalVector(command, "--plane", options.plane,
                    "the normal of a plane that gets the light of the sky, besides a level one",
                    SkyGroup);
  command.add_option("--at", options.at, "when, by the clocks of the place, for skies with a sun")
      ->type_name("YYYY-MM-DDTHH:MM")
      ->group(SkyGroup);
  command.get_option("--sky-values")->needs("--sky");
}

void addDiagram(CLI::App& command, SunOptions& options) {
  addFile(command, "--svg", options.svg, "SVG to write: the sky of one eye and the sun's paths",
          PictureGroup);
  addFile(command, "--html", options.html,
          "page of one eye to write: the diagram, sun hours, and what stands in front of the sun",
          PictureGroup);
  addNames(command, "--projection", options.projection, "how directions become a picture",
           {"equidistant", "fisheye"}, PictureGroup);
  addNames(command, "--color-by", options.colorBy,
           "fill cells by the scene's brushes, or each object in a colour of its own",
           {"brush", "object"}, PictureGroup);
  addSize(command, options.size, "size of the picture in pixels", PictureGroup);
  command.get_option("--size")->default_str("800x800");
}

}  // namespace

void setSunOptions(CLI::App& command, SunOptions& options) {
  addScene(command, options.scene, options.import);
  command.remove_option(command.get_option("--two-sided"));  // the look itself sees both sides
  addOptionalVector(command, "--eye", options.eye, "where the eye stands", "Options");
  command.add_option("--views", options.views, "table of many eyes (CSV), as grid writes it")
      ->type_name("TABLE")
      ->excludes("--eye");
  command.add_flag("--two-sided", options.twoSided, "polygons are seen from behind, too");
  command.add_option("--threads", options.threads, "threads; 0 for as many as processors")
      ->type_name("N")
      ->check(CLI::Range(0, 1024))
      ->capture_default_str();
  addCsvSafe(command, options.csvSafe);
  addPlace(command, options);
  addSun(command, options);
  addSky(command, options);
  addDiagram(command, options);
  command.footer(
      "The sun is the centre of its disc, without refraction; it is up above the level horizon, "
      "or\n"
      "above --sun-above.");
}

}  // namespace Lumivane::Host
