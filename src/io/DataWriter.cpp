#include "io/DocumentWriter.h"
#include "io/PathLog.h"
#include "io/ShotText.h"
#include "utils/StageScope.h"

#include <lumivane/cmd/Log.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Writer.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>

#include <fstream>
#include <string>

namespace Lumivane::IO {

std::string DataWriter::writeSceneString(Scene::Scene3D* scene) {
  const Utils::StageScope stage(Utils::Stage::Write);
  std::string json;
  documentWriter().writeString(scene->serialize(), json);
  return json;
}

void DataWriter::writeSceneFile(Scene::Scene3D* scene, const std::string& path) {
  const Utils::StageScope stage(Utils::Stage::Write);
  logPath("Writing: ", path);
  documentWriter().writeFile(scene->serialize(), path);
  Cmd::logMessage("Writing end\n\n");
}

std::string DataWriter::writeShotString(Shot::Shot2d* shot) {
  const Utils::StageScope stage(Utils::Stage::Write);
  return shotText(*shot);
}

// Nothing is done about a file that cannot be opened.
void DataWriter::writeShotFile(Shot::Shot2d* shot, const std::string& path) {
  const Utils::StageScope stage(Utils::Stage::Write);
  logPath("Writing: ", path);
  std::ofstream stream(path, std::ios::out | std::ios::trunc);
  if (stream.is_open()) writeShotText(*shot, stream);
  Cmd::logMessage("Writing end\n\n");
}

}  // namespace Lumivane::IO
