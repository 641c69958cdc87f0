#include "algorithm/pipeline/CycleReport.h"
#include "algorithm/pipeline/ShotBudget.h"
#include "session/LoadedSceneState.h"
#include "session/ProgressPoll.h"
#include "session/Reading.h"
#include "session/TakenShotState.h"

#include <lumivane/check/InsideTest.h>
#include <lumivane/cmd/CmdManager.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/session/Faults.h>

#include <mutex>
#include <new>
#include <stdexcept>

namespace Lumivane::Session {
namespace {

constexpr const char* NoShot = "no shot can be made: ";

// Sets what the library reads from its statics, and puts it back at the end.
class Splitting {
 public:
  explicit Splitting(const ViewSettings& view)
      : segments(Cmd::CmdManager::minSegmentsNumber),
        length(Cmd::CmdManager::maxSegmentsLength),
        precision(Geometry::Point2d::Precision),
        limits(Algorithm::shotLimits()) {
    Cmd::CmdManager::minSegmentsNumber = view.segments;
    Cmd::CmdManager::maxSegmentsLength = view.maxLength;
    if (view.mergeDistance > 0.0) Geometry::Point2d::Precision = view.mergeDistance;
    Algorithm::shotLimits() = {view.limitPoints, view.limitMemory};
  }
  Splitting(const Splitting&) = delete;
  Splitting& operator=(const Splitting&) = delete;
  ~Splitting() {
    Cmd::CmdManager::minSegmentsNumber = segments;
    Cmd::CmdManager::maxSegmentsLength = length;
    Geometry::Point2d::Precision = precision;
    Algorithm::shotLimits() = limits;
  }

 private:
  int segments;
  double length;
  double precision;
  Algorithm::ShotLimits limits;
};

Shot::Shot2d* make(Scene::Scene3D& scene, const ViewSettings& view, ViewSetup& setup,
                   const Progress& progress, SortFacts& facts) {
  // The settings, the progress record and the numbers of the depth sort are the whole process's.
  static std::mutex oneAtATime;
  const std::lock_guard<std::mutex> lock(oneAtATime);
  const Splitting splitting(view);
  ProgressPoll poll(progress);
  Algorithm::cycleReported() = false;
  Shot::Shot2d* const shot = scene.makeShot(setup.view(), setup.parameters());
  if (shot != nullptr) poll.finish();
  facts = {Algorithm::sortedFaces(), Algorithm::cycleReported()};
  return shot;
}

std::string faultBeforehand(Scene::Scene3D& scene, const ViewSettings& view) {
  if (ProgressPoll::isThisThread()) return "a progress callback takes no shot itself";
  const std::string fault = view.fault();
  if (!fault.empty()) return fault;
  if (view.checkScene) return sceneErrors(scene);
  return scene.getObjects() == nullptr ? sceneFault(scene, view) : "";
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

LoadedScene::LoadedScene(std::shared_ptr<State> newState) : state(std::move(newState)) {}
LoadedScene::LoadedScene(LoadedScene&&) noexcept = default;
LoadedScene& LoadedScene::operator=(LoadedScene&&) noexcept = default;
LoadedScene::~LoadedScene() = default;

Scene::Scene3D& LoadedScene::scene() const { return *state->scene; }

const std::string& LoadedScene::name() const { return state->name; }

void LoadedScene::releaseWorkingLists() { Session::releaseWorkingLists(scene()); }

TakenShot LoadedScene::take(const ViewSettings& view, const Progress& progress) {
  const std::string fault = faultBeforehand(scene(), view);
  if (!fault.empty()) throw Error(name(), NoShot + fault);
  releaseWorkingLists();

  auto taken = std::make_unique<TakenShot::State>(state, view);
  Shot::Shot2d* shot = nullptr;
  try {
    shot = make(scene(), view, taken->setup, progress, taken->facts);
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
  taken->hold(shot);
  taken->isInside = Check::InsideTest(scene()).isInside(taken->setup.eye());
  return TakenShot(std::move(taken));
}

}  // namespace Lumivane::Session
