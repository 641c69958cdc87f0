// Read, take, warn, write, each timed. Outputs are checked before the work, and statistics are
// written even if another output fails, since the shot itself is there.

#include "AuditedShot.h"
#include "Commands.h"
#include "HostError.h"
#include "Options.h"
#include "OutputNames.h"
#include "Picture.h"
#include "ProgressBar.h"
#include "SceneSource.h"
#include "ShotOutputs.h"
#include "ShotShares.h"
#include "Stats.h"
#include "Tools.h"
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

// Tables and pages have a column of classes.
bool showsClasses(const ShotOptions& options) {
  return !options.visible.empty() || !options.vector.html.empty();
}

void checkOutputs(const ShotOptions& options) {
  checkCsvSafe(options.csvSafe, {options.visible}, "--visible");
  if (!options.import.classes.empty() && !showsClasses(options))
    throw ArgumentError("--classes",
                        "is for a column of classes: name an output that has one with --visible "
                        "or --html");
  ImportSettings import = options.import;
  import.asksForClasses = showsClasses(options);
  OutputNames names(sourceFiles(options.scene, import));
  names.add("--output", options.shot);
  names.add("--png", options.png);
  names.add("--stats", options.stats);
  names.add("--visible", options.visible);
  for (const auto& [option, path] : options.vector.files()) names.add(option, path);
}

SourcedScene readScene(const ShotOptions& options, Seconds& seconds) {
  const Timer timer(seconds.read);
  ImportSettings import = options.import;
  import.eye = options.view.eye;
  import.asksForClasses = showsClasses(options);
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

void writeStats(const ShotOptions& options, const TakenShot& shot, const Seconds& seconds,
                const Jzon::Node& import, const Jzon::Node& audited) {
  if (!options.stats.empty())
    Session::writeFile(options.stats, statsText(shot, seconds, import, audited));
}

}  // namespace

void writeOutputs(const ShotOptions& options, LoadedScene& scene, const TakenShot& shot,
                  const AuditedShot& audited, Seconds& seconds) {
  ShotShares shares(shot);
  writeShot(options, shot, seconds);
  Tools::writeVisible(options, scene, shares, seconds);
  Tools::writeVectorPictures(options, scene, shot, shares, audited, seconds);
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
  if (source.isSceneFile) warnOfFarCoordinates(options.scene, source.scene());
  ShotOptions placed = options;
  placed.view.eye = moved(options.view.eye, source.eyeShift);
  static const TakenShot& shot = *new TakenShot(takeShot(placed, source.scene(), seconds));
  warnOfCycle(options.scene, shot);
  warnIfInside(options.scene, shot);
  const AuditedShot audited = Tools::audit(options, shot, source.scene(), seconds);
  try {
    writeOutputs(placed, source.scene(), shot, audited, seconds);
  } catch (const HostError&) {
    writeStats(options, shot, seconds, source.import, audited.report);  // the shot itself is there
    throw;
  }
  writeStats(options, shot, seconds, source.import, audited.report);
}

}  // namespace Lumivane::Host
