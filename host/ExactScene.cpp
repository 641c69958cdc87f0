#include "ExactScene.h"

#include "HostError.h"

#include <lumivane/session/LoadedScene.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace Lumivane::Host {
namespace {

using Visibility::ShareDepth;

Visibility::SceneIndex indexOf(const std::string& name, const Session::LoadedScene& scene) {
  try {
    return Visibility::SceneIndex(scene);
  } catch (const std::invalid_argument& error) {
    throw HostError(name, error.what());
  }
}

}  // namespace

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

bool hasFractions(const std::string& rows) { return depthOf(rows) >= ShareDepth::Object; }

std::string sharesText(const std::string& path, const std::string& rows, bool isSafe,
                       const Visibility::VisibleMap& map, const Visibility::MapShares& shares) {
  const ShareDepth depth = depthOf(rows);
  return std::filesystem::path(path).extension() == ".json"
             ? Visibility::MapText::json(map, shares, depth)
             : Visibility::MapText::csv(map, shares, depth, isSafe);
}

}  // namespace Lumivane::Host
