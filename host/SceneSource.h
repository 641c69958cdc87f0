#pragma once

#include "ImportSettings.h"

#include <lumivane/jzon/Node.h>
#include <lumivane/session/LoadedScene.h>

#include <string>
#include <vector>

namespace Lumivane::Host {

/// A scene, and what statistics tell about its import: an invalid node if it was a scene file.
struct SourcedScene {
  Session::LoadedScene scene;
  Jzon::Node import;
};

/// All files that `loadScene` reads of a path: itself first, then those that it names.
/// \throws Session::Error
std::vector<std::string> sourceFiles(const std::string& path);

/// Reads a scene file; where the program is built with importers, also a mesh or a city model,
/// telling on standard output what became of it.
/// \throws Session::Error
SourcedScene loadScene(const std::string& path, const ImportSettings& settings);

}  // namespace Lumivane::Host
