#include "Commands.h"
#include "Display.h"
#include "HostError.h"
#include "Input.h"
#include "Options.h"
#include "SceneFaults.h"
#include "ShotMaking.h"
#include "ViewSetup.h"

#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/view/Viewer.h>

#include <stdexcept>

namespace Lumivane::Host {
namespace {

// Kept to the end of the process, as in the command that makes shots.
struct Work {
  explicit Work(const ViewOptions& view) : setup(view) {}

  ViewSetup setup;
  Scene::Scene3D* scene = nullptr;
  Shot::Shot2d* shot = nullptr;
};

void provideShot(const ShowOptions& options, Work& work) {
  if (options.shot.empty()) {
    work.shot = makeShot(options.scene, *work.scene, options.view, work.setup);
    return;
  }
  work.shot = readShot(options.shot);
  if (options.viewGiven) work.shot->setView(work.setup.view());
}

std::string drawingFault(const ShowOptions& options, Work& work) {
  const std::string scene = sceneFault(*work.scene, options.view);
  if (!scene.empty()) return options.scene + ": " + scene;
  const std::string& file = options.shot.empty() ? options.scene : options.shot;
  for (const std::string& fault : {shotPointsFault(*work.shot), shotFault(*work.shot)})
    if (!fault.empty()) return file + ": " + fault;
  return options.scene + ": a brush or pen number is wrong";
}

}  // namespace

void runShow(const ShowOptions& options) {
  checkReadable(options.scene);
  if (!options.shot.empty()) checkReadable(options.shot);
  const std::string fault = displayFault();
  if (!fault.empty()) throw HostError(options.scene, "cannot be shown: " + fault);

  static Work work(options.view);
  work.scene = readScene(options.scene);
  provideShot(options, work);
  try {
    View::Viewer::createSceneAndShotView(work.scene, work.shot);
  } catch (const std::out_of_range& error) {
    throw HostError(drawingFault(options, work), error.what());
  }
}

}  // namespace Lumivane::Host
