#pragma once

#include "ImportSettings.h"

namespace CLI {
class App;
}

namespace Lumivane::Host {

/// Declares the arguments of the command that imports.
void setImportOptions(CLI::App& command, ImportCommandOptions& options);

/// Declares how a command that reads a scene imports a file that is none.
void addImportSettings(CLI::App& command, ImportSettings& settings);

}  // namespace Lumivane::Host
