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

// The file with the number that points at nothing, and where.
HostError drawingFault(const ShowOptions& options, Work& work) {
  for (const std::string& fault :
       {sceneFault(*work.scene, options.view), sceneDrawingFault(*work.scene)})
    if (!fault.empty()) return {options.scene, fault};
  const std::string& file = options.shot.empty() ? options.scene : options.shot;
  for (const std::string& fault : {shotPointsFault(*work.shot), shotFault(*work.shot)})
    if (!fault.empty()) return {file, fault};
  return {options.scene, "a number in it points at nothing"};
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
  } catch (const std::out_of_range&) {
    throw drawingFault(options, work);
  }
}

}  // namespace Lumivane::Host
