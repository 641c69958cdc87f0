#include "Commands.h"
#include "HostError.h"
#include "Input.h"
#include "Options.h"
#include "Output.h"
#include "Picture.h"
#include "ShotMaking.h"
#include "Stats.h"
#include "ViewSetup.h"

#include <lumivane/io/DataWriter.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/utils/StageTimes.h>

#include <string>
#include <vector>

namespace Lumivane::Host {
namespace {

// Before the long work: no output takes the place of the scene or of another output, and each has
// a folder.
void checkOutputs(const ShotOptions& options) {
  std::vector<std::string> taken = {options.scene};
  for (const std::string& path : {options.shot, options.png, options.stats}) {
    if (path.empty()) continue;
    checkWritable(path);
    if (path == "/dev/null" || path == "/dev/stdout") continue;
    for (const std::string& other : taken)
      if (sameFile(path, other)) throw HostError(path, "is already named for another file");
    taken.push_back(path);
  }
}

// Scene, view and shot refer to each other and are used up to the end of the process, which frees
// them: hence the caller's static object.
struct Work {
  explicit Work(const ViewOptions& view) : setup(view) {}

  Seconds seconds;
  ViewSetup setup;
  Scene::Scene3D* scene = nullptr;
  Shot::Shot2d* shot = nullptr;
};

void writePicture(const ShotOptions& options, Work& work) {
  if (options.png.empty()) return;
  const Timer timer(work.seconds.png);
  writeFile(options.png, drawPicture(options.png, *work.shot, options.width, options.height));
}

void writeStats(const ShotOptions& options, Work& work) {
  if (!options.stats.empty())
    writeFile(options.stats, statsText(*work.scene, *work.shot, work.seconds));
}

void makeAndWriteShot(const ShotOptions& options, Work& work) {
  {
    const Timer timer(work.seconds.read);
    work.scene = readScene(options.scene);
  }
  {
    const Timer timer(work.seconds.shot);
    work.shot = makeShot(options.scene, *work.scene, options.view, work.setup);
  }
  if (options.shot.empty()) return;
  const Timer timer(work.seconds.write);
  writeFile(options.shot, IO::DataWriter().writeShotString(work.shot));
}

}  // namespace

void runShot(const ShotOptions& options) {
  checkReadable(options.scene);
  checkOutputs(options);
  Utils::StageTimes::enable(!options.stats.empty());
  static Work work(options.view);
  makeAndWriteShot(options, work);
  try {
    writePicture(options, work);
  } catch (const HostError&) {
    writeStats(options, work);  // the shot itself is there
    throw;
  }
  writeStats(options, work);
}

}  // namespace Lumivane::Host
