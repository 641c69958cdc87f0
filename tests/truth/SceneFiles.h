#pragma once

#include <lumivane/session/LoadedScene.h>

#include <string>
#include <vector>

namespace Lumivane::Truth {

/// A scene of any file that can be read: a scene file, or what importers read.
Session::LoadedScene sceneOfFile(const std::string& path);

/// The sample scenes and models of a folder and of its folder `models`, sorted.
std::vector<std::string> sampleFiles(const std::string& folder);

/// The name of a file without its folders.
std::string nameOfFile(const std::string& path);

/// Whether a file holds a city model: its unit is the metre.
bool isCity(const std::string& path);

}  // namespace Lumivane::Truth
