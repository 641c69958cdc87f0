// The options of imports: those of the command that imports, and the same ones, in a group of their
// own, of commands that take a mesh or a city model for a scene.

#include "ImportOptions.h"

#include "Options.h"

#include <cmath>
#include <cstdlib>

#include <CLI/CLI.hpp>

namespace Lumivane::Host {
namespace {

constexpr double RightAngle = 90.0;
constexpr const char* ModelGroup = "Options for meshes and city models";

std::string refusedNumber(const std::string& text, const char* wanted,
                          bool (*fits)(double number)) {
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  const bool isNumber = !text.empty() && *end == '\0' && std::isfinite(number);
  return isNumber && fits(number) ? "" : "\"" + text + "\" is not " + wanted;
}

Vector readEye(const std::string& text) {
  const Vector eye = readVector("--eye", text);
  for (const double value : eye)
    if (!std::isfinite(value)) throw CLI::ValidationError("--eye: \"" + text + "\" is not finite");
  return eye;
}

void addSettings(CLI::App& command, ImportSettings& settings, const std::string& scaleName,
                 const std::string& group) {
  settings.scaleOption = scaleName;
  CLI::Option* const twoSided =
      command.add_flag("--two-sided", settings.twoSided, "surfaces are seen from both sides")
          ->group(group);
  command.add_flag("--flip", settings.flip, "surfaces are seen from their inside")
      ->group(group)
      ->excludes(twoSided);
  command.add_option(scaleName, settings.scale, "factor of all lengths")
      ->check(
          [](const std::string& text) {
            return refusedNumber(text, "a finite number above 0", [](double n) { return n > 0.0; });
          },
          "")
      ->type_name("NUMBER")
      ->capture_default_str()
      ->group(group);
  command.add_flag("--y-up", settings.yUp, "y points up in the file; it will be z")->group(group);
  command
      .add_flag("--center", settings.center,
                "put the model's middle at x = y = 0 and its lowest point at z = 0; of a scene "
                "file too, by whole units and with the eye")
      ->group(group);
  command
      .add_flag("--allow-outside", settings.allowOutside,
                "read buffers of a glTF file that lie outside its folder")
      ->group(group);
  command
      .add_option(
          "--crease", settings.crease,
          "while a model is imported, edges with at most this angle between their faces, in "
          "degrees, become docking edges; without it 30 on the ground of a city model, "
          "else 1")
      ->check(
          [](const std::string& text) {
            return refusedNumber(text, "an angle of 0 to 90 degrees",
                                 [](double n) { return n >= 0.0 && n <= RightAngle; });
          },
          "")
      ->type_name("DEGREES")
      ->group(group);
}

}  // namespace

void addFiles(CLI::App& command, const std::string& name, std::string& file,
              ImportSettings& settings, const std::string& help) {
  command
      .add_option_function<std::vector<std::string>>(
          name,
          [&file, &settings](const std::vector<std::string>& files) {
            file = files.front();
            settings.also.assign(files.begin() + 1, files.end());
          },
          help)
      ->required()
      ->type_name("");
}

void setImportOptions(CLI::App& command, ImportCommandOptions& options) {
  addFiles(command, "FILE", options.file, options.settings,
           "mesh or city model (.obj, .stl, .ply, .gltf, .glb, .city.json, .cityjson, "
           ".city.jsonl), or several that are one scene; for a .lumiscene a scene file, too");
  command
      .add_option("-o,--output", options.out,
                  "scene file to write (JSON), or a scene made ready for view, batch and other "
                  "exact looks, "
                  "which start with it at once (.lumiscene)")
      ->required()
      ->type_name("SCENE");
  addSettings(command, options.settings, "--scale", "Options");
  command
      .add_option_function<std::string>(
          "--eye", [&options](const std::string& text) { options.settings.eye = readEye(text); },
          "from where the scene will be seen: its objects are listed from far to near, which "
          "decides where faces overlap cyclically")
      ->type_name("X,Y,Z");
  command
      .add_option("--classes", options.settings.classes,
                  "what surfaces are (roof, wall ...), where the file does not say it: a table "
                  "with the columns id or object, face and class to read (.csv)")
      ->type_name("FILE");
  command.add_option("--stats", options.stats, "statistics to write (JSON)")->type_name("FILE");
}

void addOtherFiles(CLI::App& command, ImportSettings& settings) {
  command
      .add_option("--also", settings.also,
                  "another mesh or city model that is one scene with SCENE; once for each")
      ->allow_extra_args(false)
      ->take_all()
      ->type_name("MODEL")
      ->group(ModelGroup);
}

void addImportSettings(CLI::App& command, ImportSettings& settings) {
  addSettings(command, settings, "--import-scale", ModelGroup);
}

}  // namespace Lumivane::Host
