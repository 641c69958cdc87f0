#include "Commands.h"
#include "Display.h"
#include "HostError.h"
#include "Options.h"
#include "ProgressBar.h"
#include "SceneSource.h"
#include "Warnings.h"

#include <lumivane/session/Faults.h>
#include <lumivane/session/Files.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/ShotFile.h>
#include <lumivane/session/ViewSetup.h>
#include <lumivane/view/Viewer.h>

#include <stdexcept>

namespace Lumivane::Host {
namespace {

using Session::LoadedScene;
using Session::TakenShot;

// The file with the number that points at nothing, and where: the scene is drawn first, so its
// faults come first, but only those that drawing meets.
HostError drawingFault(const ShowOptions& options, LoadedScene& scene, Shot::Shot2d& shot) {
  const std::string sceneFault = Session::sceneDrawingFault(scene.scene());
  if (!sceneFault.empty()) return {options.scene, sceneFault};
  const std::string& file = options.shot.empty() ? options.scene : options.shot;
  for (const std::string& fault : {Session::shotPointsFault(shot), Session::shotFault(shot)})
    if (!fault.empty()) return {file, fault};
  return {options.scene, "a number in it points at nothing"};
}

void showBoth(const ShowOptions& options, LoadedScene& scene, Shot::Shot2d& shot) {
  try {
    View::Viewer::createSceneAndShotView(&scene.scene(), &shot);
  } catch (const std::out_of_range&) {
    throw drawingFault(options, scene, shot);
  }
}

void showShotFile(const ShowOptions& options, LoadedScene& scene) {
  Session::ViewSetup setup(options.view);
  const auto shot = Session::readShot(options.shot);
  if (options.viewGiven) shot->setView(setup.view());
  showBoth(options, scene, *shot);
}

}  // namespace

void runShow(const ShowOptions& options) {
  Session::checkReadable(options.scene);
  if (!options.shot.empty()) Session::checkReadable(options.shot);
  const std::string fault = displayFault();
  if (!fault.empty()) throw HostError(options.scene, "cannot be shown: " + fault);

  ImportSettings import = options.import;
  import.eye = options.view.eye;
  SourcedScene source = loadScene(options.scene, import);
  ShowOptions placed = options;
  placed.view.eye = moved(options.view.eye, source.eyeShift);
  if (!options.shot.empty()) return showShotFile(placed, source.scene());
  const TakenShot shot = source.scene().take(placed.view, ProgressBar().progress());
  warnOfCycle(options.scene, shot);
  showBoth(placed, source.scene(), shot.shot());
}

}  // namespace Lumivane::Host
