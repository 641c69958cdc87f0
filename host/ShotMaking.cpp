#include "ShotMaking.h"

#include "HostError.h"
#include "Options.h"
#include "ProgressBar.h"
#include "SceneFaults.h"
#include "ViewSetup.h"

#include <lumivane/scene/Scene3D.h>

#include <stdexcept>

namespace Lumivane::Host {
namespace {

constexpr const char* NoShot = "no shot can be made: ";

Shot::Shot2d* made(Scene::Scene3D& scene, ViewSetup& setup) {
  const ProgressBar bar;
  return scene.makeShot(setup.view(), setup.parameters());
}

}  // namespace

Shot::Shot2d* makeShot(const std::string& sceneFile, Scene::Scene3D& scene,
                       const ViewOptions& options, ViewSetup& setup) {
  const std::string fault = viewFault(options);
  if (!fault.empty()) throw HostError(sceneFile, NoShot + fault);
  if (scene.getObjects() == nullptr)
    throw HostError(sceneFile, std::string(NoShot) + "it has no list of objects");
  setSplitting(options);

  Shot::Shot2d* shot = nullptr;
  try {
    shot = made(scene, setup);
  } catch (const std::out_of_range& error) {
    const std::string place = sceneFault(scene, options);
    throw HostError(sceneFile,
                    NoShot + (place.empty() ? "" : place + " ") + "(" + error.what() + ")");
  } catch (const std::exception& error) {
    throw HostError(sceneFile, NoShot + std::string(error.what()));
  }
  if (shot == nullptr) throw HostError(sceneFile, std::string(NoShot) + "the library gives none");
  return shot;
}

}  // namespace Lumivane::Host
