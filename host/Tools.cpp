// The one file in which the program meets the components beside the core: their options, commands
// and outputs. NoTools.cpp is linked in its place where they are not built.

#include "Tools.h"

#include "AuditReport.h"
#include "Commands.h"
#include "DrawOptions.h"
#include "Geodata.h"
#include "ImportOptions.h"
#include "ImportWork.h"
#include "MapOptions.h"
#include "OptionParts.h"
#include "ReadyScene.h"
#include "ShotShares.h"
#include "Stats.h"
#include "SunOptions.h"
#include "ToolParts.h"
#include "VectorFiles.h"
#include "VisibleFile.h"

#include <lumivane/check/InsideTest.h>
#include <lumivane/measure/ShareClasses.h>
#include <lumivane/session/ClassFile.h>
#include <lumivane/visibility/SceneFile.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <utility>

#include <CLI/CLI.hpp>

namespace Lumivane::Host {
namespace {

void addVisible(CLI::App& command, std::string& visible) {
  command
      .add_option("--visible", visible,
                  "what is visible in the picture of every object, face and region, to write "
                  "(.csv or .json); view writes what the eye really sees")
      ->check(visibleFileFault, "")
      ->type_name("FILE");
}

const std::vector<std::string> RowDepths = {"total",  "class", "building",
                                            "object", "face",  "region"};

constexpr const char* SceneHelp =
    "scene file (JSON), mesh, city model, or a scene made ready (.lumiscene)";

class ImportedFile : public Tools::Model {
 public:
  ImportedFile(const std::string& path, const ImportSettings& settings)
      : file(modelFiles(path, settings), importOptions(settings)), scale(settings.scale) {
    if (settings.classes.empty()) return;
    // Numbers in the table are those of the scene without an eye.
    Session::LoadedScene classed = file.sceneFor({}).scene;
    Session::readClasses(classed, settings.classes);
    file.setClasses(classed.classes());
  }

  Session::LoadedScene scene(const std::optional<std::array<double, 3>>& eye) override {
    Importers::ImportedScene imported = file.sceneFor(eye);
    report = std::move(imported.report);
    return std::move(imported.scene);
  }
  std::string reportText() const override { return Host::reportText(report); }
  Jzon::Node reportNode() const override { return Host::reportNode(report); }
  FilePlace place() const override {
    return {report.shift, scale, report.turned, report.referenceSystem};
  }
  Wholes wholes() const override { return report.wholes; }

