#pragma once

#include "ImportSettings.h"

#include <string>

namespace CLI {
class App;
}

namespace Lumivane::Host {

/// Declares the arguments of the command that imports.
void setImportOptions(CLI::App& command, ImportCommandOptions& options);

/// Declares one or more files that are one scene, by their places on the command line.
void addFiles(CLI::App& command, const std::string& name, std::string& file,
              ImportSettings& settings, const std::string& help);

/// The same for the further files of a command whose other places are taken, by an option.
void addOtherFiles(CLI::App& command, ImportSettings& settings);

/// Declares how a command that reads a scene imports a file that is none.
void addImportSettings(CLI::App& command, ImportSettings& settings);

}  // namespace Lumivane::Host
