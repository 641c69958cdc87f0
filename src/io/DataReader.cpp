#include "io/PathLog.h"
#include "utils/StageScope.h"

#include <lumivane/cmd/Log.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Parser.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string_view>
#include <system_error>
#include <vector>

// Files are read in blocks, and their line feeds dropped, before they are parsed. The tree is given
// away with its only handle, so that the model frees it while it reads.
namespace Lumivane::IO {
namespace {

constexpr const char* SceneError = "\n! Error: scene JSON invalid\n";
constexpr const char* ShotError = "\n! Error: shot JSON invalid\n";
constexpr std::size_t BlockSize = std::size_t{1} << 16U;
constexpr const char* End = "Reading end\n\n";

Jzon::Node parsed(const std::string& json, const char* errorText) {
  const Utils::StageScope stage(Utils::Stage::Read);
  const Jzon::Node root = Jzon::Parser().parseString(json);
  if (!root.isValid()) {
    Cmd::logMessage("%s", errorText);
    Cmd::logMessage("%s", End);
  }
  return root;
}

// Gives up the handle, so that the model holds the only one and can free what it has read.
Jzon::Node handedOver(Jzon::Node& node) {
  const Jzon::Node only(node);
  node = Jzon::Node();
  return only;
}

template <class Model>
Model* readModel(Jzon::Node root) {
  if (!root.isValid()) return nullptr;
  const Utils::StageScope stage(Utils::Stage::Read);
  // When a value throws, nobody else can reach the half-read model.
  auto model = std::make_unique<Model>();
  model->deserialize(handedOver(root));
  return model.release();
}

// The text is gone before the model is built.
template <class Model>
Model* readModelFile(DataReader& reader, const std::string& path, const char* errorText) {
  const Utils::StageScope stage(Utils::Stage::Read);
  logPath("Reading: ", path);
  Model* const model = readModel<Model>(parsed(reader.readFileIntoString(path), errorText));
  if (model != nullptr) Cmd::logMessage("%s", End);
  return model;
}

// Room for the text, as far as the file reports its size.
std::size_t sizeOf(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? 0 : static_cast<std::size_t>(size);
}

// Deliberate: nothing takes the place of a line feed.
void appendWithoutLineFeeds(std::string& text, std::string_view block) {
  while (!block.empty()) {
    const std::size_t length = std::min(block.find('\n'), block.size());
    text.append(block.substr(0, length));
    block.remove_prefix(std::min(length + 1, block.size()));
  }
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
  text.reserve(sizeOf(path));
  std::vector<char> block(BlockSize);
  while (file.read(block.data(), static_cast<std::streamsize>(block.size())), file.gcount() > 0)
    appendWithoutLineFeeds(text, {block.data(), static_cast<std::size_t>(file.gcount())});
  return text;
}

Scene::Scene3D* DataReader::readSceneString(const std::string& json) {
  return readModel<Scene::Scene3D>(parsed(json, SceneError));
}

Scene::Scene3D* DataReader::readSceneFile(const std::string& path) {
  return readModelFile<Scene::Scene3D>(*this, path, SceneError);
}

Shot::Shot2d* DataReader::readShotString(const std::string& json) {
  return readModel<Shot::Shot2d>(parsed(json, ShotError));
}

Shot::Shot2d* DataReader::readShotFile(const std::string& path) {
  return readModelFile<Shot::Shot2d>(*this, path, ShotError);
}

}  // namespace Lumivane::IO
