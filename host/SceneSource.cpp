#include "SceneSource.h"

#ifdef LUMIVANE_HOST_EXCHANGE
#include "ImportWork.h"

#include <lumivane/exchange/Importer.h>

#include <iostream>
#endif

namespace Lumivane::Host {

std::vector<std::string> sourceFiles(const std::string& path) {
#ifdef LUMIVANE_HOST_EXCHANGE
  return Exchange::Importer::inputFiles(path);
#else
  return {path};
#endif
}

SourcedScene loadScene(const std::string& path, const ImportSettings& settings) {
#ifdef LUMIVANE_HOST_EXCHANGE
  if (Exchange::Importer::isImportable(path)) {
    Exchange::ImportedScene imported = importFile(path, settings);
    std::cout << reportText(imported.report) << std::flush;
    return {std::move(imported.scene), reportNode(imported.report)};
  }
#else
  static_cast<void>(settings);
#endif
  return {Session::LoadedScene::fromFile(path), Jzon::Node(Jzon::Node::T_INVALID)};
}

#ifdef LUMIVANE_HOST_EXCHANGE
struct SceneForEyes::Model {
  static std::unique_ptr<Model> of(const std::string& path, const ImportSettings& settings) {
    if (!Exchange::Importer::isImportable(path)) return nullptr;
    return std::make_unique<Model>(Model{Exchange::ImportedModel(path, importOptions(settings))});
  }

  Session::LoadedScene scene(const std::optional<std::array<double, 3>>& eye, bool isReported) {
    Exchange::ImportedScene imported = file.sceneFor(eye);
    if (isReported) std::cout << reportText(imported.report) << std::flush;
    return std::move(imported.scene);
  }

  Exchange::ImportedModel file;
};
#else
struct SceneForEyes::Model {};
#endif

SceneForEyes::SceneForEyes(const std::string& path, const ImportSettings& settings)
#ifdef LUMIVANE_HOST_EXCHANGE
    : model(Model::of(path, settings)),
      current(model ? model->scene({}, true) : Session::LoadedScene::fromFile(path)){}
#else
    : current(Session::LoadedScene::fromFile(path)) {
  static_cast<void>(settings);
}
#endif

      SceneForEyes::~SceneForEyes() = default;

Session::LoadedScene& SceneForEyes::at(const std::array<double, 3>& eye) {
#ifdef LUMIVANE_HOST_EXCHANGE
  if (model && currentEye != eye) {
    currentEye.reset();  // so that a failure leaves no scene under a wrong eye
    current = model->scene(eye, false);
    currentEye = eye;
  }
#else
  static_cast<void>(eye);
#endif
  return current;
}

}  // namespace Lumivane::Host
