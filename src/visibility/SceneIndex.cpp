#include "visibility/IndexBuilder.h"
#include "visibility/IndexState.h"
#include "visibility/SceneArrays.h"

#include <lumivane/session/LoadedScene.h>
#include <lumivane/visibility/SceneIndex.h>

#include <utility>

namespace Lumivane::Visibility {

Cancelled::Cancelled() : std::runtime_error("the look was cancelled") {}
Cancelled::~Cancelled() = default;

SceneIndex::SceneIndex(const Session::LoadedScene& scene, const IndexOptions& options)
    : SceneIndex(scene.scene(), options) {}

SceneIndex::SceneIndex(const Scene::Scene3D& scene, const IndexOptions& options) {
  auto made = std::make_shared<State>();
  buildIndex(polygonsOf(scene), options, *made);
  state = std::move(made);
}

SceneIndex::SceneIndex(PolygonScene scene, const IndexOptions& options) {
  checkArrays(scene);
  auto made = std::make_shared<State>();
  buildIndex(std::move(scene), options, *made);
  state = std::move(made);
}

SceneIndex::SceneIndex(const SceneIndex&) noexcept = default;
SceneIndex& SceneIndex::operator=(const SceneIndex&) noexcept = default;
SceneIndex::SceneIndex(SceneIndex&&) noexcept = default;
SceneIndex& SceneIndex::operator=(SceneIndex&&) noexcept = default;
SceneIndex::~SceneIndex() = default;

std::size_t SceneIndex::regionCount() const { return state->names->regions.size(); }
std::size_t SceneIndex::droppedRegionCount() const { return state->droppedRegions; }
std::size_t SceneIndex::triangulatedRegionCount() const { return state->triangulatedRegions; }
std::size_t SceneIndex::layerCount() const { return state->layersOfSeveral; }

}  // namespace Lumivane::Visibility
