#include "algorithm/pipeline/ShotBudget.h"
#include "algorithm/pipeline/SortFacts.h"
#include "session/LoadedSceneState.h"
#include "session/ProgressPoll.h"
#include "session/Reading.h"
#include "session/SceneOfPolygons.h"
#include "session/SharedSettings.h"
#include "session/TakenShotState.h"

#include <lumivane/check/InsideTest.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/session/Faults.h>

#include <cstddef>
#include <new>
#include <set>
#include <stdexcept>
#include <utility>

// A scene and its takes. A take borrows the settings of the process and of its thread, and gives
// them back however it ends.
namespace Lumivane::Session {
namespace {

constexpr const char* NoShot = "no shot can be made: ";

thread_local bool isTaking = false;

// What one take gives the pipeline in its thread, beside the settings of the process: it is put
// back at the end.
class ThreadOfTake {
 public:
  explicit ThreadOfTake(const ViewSettings& view) : limits(Algorithm::shotLimits()) {
    Algorithm::shotLimits() = {view.limitPoints, view.limitMemory, view.threads};
    Algorithm::sortFacts() = {};
    isTaking = true;
  }
  ThreadOfTake(const ThreadOfTake&) = delete;
  ThreadOfTake& operator=(const ThreadOfTake&) = delete;
  ~ThreadOfTake() {
    Algorithm::shotLimits() = limits;
    isTaking = false;
  }

 private:
  Algorithm::ShotLimits limits;
};

Shot::Shot2d* make(Scene::Scene3D& scene, const ViewSettings& view, ViewSetup& setup,
                   const Progress& progress) {
  const SharedSettings settings(view);
  const ThreadOfTake thread(view);
  ProgressPoll poll(progress);
  Shot::Shot2d* const shot = scene.makeShot(setup.view(), setup.parameters());
  if (shot != nullptr) poll.finish();
  return shot;
}

std::string faultBeforehand(Scene::Scene3D& scene, const ViewSettings& view) {
  if (ProgressPoll::isThisThread()) return "a progress callback must not take a shot";
  if (isTaking) return "a sink of messages must not take a shot";
  const std::string fault = view.fault();
  if (!fault.empty()) return fault;
  if (view.checkScene) return sceneErrors(scene);
  return scene.getObjects() == nullptr ? sceneFault(scene, view) : "";
}

std::size_t regionCount(Scene::Scene3D& scene) {
  std::size_t count = 0;
  if (scene.getObjects() == nullptr) return count;
  for (const Scene::Object* const object : *scene.getObjects()->getObjects())
    if (object != nullptr && object->getRegions() != nullptr)
      count += object->getRegions()->getRegions()->size();
  return count;
}

std::string classesFault(const SurfaceClasses& classes, std::size_t regions) {
  if (!classes.regions.empty() && classes.regions.size() != regions)
    return "there are classes of " + std::to_string(classes.regions.size()) +
           " regions, but the scene has " + std::to_string(regions);
  for (const int number : classes.regions)
    if (number < -1 || number >= static_cast<long long>(classes.names.size()))
      return "class number " + std::to_string(number) + " points at none of the " +
             std::to_string(classes.names.size()) + " names";
  std::set<std::string> known;
  for (const std::string& name : classes.names) {
    if (name.empty()) return "a class has no name";
    if (!known.insert(name).second) return "there are two classes \"" + name + "\"";
  }
  return "";
}

// Forgets what a shot that failed half way has left on the objects.
Error failure(LoadedScene& scene, const std::string& cause) {
  scene.releaseWorkingLists();
  return {scene.name(), NoShot + cause};
}

}  // namespace

LoadedScene LoadedScene::fromFile(const std::string& path) {
  return LoadedScene(std::make_shared<State>(
      readText(readDocument(path), path, &IO::DataReader::readSceneString), path));
}

LoadedScene LoadedScene::fromText(const std::string& text, const std::string& name) {
  return LoadedScene(
      std::make_shared<State>(readText(text, name, &IO::DataReader::readSceneString), name));
}

LoadedScene LoadedScene::adopt(Scene::Scene3D* scene, const std::string& name) {
  std::unique_ptr<Scene::Scene3D> owned(scene);
  if (owned == nullptr) throw Error(name, "there is no scene");
  return LoadedScene(std::make_shared<State>(std::move(owned), name));
}

LoadedScene LoadedScene::fromPolygons(const ScenePolygons& polygons, const std::string& name) {
  return LoadedScene(std::make_shared<State>(sceneOfPolygons(polygons, name), name));
}

LoadedScene::LoadedScene(std::shared_ptr<State> newState) : state(std::move(newState)) {}
LoadedScene::LoadedScene(LoadedScene&&) noexcept = default;
LoadedScene& LoadedScene::operator=(LoadedScene&&) noexcept = default;
LoadedScene::~LoadedScene() = default;

Scene::Scene3D& LoadedScene::scene() const { return *state->scene; }

const std::string& LoadedScene::name() const { return state->name; }

const SurfaceClasses& LoadedScene::classes() const { return state->classes; }

void LoadedScene::setClasses(SurfaceClasses classes) {
  const std::string fault = classesFault(classes, regionCount(scene()));
  if (!fault.empty()) throw Error(name(), fault);
  state->classes = std::move(classes);
}

void LoadedScene::releaseWorkingLists() { Session::releaseWorkingLists(scene()); }

TakenShot LoadedScene::take(const ViewSettings& view, const Progress& progress) {
  const std::string fault = faultBeforehand(scene(), view);
  if (!fault.empty()) throw Error(name(), NoShot + fault);
  releaseWorkingLists();

  auto taken = std::make_unique<TakenShot::State>(state, view);
  Shot::Shot2d* shot = nullptr;
  try {
    shot = make(scene(), view, taken->setup, progress);
  } catch (const std::out_of_range& error) {
    const std::string place = sceneFault(scene(), view);
    throw failure(*this, place.empty() ? error.what() : place);
  } catch (const std::bad_alloc&) {
    releaseWorkingLists();
    throw;  // a text for it would need memory as well
  } catch (const std::exception& error) {
    throw failure(*this, error.what());
  }
  if (shot == nullptr) throw failure(*this, "the library gives none");
  taken->hold(shot, Algorithm::sortFacts());
  taken->isInside = Check::InsideTest(scene()).isInside(taken->setup.eye());
  return TakenShot(std::move(taken));
}

}  // namespace Lumivane::Session
