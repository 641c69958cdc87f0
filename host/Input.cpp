#include "Input.h"

#include "HostError.h"

#include <lumivane/io/DataReader.h>
#include <lumivane/jzon/Parser.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include <sys/stat.h>
#include <unistd.h>

namespace Lumivane::Host {
namespace {

const char* const Channels[] = {"red", "green", "blue", "alpha"};

// The first value of a list of colours or pens that the model refuses, in words.
std::string refusedValue(const Jzon::Node& list, const std::string& name, size_t length) {
  for (size_t i = 0; i < list.getCount(); ++i) {
    const Jzon::Node entry = list.get(i);
    if (!entry.isArray() || entry.getCount() != length) continue;
    const std::string where = name + " " + std::to_string(i + 1) + ": ";
    for (size_t c = 0; c < 4; ++c) {
      const Jzon::Node value = entry.get(c);
      if (value.isNumber() && (value.toInt() < 0 || value.toInt() > 255))
        return where + Channels[c] + " is " + value.toString() + ", not 0 to 255";
    }
    if (length == 5 && entry.get(4).isNumber() && entry.get(4).toDouble() < 0.0)
      return where + "the width is " + entry.get(4).toString() + ", below 0";
  }
  return "";
}

std::string refusedValue(const std::string& text) {
  const Jzon::Node root = Jzon::Parser().parseString(text);
  if (!root.isObject()) return "";
  const std::string brush = refusedValue(root.get("Brushes"), "brush", 4);
  return brush.empty() ? refusedValue(root.get("Pens"), "pen", 5) : brush;
}

std::string parserError(const std::string& text) {
  Jzon::Parser parser;
  parser.parseString(text);
  if (!parser.getError().empty()) return "no JSON: " + parser.getError();
  return "no JSON: there is no complete object or array in it";
}

template <class Model>
Model* read(const std::string& path, Model* (IO::DataReader::*readText)(const std::string&)) {
  checkReadable(path);
  IO::DataReader reader;
  const std::string text = reader.readFileIntoString(path);
  try {
    Model* const model = (reader.*readText)(text);
    if (model == nullptr) throw HostError(path, parserError(text));
    return model;
  } catch (const HostError&) {
    throw;
  } catch (const std::exception& error) {
    const std::string place = refusedValue(text);
    throw HostError(path, place.empty() ? error.what() : place);
  }
}

}  // namespace

void checkReadable(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0 || access(path.c_str(), R_OK) != 0)
    throw HostError(path, "cannot be read: " + std::string(std::strerror(errno)));
  if (S_ISDIR(status.st_mode)) throw HostError(path, "cannot be read: it is a folder");
}

Scene::Scene3D* readScene(const std::string& path) {
  return read(path, &IO::DataReader::readSceneString);
}

Shot::Shot2d* readShot(const std::string& path) {
  return read(path, &IO::DataReader::readShotString);
}

std::string readBytes(const std::string& path) {
  checkReadable(path);
  std::ifstream file(path, std::ios::binary);
  if (!file.is_open()) throw HostError(path, "cannot be read");
  return std::string(std::istreambuf_iterator<char>(file), {});
}

}  // namespace Lumivane::Host
