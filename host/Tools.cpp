// The one file in which the program meets the components beside the core: their options, commands
// and outputs. NoTools.cpp is linked in its place where they are not built.

#include "Tools.h"

#include "AuditReport.h"
#include "Commands.h"
#include "DrawOptions.h"
#include "ImportOptions.h"
#include "ImportWork.h"
#include "OptionParts.h"
#include "ShotShares.h"
#include "Stats.h"
#include "SunOptions.h"
#include "ToolParts.h"
#include "VectorFiles.h"
#include "VisibleFile.h"

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

const std::vector<std::string> RowDepths = {"total", "class", "object", "face", "region"};

class ImportedFile : public Tools::Model {
 public:
  ImportedFile(const std::string& path, const ImportSettings& settings)
      : file(path, importOptions(settings)) {}

  Session::LoadedScene scene(const std::optional<std::array<double, 3>>& eye) override {
    Importers::ImportedScene imported = file.sceneFor(eye);
    report = std::move(imported.report);
    return std::move(imported.scene);
  }
  std::string reportText() const override { return Host::reportText(report); }
  Jzon::Node reportNode() const override { return Host::reportNode(report); }

 private:
  Importers::ImportedModel file;
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

namespace Tools {

const char* sceneHelp() { return "scene file (JSON), mesh or city model"; }

void addSceneOptions(CLI::App& command, ImportSettings& import) {
  addImportSettings(command, import);
}

void addShotOptions(CLI::App& command, ShotOptions& options) {
  addVisible(command, options.visible);
  command.add_flag("--audit", options.audit,
                   "compare the picture with the exact visibility map: how much of it is wrong "
                   "stands in --stats, and on standard error if it is more than 0.1 %");
  setVectorOptions(command, options.vector);
}

void addBatchedShotOptions(CLI::App& command, ShotOptions& options) {
  addShares(command, options.shares, options.rows,
            "what the eye really sees of each object, and the sky, to write (.csv or .json)");
}

void addBatchOptions(CLI::App& command, ImportSettings& import) {
  command.remove_option(command.get_option("--audit"));
  addClasses(command, import);
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
  addNames(command, "--rows", options.rows, "how deep the shares go", RowDepths);
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
      command<FactorsOptions>("factors", "View factors from face to face, with what stands between",
                              setFactorsOptions, runFactors),
      command<SunOptions>(
          "sun", "Sun hours of eye points, horizon lines, sun paths, and the light of the sky",
          setSunOptions, runSun),
      command<ImportCommandOptions>("import", "Make a scene file of a mesh or a city model",
                                    setImportOptions, runImport)};
}

void writeVisible(const ShotOptions& options, ShotShares& shares, Seconds& seconds) {
  if (options.visible.empty()) return;
  const Timer timer(seconds.visible);
  writeVisibleFile(options.visible, shares.get(), options.csvSafe);
}

void writeVectorPictures(const ShotOptions& options, Session::LoadedScene& scene,
                         const Session::TakenShot& shot, ShotShares& shares, Seconds& seconds) {
  const Timer timer(seconds.vector);
  writeVectorFiles(options.vector, scene, options.view, shot, shares, options.width,
                   options.height);
}

Jzon::Node audit(const ShotOptions& options, const Session::TakenShot& shot,
                 const Session::LoadedScene& scene, Seconds& seconds) {
  if (!options.audit) return {};
  const Timer timer(seconds.audit);
  return auditShot(options.scene, shot, scene);
}

std::vector<std::string> sourceFiles(const std::string& path) {
  return Importers::Importer::inputFiles(path);
}

bool isImportable(const std::string& path) { return Importers::Importer::isImportable(path); }

std::unique_ptr<Model> modelOf(const std::string& path, const ImportSettings& settings) {
  if (!isImportable(path)) return nullptr;
  return std::make_unique<ImportedFile>(path, settings);
}

}  // namespace Tools
}  // namespace Lumivane::Host
