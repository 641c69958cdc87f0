#include "truth/SceneFiles.h"

#include <lumivane/importers/Importer.h>

#include <algorithm>
#include <filesystem>

namespace Lumivane::Truth {

namespace Fs = std::filesystem;

Session::LoadedScene sceneOfFile(const std::string& path) {
  return Importers::Importer::isImportable(path) ? Importers::Importer::importFile(path).scene
                                                 : Session::LoadedScene::fromFile(path);
}

std::vector<std::string> sampleFiles(const std::string& folder) {
  std::vector<std::string> files;
  for (const std::string& place : {folder, folder + "/models"})
    for (const auto& entry : Fs::directory_iterator(place))
      if (entry.path().extension() == ".json" || entry.path().extension() == ".obj")
        files.push_back(entry.path().string());
  std::sort(files.begin(), files.end());
  return files;
}

std::string nameOfFile(const std::string& path) { return Fs::path(path).filename().string(); }

bool isCity(const std::string& path) {
  return nameOfFile(path).find(".city.json") != std::string::npos;
}

}  // namespace Lumivane::Truth
