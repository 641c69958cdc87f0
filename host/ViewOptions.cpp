#include "OptionParts.h"
#include "ToolParts.h"

#include <lumivane/pictures/MapPicture.h>

#include <CLI/CLI.hpp>

namespace Lumivane::Host {
namespace {

constexpr const char* Pictures = "Pictures (need no display)";

void addDirections(CLI::App& command, ViewOptions& options) {
  addVector(command, "--eye", options.eye, "where the eye stands");
  command.get_option("--eye")->required()->default_str("");
  addVector(command, "--forward", options.forward, "the middle of the hemisphere");
  addVector(command, "--up", options.up, "upwards in pictures");
  command
      .add_option_function<std::string>(
          "--target",
          [&options](const std::string& text) { options.target = readVector("--target", text); },
          "a point to look at, in place of --forward")
      ->type_name("X,Y,Z")
      ->excludes("--forward");
}

void addMapPictures(CLI::App& command, ViewOptions& options) {
  addFile(command, "--svg", options.svg, "SVG to write: one path for each cell", Pictures);
  addFile(command, "--pdf", options.pdf, "PDF to write", Pictures);
  addFile(command, "--png-vector", options.png, "PNG to write, with smooth edges", Pictures);
  addFile(command, "--html", options.html,
          "page to explore the map in a browser, with the shares of the objects", Pictures);
  addFile(command, "--report", options.report,
          "page to print: the picture, the sky view factor, tables by class and object, and sun "
          "hours where place and days are given",
          Pictures);
  std::vector<std::string> names;
  for (const Pictures::MapProjectionName& entry : Pictures::mapProjections())
    names.emplace_back(entry.name);
  addNames(command, "--projection", options.projection, "how directions become a picture", names,
           Pictures);
  command.get_option("--projection")
      ->transform(otherNames({{"orthographic", "fisheye"}, {"nusselt", "fisheye"}}));
  addNames(command, "--color-by", options.colorBy,
           "fill cells by the scene's brushes, or each object or class in a colour of its own",
           {"brush", "object", "class"}, Pictures);
  addSize(command, options.size,
          "size of the pictures in pixels; without it 800 high, and as wide as the projection",
          Pictures);
}

}  // namespace

void setViewOptions(CLI::App& command, ViewOptions& options) {
  addScene(command, options.scene, options.import);
  command.remove_option(command.get_option("--two-sided"));  // the look itself sees both sides
  addDirections(command, options);
  addClasses(command, options.import);
  addNames(command, "--field", options.field, "the directions in front, or all",
           {"hemisphere", "sphere"});
  command.add_flag("--two-sided", options.twoSided, "polygons are seen from behind, too");
  addShares(command, options.shares, options.rows,
            "what is seen of each object, and the sky, to write (.csv or .json)");
  command.get_option("--rows")->needs("--shares");
  addCsvSafe(command, options.csvSafe);
  addFile(command, "--map", options.map, "the map itself to write (JSON)");
  addFile(command, "--stats", options.stats, "statistics to write (JSON)");
  command.add_option("--threads", options.threads, "threads; 0 for as many as processors")
      ->type_name("N")
      ->check(CLI::Range(0, 1024))
      ->capture_default_str();
  addMapPictures(command, options);
  addSunPlace(command, options.where, "Sun hours of the page to print (--report)");
}

}  // namespace Lumivane::Host
