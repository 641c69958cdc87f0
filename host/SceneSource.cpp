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

}  // namespace Lumivane::Host
