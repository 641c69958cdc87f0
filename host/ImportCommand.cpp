#include "Commands.h"
#include "HostError.h"
#include "ImportWork.h"
#include "OutputNames.h"
#include "StatsNumbers.h"

#include <lumivane/session/Files.h>

#include <iostream>

namespace Lumivane::Host {
namespace {

void checkOutputs(const ImportCommandOptions& options) {
  OutputNames names(Importers::Importer::inputFiles(options.file));
  if (options.out.empty()) Session::checkWritable(options.out);
  names.add(options.out);
  names.add(options.stats);
}

}  // namespace

void runImport(const ImportCommandOptions& options) {
  Session::checkReadable(options.file);
  checkOutputs(options);
  const Importers::ImportedScene imported = importFile(options.file, options.settings);
  Session::writeFile(options.out, Importers::Importer::sceneText(imported.scene.scene()));
  if (!options.stats.empty())
    Session::writeFile(options.stats, jsonText(reportNode(imported.report)));
  std::ostream& target = options.out == "/dev/stdout" ? std::cerr : std::cout;
  target << reportText(imported.report) << std::flush;
}

}  // namespace Lumivane::Host
