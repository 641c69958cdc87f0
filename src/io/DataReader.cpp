#include "io/PathLog.h"
#include "utils/StageScope.h"

#include <lumivane/cmd/Log.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Parser.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>

namespace Lumivane::IO {
namespace {

constexpr const char* SceneError = "\n! Error: scene JSON invalid\n";
constexpr const char* ShotError = "\n! Error: shot JSON invalid\n";
constexpr const char* End = "Reading end\n\n";

template <class Model>
Model* readModel(const std::string& json, const char* errorText) {
  const Utils::StageScope stage(Utils::Stage::Read);
  Jzon::Parser parser;
  const Jzon::Node root = parser.parseString(json);
  if (!root.isValid()) {
    Cmd::logMessage("%s", errorText);
    Cmd::logMessage("%s", End);
    return nullptr;
  }
  // When a value throws, nobody else can reach the half-read model.
  auto model = std::make_unique<Model>();
  model->deserialize(root);
  return model.release();
}

template <class Model>
Model* readModelFile(DataReader& reader, const std::string& path, const char* errorText) {
  const Utils::StageScope stage(Utils::Stage::Read);
  logPath("Reading: ", path);
  Model* const model = readModel<Model>(reader.readFileIntoString(path), errorText);
  if (model != nullptr) Cmd::logMessage("%s", End);
  return model;
}

[[noreturn]] void endWithoutFile(const std::string& path) {
  std::cout.flush();
  std::fflush(stdout);
  std::cerr << "Could not open the file - '" << path << "'" << std::endl;
  std::exit(1);  // Deliberate: no host is asked; see the header.
}

}  // namespace

std::string DataReader::readFileIntoString(const std::string& path) {
  std::ifstream file(path);
  if (!file.is_open()) endWithoutFile(path);
  std::string text;
  // Deliberate: nothing takes the place of a line feed.
  for (std::string line; std::getline(file, line);) text += line;
  return text;
}

Scene::Scene3D* DataReader::readSceneString(const std::string& json) {
  return readModel<Scene::Scene3D>(json, SceneError);
}

Scene::Scene3D* DataReader::readSceneFile(const std::string& path) {
  return readModelFile<Scene::Scene3D>(*this, path, SceneError);
}

Shot::Shot2d* DataReader::readShotString(const std::string& json) {
  return readModel<Shot::Shot2d>(json, ShotError);
}

Shot::Shot2d* DataReader::readShotFile(const std::string& path) {
  return readModelFile<Shot::Shot2d>(*this, path, ShotError);
}

}  // namespace Lumivane::IO
