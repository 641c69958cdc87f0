#include "ExactScene.h"

#include "BuildingRows.h"
#include "HostError.h"

#include <lumivane/session/LoadedScene.h>
#include <lumivane/visibility/SceneFile.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace Lumivane::Host {
namespace {

using Visibility::ShareDepth;

constexpr const char* BuildingDepth = "building";

Visibility::SceneIndex indexOf(const std::string& name, const Session::LoadedScene& scene) {
  try {
    return Visibility::SceneIndex(scene);
  } catch (const std::invalid_argument& error) {
    throw HostError(name, error.what());
  }
}

ShareDepth depthOf(const std::string& rows) {
  const std::pair<const char*, ShareDepth> depths[] = {{"total", ShareDepth::Total},
                                                       {"class", ShareDepth::Class},
                                                       {"object", ShareDepth::Object},
                                                       {"face", ShareDepth::Face},
                                                       {"region", ShareDepth::Region}};
  const auto* const found =
      std::find_if(std::begin(depths), std::end(depths),
                   [&rows](const auto& entry) { return rows == entry.first; });
  return found == std::end(depths) ? ShareDepth::Object : found->second;
}

}  // namespace

Visibility::SceneIndex sceneIndexOf(const std::string& name, const SourcedScene& source) {
  return source.ready ? source.ready->index() : indexOf(name, source.scene());
}

ExactScene::ExactScene(const std::string& name, const SourcedScene& source)
    : index(sceneIndexOf(name, source)), wholes(source.wholes) {}

ExactScene::ExactScene(const std::string& name, const Session::LoadedScene& scene)
    : index(indexOf(name, scene)) {}

ExactView ExactScene::look(const Session::ViewSettings& view) const {
  Visibility::LookOptions options;
  options.forward = view.forward;
  options.up = view.up;
  Visibility::VisibleMap map = look(view.eye, options);
  Visibility::MapShares shares(map);
  return {std::move(map), std::move(shares)};
}

Visibility::VisibleMap ExactScene::look(const Visibility::Vector& eye,
                                        const Visibility::LookOptions& options) const {
  try {
    return index.look(eye, options);
  } catch (const std::invalid_argument& error) {
    throw HostError("the view", error.what());
  }
}

std::vector<Visibility::ShareRow> ExactScene::shareRows(const std::string& rows,
                                                        const Visibility::VisibleMap& map,
                                                        const Visibility::MapShares& shares) const {
  return rows == BuildingDepth ? buildingRows(map, shares, wholes)
                               : Visibility::shareRows(map, shares, depthOf(rows));
}

std::string ExactScene::sharesText(const std::string& path, const std::string& rows, bool isSafe,
                                   const Visibility::VisibleMap& map,
                                   const Visibility::MapShares& shares) const {
  using Visibility::MapText;
  const std::vector<Visibility::ShareRow> all = shareRows(rows, map, shares);
  return std::filesystem::path(path).extension() == ".json"
             ? MapText::json(map, all)
             : MapText::csvHeading(map.field) + "\n" + MapText::csvRows(all, map.field, "", isSafe);
}

bool hasFractions(const std::string& rows) {
  return rows != BuildingDepth && depthOf(rows) >= ShareDepth::Object;
}

Visibility::MapShares::Objects objectsOf(const std::string& rows) {
  using Objects = Visibility::MapShares::Objects;
  return rows == BuildingDepth || hasFractions(rows) ? Objects::All : Objects::Seen;
}

}  // namespace Lumivane::Host
