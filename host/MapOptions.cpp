// The arguments of `map`, with the checks that need no file.

#include "MapOptions.h"

#include "DrawOptions.h"
#include "OptionParts.h"
#include "Tools.h"

#include <cmath>
#include <cstdlib>

#include <CLI/CLI.hpp>

namespace Lumivane::Host {
namespace {

const char* const PageGroup = "Page";
const char* const FileGroup = "Files";

bool readNumber(const std::string& text, double& number) {
  char* end = nullptr;
  number = std::strtod(text.c_str(), &end);
  return !text.empty() && *end == '\0' && std::isfinite(number);
}

std::array<double, 2> readRange(const std::string& text) {
  const std::size_t comma = text.find(',');
  std::array<double, 2> range{};
  if (comma == std::string::npos || !readNumber(text.substr(0, comma), range[0]) ||
      !readNumber(text.substr(comma + 1), range[1]) || !(range[0] < range[1]))
    throw CLI::ValidationError("--range: \"" + text + "\" is not LOW,HIGH, the first one smaller");
  return range;
}

void readWhere(const std::string& text, MapOptions& options) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0)
    throw CLI::ValidationError("--where: \"" + text + "\" is not COLUMN=TEXT");
  options.whereColumn = text.substr(0, equals);
  options.whereText = text.substr(equals + 1);
}

void addLength(CLI::App& command, const std::string& name, double& target, const std::string& help,
               double low, double high, const char* group) {
  command.add_option(name, target, help)
      ->check(numberRange(low, high), "")
      ->type_name("MM")
      ->capture_default_str()
      ->group(group);
}

void addValues(CLI::App& command, MapOptions& options) {
  command.add_option("--column", options.column, "the values, a column of the table")
      ->type_name("NAME")
      ->capture_default_str();
  command
      .add_option_function<std::string>(
          "--where", [&options](const std::string& text) { readWhere(text, options); },
          "only rows with this text in a column, as kind=sky")
      ->type_name("COLUMN=TEXT");
  command
      .add_option("--views", options.views,
                  "table of views with the eyes, which are found by the column name, where the "
                  "values have none")
      ->type_name("VIEWS");
  command
      .add_option_function<std::string>(
          "--range", [&options](const std::string& text) { options.range = readRange(text); },
          "the values at both ends of the colours; without it the least and the greatest")
      ->type_name("LOW,HIGH");
  command
      .add_option("--cell", options.cell,
                  "side of the squares that are filled, in scene units, or 0 for dots; without it "
                  "squares where the eyes stand in a grid")
      ->check(numberRange(0.0, 1e9), "")
      ->type_name("L");
  addLength(command, "--dot", options.dot, "width of dots", 0.01, 100.0, "Options");
}

}  // namespace

void setMapOptions(CLI::App& command, MapOptions& options) {
  Tools::addSceneBeforeOthers(command, options.scene, options.import);
  command
      .add_option("TABLE", options.table,
                  "values where eyes stand (CSV), as summary.csv of a batch or --shares of grid")
      ->required()
      ->type_name("");
  addValues(command, options);
  addLength(command, "--width", options.width, "of the picture without its margins", 1.0, 20000.0,
            PageGroup);
  command
      .add_option_function<std::string>(
          "--scale", [&options](const std::string& text) { options.scale = readScale(text); },
          "for scenes in metres, in place of --width")
      ->type_name("1:N")
      ->group(PageGroup);
  command
      .add_option_function<std::string>(
          "--page", [&options](const std::string& text) { options.page = readPage(text); },
          "A0 to A6, A4-landscape, or width and height in mm; without it as large as the picture")
      ->type_name("NAME|WxH")
      ->group(PageGroup);
  command.add_option("--title", options.title, "over the colours; without it the column's name")
      ->type_name("TEXT")
      ->group(PageGroup);
  addFile(command, "--svg", options.svg, "SVG to write", FileGroup);
  addFile(command, "--pdf", options.pdf, "PDF to write", FileGroup);
  addFile(command, "--png", options.png, "PNG to write", FileGroup);
  command.add_option("--dpi", options.dpi, "dots per inch of the PNG")
      ->type_name("N")
      ->check(CLI::Range(1, 4800))
      ->capture_default_str()
      ->needs("--png")
      ->group(FileGroup);
}

}  // namespace Lumivane::Host
