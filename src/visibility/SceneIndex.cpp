#include "visibility/IndexBuilder.h"
#include "visibility/IndexState.h"
#include "visibility/SceneArrays.h"

#include <lumivane/session/LoadedScene.h>
#include <lumivane/visibility/SceneFile.h>
#include <lumivane/visibility/SceneIndex.h>

#include <utility>

namespace Lumivane::Visibility {

Cancelled::Cancelled() : std::runtime_error("the look was cancelled") {}
Cancelled::~Cancelled() = default;

SceneIndex::SceneIndex(const Session::LoadedScene& scene, const IndexOptions& options) {
  auto made = std::make_shared<State>();
  buildIndex(polygonsOf(scene), options, *made);
  state = std::move(made);
}

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

SceneIndex::SceneIndex(std::shared_ptr<const State> made) noexcept : state(std::move(made)) {}

SceneIndex::SceneIndex(const SceneIndex&) noexcept = default;
SceneIndex& SceneIndex::operator=(const SceneIndex&) noexcept = default;
SceneIndex::SceneIndex(SceneIndex&&) noexcept = default;
SceneIndex& SceneIndex::operator=(SceneIndex&&) noexcept = default;
SceneIndex::~SceneIndex() = default;

SceneIndex SceneIndex::read(const std::string& path) { return SceneFile(path).index(); }
void SceneIndex::write(const std::string& path) const { SceneFile::write(path, *this, {}); }

PolygonScene SceneIndex::pieces() const {
  PolygonScene result;
  for (const Kernel::Vec3& p : state->vertices) result.points.push_back({p.x, p.y, p.z});
  result.offsets.assign(state->cornerOffsets.begin(), state->cornerOffsets.end());
  if (result.offsets.empty()) result.offsets.push_back(0);
  result.corners.assign(state->cornerVertices.begin(), state->cornerVertices.end());
  result.docking.assign(state->cornerInner.begin(), state->cornerInner.end());
  for (const std::int32_t region : state->regions) {
    result.labels.push_back(state->names->regions[static_cast<std::size_t>(region)]);
    result.classes.push_back(state->names->classes[static_cast<std::size_t>(region)]);
  }
  result.objectIds = state->names->objectIds;
  result.classNames = state->names->classNames;
  return result;
}

const VisibleMap::Names& SceneIndex::names() const { return *state->names; }
std::size_t SceneIndex::regionCount() const { return state->names->regions.size(); }
std::size_t SceneIndex::droppedRegionCount() const { return state->droppedRegions; }
std::size_t SceneIndex::triangulatedRegionCount() const { return state->triangulatedRegions; }
std::size_t SceneIndex::layerCount() const { return state->layersOfSeveral; }

}  // namespace Lumivane::Visibility
