#pragma once

#include "ImportSettings.h"

#include <lumivane/importers/Importer.h>
#include <lumivane/jzon/Node.h>

#include <string>
#include <vector>

namespace Lumivane::Host {

/// How to import, as the command line asks for.
Importers::ImportOptions importOptions(const ImportSettings& settings);

/// All files of a scene, itself first. \throws ArgumentError if there are several and one of them
/// is no mesh and no city model
std::vector<std::string> modelFiles(const std::string& path, const ImportSettings& settings);

/// What pictures and pages of a scene are called: the names of all its files, without folders.
std::string titleOf(const std::string& path, const ImportSettings& settings);

/// Imports a file, and those that are one scene with it, as the command line asks for.
/// \throws Session::Error
Importers::ImportedScene importFile(const std::string& path, const ImportSettings& settings);

/// What became of a file, for the reader of a terminal: lines that end.
std::string reportText(const Importers::ImportReport& report);

/// The same for statistics.
Jzon::Node reportNode(const Importers::ImportReport& report);

}  // namespace Lumivane::Host
