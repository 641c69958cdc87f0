#include "SceneData.h"

#include <lumivane/cmd/MessageScope.h>
#include <lumivane/session/ClassFile.h>
#include <lumivane/session/Error.h>
#include <lumivane/session/Files.h>
#include <lumivane/session/ScenePolygons.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

// The index is what Python looks at, from any thread. The session's scene is kept beside it for
// shots, under a lock; of arrays, and of a file that is mapped into memory, it is made only if a
// shot is asked for.
namespace Lumivane::Python {
namespace {

using Visibility::Label;
using Visibility::PolygonScene;
using Visibility::SceneIndex;

// As the command line does it: what is wrong with a file is said with its name.
SceneIndex indexOf(const Session::LoadedScene& scene) {
  try {
    return SceneIndex(scene);
  } catch (const std::invalid_argument& error) {
    throw Session::Error(scene.name(), error.what());
  }
}

Session::ScenePolygons polygonsFor(const PolygonScene& scene) {
  Session::ScenePolygons polygons;
  polygons.points = scene.points;
  polygons.offsets = scene.offsets;
  polygons.corners = scene.corners;
  for (const Label& label : scene.labels) polygons.objects.push_back(label.object - 1);
  polygons.objectIds = scene.objectIds;
  return polygons;
}

// Texts of a file of a ready scene. The command line writes and reads the first of them, too.
constexpr const char* SceneText = "scene";
constexpr const char* PlacesText = "places";
constexpr const char* NameText = "content_name";

bool areModels(const std::vector<std::string>& paths) {
  if (paths.size() == 1) return Importers::Importer::isImportable(paths.front());
  for (const std::string& path : paths) {
    Session::checkReadable(path);
    if (!Importers::Importer::isImportable(path))
      throw Session::Error(path,
                           "is no mesh and no city model, as each of several files of one scene "
                           "must be; of a scene give the files that it was made of");
  }
  return true;
}

bool comesBefore(const Label& a, const Label& b) {
  return std::pair(a.object, a.region) < std::pair(b.object, b.region);
}

}  // namespace

std::shared_ptr<SceneData> SceneData::read(const std::vector<std::string>& paths,
                                           const Importers::ImportOptions& options) {
  if (paths.empty()) throw std::invalid_argument("paths: there is none");
  const std::string& path = paths.front();
  if (paths.size() == 1 && Visibility::SceneFile::hasEnding(path)) return ofFile(path);
  auto data = std::make_shared<SceneData>();
  if (areModels(paths)) {
    data->model.emplace(paths, options);
    Importers::ImportedScene imported = data->model->sceneFor({});
    data->report = std::move(imported.report);
    data->loaded = std::move(imported.scene);
  } else {
    data->loaded = Session::LoadedScene::fromFile(path);
    Session::readClassesBeside(*data->loaded);
  }
  data->theIndex = indexOf(*data->loaded);
  data->arrays = Visibility::polygonsOf(*data->loaded);
  return data;
}

std::shared_ptr<SceneData> SceneData::ofText(const std::string& text, const std::string& name,
                                             const std::string& classes) {
  auto data = std::make_shared<SceneData>();
  data->loaded = Session::LoadedScene::fromText(text, name);
  if (!classes.empty()) Session::readClassesText(*data->loaded, classes, name);
  data->theIndex = indexOf(*data->loaded);
  data->arrays = Visibility::polygonsOf(*data->loaded);
  return data;
}

std::shared_ptr<SceneData> SceneData::ofArrays(PolygonScene arrays, std::vector<int> places) {
  auto data = std::make_shared<SceneData>();
  data->theIndex = SceneIndex(arrays);
  data->arrays = std::move(arrays);
  data->places = std::move(places);
  return data;
}

std::shared_ptr<SceneData> SceneData::ofFile(const std::string& path) {
  auto data = std::make_shared<SceneData>();
  data->file.emplace(path);
  data->theIndex = data->file->index();
  const std::string bytes = data->file->text(PlacesText);
  if (bytes.size() == data->names().regions.size() * sizeof(int)) {
    data->places.resize(data->names().regions.size());
    std::memcpy(data->places.data(), bytes.data(), bytes.size());
  }
  return data;
}

void SceneData::write(const std::string& path, const std::string& contentName, bool isWhole) {
  Visibility::SceneFile::Content content;
  content.texts[NameText] = contentName;
  if (isWhole) {
    if (!file || file->outlines().points != nullptr) content.outlines = &polygons();
    if (!places.empty())
      content.texts[PlacesText] =
          std::string(reinterpret_cast<const char*>(places.data()), places.size() * sizeof(int));
    if (!file || file->hasText(SceneText))
      content.texts[SceneText] =
          withScene([](Scene::Scene3D& raw) { return Importers::Importer::sceneText(raw); });
  }
  Visibility::SceneFile::write(path, index(), content);
}

std::string SceneData::contentName() const { return file ? file->text(NameText) : std::string(); }

const PolygonScene& SceneData::polygons() const {
  if (!file) return arrays;
  std::call_once(areArraysCopied, [this] {
    const Visibility::SceneFile::Outlines outlines = file->outlines();
    if (outlines.points == nullptr)
      throw Session::Error("the scene",
                           "came from a file that holds only what looks need, without "
                           "outlines: read the scene itself");
    arrays.points.assign(outlines.points, outlines.points + outlines.pointCount);
    arrays.offsets.assign(outlines.offsets, outlines.offsets + outlines.count + 1);
    arrays.corners.assign(outlines.corners, outlines.corners + arrays.offsets.back());
    arrays.labels = names().regions;
    arrays.objectIds = names().objectIds;
    arrays.classes = names().classes;
    arrays.classNames = names().classNames;
  });
  return arrays;
}

bool SceneData::isOfArrays() const {
  if (file) return !places.empty() || !file->hasText(SceneText);
  return !places.empty() || !loaded;
}

std::string SceneData::classTable() {
  const std::lock_guard<std::mutex> lock(mutex);
  return loaded && !loaded->classes().names.empty() ? Session::classesText(*loaded) : "";
}

int SceneData::placeOf(const Label& label) const {
  const std::vector<Label>& labels = names().regions;
  const auto found = std::lower_bound(labels.begin(), labels.end(), label, comesBefore);
  if (found == labels.end() || *found != label) return -1;
  const auto position = static_cast<std::size_t>(found - labels.begin());
  return position < places.size() ? places[position] : static_cast<int>(position);
}

std::unique_ptr<Session::TakenShot> SceneData::take(const Session::ViewSettings& view) {
  const std::lock_guard<std::mutex> lock(mutex);
  // A package prints nothing: what the library reports stands in the shot's values.
  const Cmd::MessageScope quiet({});
  if (!model) return std::make_unique<Session::TakenShot>(sessionScene().take(view));
  Session::LoadedScene ordered = std::move(model->sceneFor(view.eye).scene);
  return std::make_unique<Session::TakenShot>(ordered.take(view));
}

Session::LoadedScene SceneData::sceneOfFile() const {
  if (!file->hasText(SceneText))
    throw Session::Error("the scene",
                         "came from a file that holds only what looks need, and none "
                         "for shots and checks: read the scene itself");
  Session::LoadedScene scene = Session::LoadedScene::fromText(file->text(SceneText), "the scene");
  if (!names().classNames.empty()) scene.setClasses({names().classNames, names().classes});
  return scene;
}

Session::LoadedScene& SceneData::sessionScene() {
  if (!loaded && file) loaded = sceneOfFile();
  if (!loaded)
    loaded = Session::LoadedScene::fromPolygons(polygonsFor(arrays), "the scene of arrays");
  return *loaded;
}

}  // namespace Lumivane::Python
