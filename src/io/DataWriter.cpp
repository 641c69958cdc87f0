#include "io/DocumentWriter.h"
#include "io/PathLog.h"
#include "utils/StageScope.h"

#include <lumivane/cmd/Log.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Writer.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>

namespace Lumivane::IO {
namespace {

std::string writtenText(Base::BaseLibClass* model) {
  const Utils::StageScope stage(Utils::Stage::Write);
  std::string json;
  documentWriter().writeString(model->serialize(), json);
  return json;
}

void writeDocument(Base::BaseLibClass* model, const std::string& path) {
  const Utils::StageScope stage(Utils::Stage::Write);
  logPath("Writing: ", path);
  documentWriter().writeFile(model->serialize(), path);
  Cmd::logMessage("Writing end\n\n");
}

}  // namespace

std::string DataWriter::writeSceneString(Scene::Scene3D* scene) { return writtenText(scene); }

void DataWriter::writeSceneFile(Scene::Scene3D* scene, const std::string& path) {
  writeDocument(scene, path);
}

std::string DataWriter::writeShotString(Shot::Shot2d* shot) { return writtenText(shot); }

void DataWriter::writeShotFile(Shot::Shot2d* shot, const std::string& path) {
  writeDocument(shot, path);
}

}  // namespace Lumivane::IO
