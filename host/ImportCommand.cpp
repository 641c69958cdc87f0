#include "Commands.h"
#include "HostError.h"
#include "ImportWork.h"
#include "OutputNames.h"
#include "ReadyScene.h"
#include "StatsNumbers.h"

#include <lumivane/session/ClassFile.h>
#include <lumivane/session/Error.h>
#include <lumivane/session/Files.h>
#include <lumivane/visibility/SceneFile.h>

#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace Lumivane::Host {
namespace {

// Whether a table can lie beside it: a pipe or device has no place for one.
bool isPlainFile(const std::string& path) {
  std::error_code ignored;
  return !std::filesystem::exists(path, ignored) || std::filesystem::is_regular_file(path, ignored);
}

void checkOutputs(const ImportCommandOptions& options) {
  OutputNames names(sourceFiles(options.file, options.settings));
  if (options.out.empty()) Session::checkWritable(options.out);
  names.add("--output", options.out);
  names.add("--stats", options.stats);
  if (isPlainFile(options.out))
    names.add("the table of classes beside --output", Session::classFileBeside(options.out));
}

// Also without classes if there is a table already: it would be that of another scene.
bool hasTable(const ImportCommandOptions& options, const Session::LoadedScene& scene) {
  if (!isPlainFile(options.out)) return false;
  return !scene.classes().names.empty() ||
         std::filesystem::exists(Session::classFileBeside(options.out));
}

std::string classesLine(const Session::LoadedScene& scene, const std::string& path) {
  std::string list;
  for (const std::string& name : scene.classes().names) list += (list.empty() ? "" : ", ") + name;
  return "Classes in " + path + ": " + (list.empty() ? "none" : list);
}

}  // namespace

namespace {

// A mesh, a city model or a scene file, made ready for looking.
void makeReady(const ImportCommandOptions& options) {
  std::vector<std::string> inputs = sourceFiles(options.file, options.settings);
  OutputNames names(std::move(inputs));
  names.add("--output", options.out);
  names.add("--stats", options.stats);
  if (Visibility::SceneFile::hasEnding(options.file))
    throw ArgumentError(options.file, "is a scene made ready already: copy it");
  ImportSettings settings = options.settings;
  settings.asksForClasses = true;
  const SourcedScene source = loadScene(options.file, settings);
  writeReadyScene(options.out, source);
  if (!options.stats.empty() && source.import.isValid())
    Session::writeFile(options.stats, jsonText(source.import));
}

}  // namespace

void runImport(const ImportCommandOptions& options) {
  Session::checkReadable(options.file);
  if (Visibility::SceneFile::hasEnding(options.out)) return makeReady(options);
  checkOutputs(options);
  Importers::ImportedScene imported = importFile(options.file, options.settings);
  if (!options.settings.classes.empty())
    Session::readClasses(imported.scene, options.settings.classes);
  Session::writeFile(options.out, Importers::Importer::sceneText(imported.scene.scene()));
  std::string lines = reportText(imported.report);
  const std::string table = Session::classFileBeside(options.out);
  if (hasTable(options, imported.scene)) {
    Session::writeFile(table, Session::classesText(imported.scene));
    lines += Session::oneLine(classesLine(imported.scene, table)) + "\n";
  }
  if (!options.stats.empty())
    Session::writeFile(options.stats, jsonText(reportNode(imported.report)));
  std::ostream& target = options.out == "/dev/stdout" ? std::cerr : std::cout;
  target << lines << std::flush;
}

}  // namespace Lumivane::Host
