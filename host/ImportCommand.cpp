#include "Commands.h"
#include "HostError.h"
#include "ImportWork.h"
#include "StatsNumbers.h"

#include <lumivane/session/Files.h>

#include <iostream>

namespace Lumivane::Host {
namespace {

// Before the work: neither output takes the place of the file or of the other output.
void checkOutputs(const ImportCommandOptions& options) {
  Session::checkWritable(options.out);
  if (Session::sameFile(options.out, options.file))
    throw HostError(options.out, "is already named for another file");
  if (options.stats.empty()) return;
  Session::checkWritable(options.stats);
  for (const std::string& other : {options.file, options.out})
    if (Session::sameFile(options.stats, other))
      throw HostError(options.stats, "is already named for another file");
}

}  // namespace

void runImport(const ImportCommandOptions& options) {
  Session::checkReadable(options.file);
  checkOutputs(options);
  const Exchange::ImportedScene imported = importFile(options.file, options.settings);
  Session::writeFile(options.out, Exchange::Importer::sceneText(imported.scene.scene()));
  if (!options.stats.empty())
    Session::writeFile(options.stats, jsonText(reportNode(imported.report)));
  std::ostream& target = options.out == "/dev/stdout" ? std::cerr : std::cout;
  target << reportText(imported.report) << std::flush;
}

}  // namespace Lumivane::Host
