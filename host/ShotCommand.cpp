#include "AuditReport.h"
#include "Commands.h"
#include "HostError.h"
#include "Options.h"
#include "OutputNames.h"
#include "Picture.h"
#include "ProgressBar.h"
#include "SceneSource.h"
#include "ShotOutputs.h"
#include "Stats.h"
#include "VisibleFile.h"
#include "Warnings.h"

#include <lumivane/session/Files.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/utils/StageTimes.h>

#include <iostream>
#include <string>
#include <vector>

namespace Lumivane::Host {
namespace {

using Session::LoadedScene;
using Session::TakenShot;

void checkOutputs(const ShotOptions& options) {
  OutputNames names(sourceFiles(options.scene));
  for (const std::string& path : {options.shot, options.png, options.stats, options.visible})
    names.add(path);
  for (const std::string& path : options.vector.paths()) names.add(path);
}

SourcedScene readScene(const ShotOptions& options, Seconds& seconds) {
  const Timer timer(seconds.read);
  ImportSettings import = options.import;
  import.eye = options.view.eye;
  return loadScene(options.scene, import);
}

TakenShot takeShot(const ShotOptions& options, LoadedScene& scene, Seconds& seconds) {
  const Timer timer(seconds.shot);
  return scene.take(options.view, ProgressBar().progress());
}

void writeShot(const ShotOptions& options, const TakenShot& shot, Seconds& seconds) {
  if (options.shot.empty()) return;
  const Timer timer(seconds.write);
  shot.write(options.shot);
}

void writePicture(const ShotOptions& options, const TakenShot& shot, Seconds& seconds) {
  if (options.png.empty()) return;
  const Timer timer(seconds.png);
  Session::writeFile(options.png,
                     drawPicture(options.png, shot.shot(), options.width, options.height));
}

void writeVisible(const ShotOptions& options, const TakenShot& shot, Seconds& seconds) {
#ifdef LUMIVANE_HOST_MEASURES
  if (options.visible.empty()) return;
  const Timer timer(seconds.visible);
  writeVisibleFile(options.visible, shot, options.csvSafe);
#else
  static_cast<void>(options);
  static_cast<void>(shot);
  static_cast<void>(seconds);
#endif
}

void writeVectorPictures(const ShotOptions& options, LoadedScene& scene, const TakenShot& shot,
                         Seconds& seconds) {
#ifdef LUMIVANE_HOST_TOOLS
  const Timer timer(seconds.vector);
  writeVectorFiles(options.vector, scene, options.view, shot, options.width, options.height);
#else
  static_cast<void>(options);
  static_cast<void>(scene);
  static_cast<void>(shot);
  static_cast<void>(seconds);
#endif
}

// What statistics tell of it; an invalid node if it was not asked for.
Jzon::Node audit(const ShotOptions& options, const TakenShot& shot, const LoadedScene& scene,
                 Seconds& seconds) {
#ifdef LUMIVANE_HOST_MEASURES
  if (options.audit) {
    const Timer timer(seconds.audit);
    return auditShot(options.scene, shot, scene);
  }
#else
  static_cast<void>(options);
  static_cast<void>(shot);
  static_cast<void>(scene);
  static_cast<void>(seconds);
#endif
  return {};
}

void writeStats(const ShotOptions& options, const TakenShot& shot, const Seconds& seconds,
                const Jzon::Node& import, const Jzon::Node& audited) {
  if (!options.stats.empty())
    Session::writeFile(options.stats, statsText(shot, seconds, import, audited));
}

}  // namespace

void warnIfInside(const std::string& subject, const TakenShot& shot) {
  if (!shot.isInside()) return;
  std::cerr << "lumivane: " + oneLine(subject) +
                   ": warning: the eye is inside a body, which is not drawn from there: what is "
                   "visible is as if it were not there\n";
}

void writeOutputs(const ShotOptions& options, LoadedScene& scene, const TakenShot& shot,
                  Seconds& seconds) {
  writeShot(options, shot, seconds);
  writeVisible(options, shot, seconds);
  writeVectorPictures(options, scene, shot, seconds);
  writePicture(options, shot, seconds);
}

void runShot(const ShotOptions& options) {
  Session::checkReadable(options.scene);
  checkOutputs(options);
  Utils::StageTimes::enable(!options.stats.empty());
  Seconds seconds;
  // Scene and shot are kept to the end of the process, which frees them at once: to take them apart
  // object by object would be a tenth of its time.
  static SourcedScene& source = *new SourcedScene(readScene(options, seconds));
  if (source.isSceneFile) warnOfFarCoordinates(options.scene, source.scene);
  ShotOptions placed = options;
  placed.view.eye = moved(options.view.eye, source.eyeShift);
  static const TakenShot& shot = *new TakenShot(takeShot(placed, source.scene, seconds));
  warnOfCycle(options.scene, shot);
  warnIfInside(options.scene, shot);
  const Jzon::Node audited = audit(options, shot, source.scene, seconds);
  try {
    writeOutputs(placed, source.scene, shot, seconds);
  } catch (const HostError&) {
    writeStats(options, shot, seconds, source.import, audited);  // the shot itself is there
    throw;
  }
  writeStats(options, shot, seconds, source.import, audited);
}

}  // namespace Lumivane::Host
