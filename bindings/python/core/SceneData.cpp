#include "SceneData.h"

#include <lumivane/cmd/MessageScope.h>
#include <lumivane/session/ClassFile.h>
#include <lumivane/session/Error.h>
#include <lumivane/session/ScenePolygons.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

// The index is what Python looks at, from any thread. The session's scene is kept beside it for
// shots, under a lock; of arrays it is made only if a shot is asked for.
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

bool comesBefore(const Label& a, const Label& b) {
  return std::pair(a.object, a.region) < std::pair(b.object, b.region);
}

}  // namespace

std::shared_ptr<SceneData> SceneData::read(const std::string& path,
                                           const Importers::ImportOptions& options) {
  auto data = std::make_shared<SceneData>();
  if (Importers::Importer::isImportable(path)) {
    data->model.emplace(path, options);
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

std::string SceneData::classTable() {
  const std::lock_guard<std::mutex> lock(mutex);
  return loaded && !loaded->classes().names.empty() ? Session::classesText(*loaded) : "";
}

int SceneData::placeOf(const Label& label) const {
  const std::vector<Label>& labels = arrays.labels;
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

Session::LoadedScene& SceneData::sessionScene() {
  if (!loaded)
    loaded = Session::LoadedScene::fromPolygons(polygonsFor(arrays), "the scene of arrays");
  return *loaded;
}

}  // namespace Lumivane::Python