 private:
  Importers::ImportedModel file;
  double scale;
  Importers::ImportReport report;
};

}  // namespace

void addShares(CLI::App& command, std::string& shares, std::string& rows, const std::string& help) {
  command.add_option("--shares", shares, help)->check(visibleFileFault, "")->type_name("FILE");
  addNames(command, "--rows", rows, "how deep the shares go", RowDepths);
}

void addClasses(CLI::App& command, ImportSettings& import) {
  import.asksForClasses = true;
  command
      .add_option("--classes", import.classes,
                  "what surfaces are (roof, wall ...): a table with the columns id or object, face "
                  "and class to read (.csv); without it that beside the scene file, if there is "
                  "one, named SCENE.classes.csv without the scene's .json")
      ->type_name("FILE");
}

namespace {

// Where the eyes of a grid stand if not over one level.
void addPlaces(CLI::App& command, GridOptions& options) {
  CLI::Option* const ground = command.get_option("--ground");
  CLI::Option* const above =
      command
          .add_option(
              "--above", options.above,
              "what the height is measured from at each place: the highest surface that is "
              "seen from above (surface), the lowest one that is no building's and no body's "
              "(ground), the highest one of terrain, or of a class")
          ->type_name("surface|ground|terrain|CLASS")
          ->excludes(ground);
  CLI::Option* const on =
      command
          .add_option("--on", options.on,
                      "eyes on faces instead, each looking along the normal of its face: by class, "
                      "or roofs and walls by slope where there are no classes")
          ->type_name("roofs|walls|all|CLASS")
          ->excludes(above)
          ->excludes(ground);
  for (const char* other : {"--height", "--look", "--heading"})
    on->excludes(command.get_option(other));
  command.add_option("--clearance", options.clearance, "distance of eyes on faces from their face")
      ->check(numberRange(1e-9, 1e9), "")
      ->type_name("L")
      ->capture_default_str()
      ->needs(on);
}

}  // namespace

namespace Tools {

void addScene(CLI::App& command, std::string& scene, ImportSettings& import) {
  addFiles(command, "SCENE", scene, import,
           std::string(SceneHelp) + "; several meshes and city models are one scene");
  addImportSettings(command, import);
}

void addSceneBeforeOthers(CLI::App& command, std::string& scene, ImportSettings& import) {
  command.add_option("SCENE", scene, SceneHelp)->required()->type_name("");
  addOtherFiles(command, import);
  addImportSettings(command, import);
}

void addShotOptions(CLI::App& command, ShotOptions& options) {
  addVisible(command, options.visible);
  command.add_flag("--audit", options.audit,
                   "compare the picture with the exact visibility map: how much of it is wrong "
                   "stands in --stats, and on standard error if it is more than 0.1 %; the page "
                   "of --html shades where");
  setVectorOptions(command, options.vector);
}

void addShotSceneOptions(CLI::App& command, ShotOptions& options) {
  addClasses(command, options.import);
}

void addBatchedShotOptions(CLI::App& command, ShotOptions& options) {
  addShares(command, options.shares, options.rows,
            "what the eye really sees of each object, and the sky, to write (.csv or .json)");
  command.add_flag("--no-shots", options.noShots,
                   "find out what the eye really sees, and make no shots: much faster; columns of "
                   "the summary that are counts of shots stay empty");
}

void addBatchOptions(CLI::App& command, BatchOptions& options) {
  command.remove_option(command.get_option("--audit"));
  addClasses(command, options.shot.import);
  constexpr const char* Group = "Maps of the summary";
  const auto ending = [](const std::vector<std::string>& endings) {
    return [endings](const std::string& path) -> std::string {
      const std::string own = std::filesystem::path(path).extension().string();
      if (std::count(endings.begin(), endings.end(), own) > 0) return "";
      return "\"" + path + "\" does not end in " + endings[0];
    };
  };
  command
      .add_option("--raster", options.raster,
                  "GeoTIFF to write into the folder, of a table that grid has made: the sky view "
                  "factor and other columns of the summary as bands")
      ->check(ending({".tif", ".tiff"}), "")
      ->type_name("FILE")
      ->group(Group);
  command
      .add_option("--geojson", options.geojson,
                  "points with the columns of the summary to write into the folder, in degrees "
                  "(GeoJSON)")
      ->check(ending({".geojson", ".json"}), "")
      ->type_name("FILE")
      ->group(Group);
  command
      .add_option("--crs", options.crs,
                  "coordinate reference system of the model's own coordinates, as EPSG:28992; "
                  "without it that of a CityJSON file")
      ->check(
          [](const std::string& text) -> std::string {
            const bool isCode = text.rfind("EPSG:", 0) == 0 && Geodata::epsgCode(text) > 0;
            return isCode ? "" : "\"" + text + "\" is not EPSG:N, with the number of a code";
          },
          "")
      ->type_name("EPSG:N")
      ->group(Group);
}

void addGridOptions(CLI::App& command, GridOptions& options) {
  const auto fault = [](const std::string& path) -> std::string {
    const bool isTable = path.size() > 4 && path.substr(path.size() - 4) == ".csv";
    return isTable ? "" : "\"" + path + "\" does not end in .csv";
  };
  command
      .add_option("--shares", options.shares,
                  "what each eye really sees, and the sky, as one table to write (.csv)")
      ->check(fault, "")
      ->type_name("FILE");
  addPlaces(command, options);
  addNames(command, "--rows", options.rows, "how deep the shares go", RowDepths);
  command.get_option("--rows")->needs("--shares");
  addClasses(command, options.import);
  addCsvSafe(command, options.csvSafe);
}

std::vector<Command> commands() {
  return {
      command<ViewOptions>(
          "view",
          "Exact sky view factor, view factors and solid angles from one point, and their map",
          setViewOptions, runView),
      command<DrawOptions>(
          "draw",
          "Line drawing with hidden lines: perspective, plan, elevation, axonometry, fisheye",
          setDrawOptions, runDraw),
      command<MapOptions>("map", "Plan of a scene with the values of a table in colours",
                          setMapOptions, runMap),
      command<FactorsOptions>("factors", "View factors from face to face, with what stands between",
                              setFactorsOptions, runFactors),
      command<SunOptions>(
          "sun", "Sun hours of eye points, horizon lines, sun paths, and the light of the sky",
          setSunOptions, runSun),
      command<ImportCommandOptions>("import", "Make a scene file of a mesh or a city model",
                                    setImportOptions, runImport)};
}

void writeVisible(const ShotOptions& options, const Session::LoadedScene& scene, ShotShares& shares,
                  Seconds& seconds) {
  if (options.visible.empty()) return;
  const Timer timer(seconds.visible);
  writeVisibleFile(options.visible, shares.get(), Measure::ShareClasses(scene), options.csvSafe);
}

void writeVectorPictures(const ShotOptions& options, Session::LoadedScene& scene,
                         const Session::TakenShot& shot, ShotShares& shares,
                         const AuditedShot& audited, Seconds& seconds) {
  const Timer timer(seconds.vector);
  writeVectorFiles(options.vector, scene, options.view, shot, shares, audited.audit.get(),
                   titleOf(options.scene, options.import), options.width, options.height);
}

AuditedShot audit(const ShotOptions& options, const Session::TakenShot& shot,
                  const Session::LoadedScene& scene, Seconds& seconds) {
  if (!options.audit) return {};
  const Timer timer(seconds.audit);
  return auditShot(
      options.scene, shot, scene,
      options.vector.html.empty() ? Measure::WrongParts::NotKept : Measure::WrongParts::Kept);
}

std::vector<std::string> sourceFiles(const std::string& path) {
  return Importers::Importer::inputFiles(path);
}

bool isImportable(const std::string& path) {
  return Visibility::SceneFile::hasEnding(path) || Importers::Importer::isImportable(path);
}

std::unique_ptr<const Check::InsideTest> insideTestOf(const Visibility::SceneFile& file) {
  return insideTestOfReady(file);
}

const std::vector<std::string>& classNamesOf(const Visibility::SceneFile& file) {
  return file.index().names().classNames;
}

std::unique_ptr<Model> modelOf(const std::string& path, const ImportSettings& settings) {
  if (!settings.also.empty()) return std::make_unique<ImportedFile>(path, settings);
  if (Visibility::SceneFile::hasEnding(path)) return std::make_unique<ReadyScene>(path);
  if (!isImportable(path)) return nullptr;
  return std::make_unique<ImportedFile>(path, settings);
}

}  // namespace Tools
}  // namespace Lumivane::Host
