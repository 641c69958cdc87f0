#include "Stats.h"

#include "StatsNumbers.h"

#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/session/TakenShot.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/utils/StageTimes.h>

#include <sys/resource.h>

namespace Lumivane::Host {
namespace {

Jzon::Node eyeNode(const Session::Vector& eye) {
  Jzon::Node node = Jzon::array();
  for (const double coordinate : eye) node.add(numberNode(coordinate));
  return node;
}

Jzon::Node secondsNode(const Seconds& seconds) {
  Jzon::Node node = Jzon::object();
  node.add("read", numberNode(seconds.read));
  node.add("shot", numberNode(seconds.shot));
  node.add("write", numberNode(seconds.write));
  node.add("png", numberNode(seconds.png));
  node.add("visible", numberNode(seconds.visible));
  node.add("audit", numberNode(seconds.audit));
  node.add("vector", numberNode(seconds.vector));
  return node;
}

Jzon::Node stagesNode() {
  Jzon::Node node = Jzon::object();
  for (size_t i = 0; i < Utils::StageTimes::Count; ++i) {
    const auto stage = static_cast<Utils::Stage>(i);
    node.add(Utils::StageTimes::name(stage), numberNode(Utils::StageTimes::seconds(stage)));
  }
  return node;
}

}  // namespace

size_t peakMemoryBytes() {
  struct rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<size_t>(usage.ru_maxrss) * 1024;  // reported in kibibytes
}

size_t drawnFaces(Shot::Shot2d& shot) {
  size_t count = 0;
  for (const Shot::Object2d* const object : *shot.getObjects()->getObjects())
    if (object->getFaces() != nullptr) count += object->getFaces()->getFaces()->size();
  return count;
}

size_t hiddenFaces(const Session::TakenShot& taken) { return taken.hiddenFaces(); }

std::string statsText(const Session::TakenShot& taken, const Seconds& seconds,
                      const Jzon::Node& import, const Jzon::Node& audit) {
  Shot::Shot2d& shot = taken.shot();
  Jzon::Node root = Jzon::object();
  root.add("points", numberNode(shot.getPoints()->getPoints()->size()));
  root.add("regions", numberNode(shot.getRegions()->getRegions()->size()));
  root.add("faces_drawn", numberNode(drawnFaces(shot)));
  root.add("faces_hidden", numberNode(hiddenFaces(taken)));
  root.add("objects", numberNode(shot.getObjects()->getObjects()->size()));
  root.add("eye", eyeNode(taken.eye()));
  root.add("seconds", secondsNode(seconds));
  root.add("stages", stagesNode());
  root.add("peak_memory_bytes", numberNode(peakMemoryBytes()));
  if (audit.isValid()) root.add("audit", audit);
  if (import.isValid()) root.add("import", import);
  return jsonText(root);
}

}  // namespace Lumivane::Host
