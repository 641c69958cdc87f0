// A mesh or a city model to a scene and a shot. The first byte is the format, the second how the
// scene is made, the rest is the file, or two files that are one scene with a form feed between
// them.

#include "Bounded.h"
#include "Bytes.h"

#include <lumivane/check/Finding.h>
#include <lumivane/check/SceneChecker.h>
#include <lumivane/importers/Importer.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/LoadedScene.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace Importers = Lumivane::Importers;
namespace Session = Lumivane::Session;
using Lumivane::Fuzz::Bytes;
using Lumivane::Fuzz::require;

// In letters, so that a seed can be made with an editor.
std::string ending(char letter) {
  switch (letter) {
    case 'o':
      return ".obj";
    case 's':
      return ".stl";
    case 'p':
      return ".ply";
    case 'g':
      return ".gltf";
    case 'b':
      return ".glb";
    case 'l':
      return ".city.jsonl";
    default:
      return ".city.json";
  }
}

Importers::ImportOptions options(char letter) {
  const int bits = letter - '0';
  Importers::ImportOptions options;
  if (bits & 1) options.sides = Importers::ImportSides::Both;
  options.yUp = (bits & 2) != 0;
  options.center = (bits & 4) != 0;
  if (bits & 8) options.eye = {4.1, 0.3, 2.2};
  return options;
}

// A file that goes when the run ends.
class File {
 public:
  File(const std::string& name, const std::string& bytes) : path(name) {
    std::ofstream(path, std::ios::binary) << bytes;
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() { std::filesystem::remove(path); }

  const std::string path;
};

// The files of an input; a second one has another name, so that it may hold the same.
std::vector<std::string> contents(const std::string& bytes, bool isSplit) {
  const std::size_t feed = isSplit ? bytes.find('\f') : std::string::npos;
  if (feed == std::string::npos) return {bytes};
  return {bytes.substr(0, feed), bytes.substr(feed + 1)};
}

bool hasErrors(Lumivane::Scene::Scene3D& scene) {
  return !Lumivane::Check::SceneChecker::errors(scene).empty();
}

void takeShot(Session::LoadedScene& scene) {
  Session::ViewSettings view;
  view.eye = {4.1, 0.3, 2.2};
  view.forward = {-1, 0, -0.4};
  view.maxLength = 0.1;
  const Lumivane::Fuzz::BoundedShots shots(scene.scene(), view);
  if (!shots.arePossible()) return;
  try {
    require(!scene.take(shots.settings()).text().empty());
  } catch (const Session::Error& error) {
    // An edge so near to the eye that no splitting is fine enough.
    require(error.cause().find("no splitting brings its") != std::string::npos);
  }
}

void checkScene(Importers::ImportedScene& imported) {
  Lumivane::Scene::Scene3D& scene = imported.scene.scene();
  require(!hasErrors(scene));
  require(imported.report.regions > 0 && imported.report.points > 0);
  const std::string text = Importers::Importer::sceneText(scene);
  const std::unique_ptr<Lumivane::Scene::Scene3D> again(
      Lumivane::IO::DataReader().readSceneString(text));
  require(again != nullptr && Importers::Importer::sceneText(*again) == text);
  takeShot(imported.scene);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lumivane::Fuzz::silence();
  Bytes bytes(data, size);
  const auto format = bytes.take<char>(), making = bytes.take<char>();
  const bool mayBeTwo = ((making - '0') & 16) != 0;
  std::vector<std::unique_ptr<const File>> files;
  std::vector<std::string> paths;
  for (const std::string& content : contents(bytes.rest(), mayBeTwo)) {
    const std::string name = files.empty() ? "model" : "other";
    files.push_back(std::make_unique<const File>(name + ending(format), content));
    paths.push_back(files.back()->path);
    Importers::Importer::isImportable(paths.back());
  }
  try {
    Importers::ImportedScene imported = Importers::Importer::importFiles(paths, options(making));
    checkScene(imported);
  } catch (const Session::Error& error) {
    require(!error.cause().empty());
  }
  return 0;
}
