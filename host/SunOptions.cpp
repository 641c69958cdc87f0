// The options of `sun` by what they are for, with the checks that need no file. Which of them need
// which others depends on what is asked for: SunCommand.cpp checks that.
#include "SunOptions.h"

#include "OptionParts.h"
#include "ToolParts.h"

#include <lumivane/pictures/MapPicture.h>

#include <algorithm>
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

void addSun(CLI::App& command, SunOptions& options) {
  addTable(command, "--intervals", options.intervals,
           "from when to when the sun shines, or what stands in front of it, to write", SunGroup);
  addTable(command, "--days", options.days, "sun hours of each day to write", SunGroup);
  addTable(command, "--months", options.months, "sun hours of each month to write", SunGroup);
  addTable(command, "--totals", options.totals, "sun hours of each eye to write", SunGroup);
  command
      .add_option("--sun-above", options.sunAbove,
                  "the elevation of the sun's centre below which it is not up")
      ->check(numberRange(0.0, 90.0), "")
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
      ->needs("--horizon")
      ->check(numberRange(0.001, 360.0), "")
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
  command
      .add_option(
          "--at", options.at,
          "when, by the clocks of the place or with an offset from UTC as +02:00, for skies "
          "with a sun")
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
           "fill cells by the scene's brushes, or each object or class in a colour of its own",
           {"brush", "object", "class"}, PictureGroup);
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
  addClasses(command, options.import);
  addCsvSafe(command, options.csvSafe);
  addSunPlace(command, options.where, PlaceGroup);
  addSun(command, options);
  addSky(command, options);
  addDiagram(command, options);
  command.footer(
      "The sun is the centre of its disc, without refraction; it is up above the level horizon, "
      "or\n"
      "above --sun-above. What has been found at the eyes of a table is kept in a file beside the\n"
      "first table of results, named FILE.rows, until all are written: the same command goes on\n"
      "where it was ended.");
}

}  // namespace Lumivane::Host
