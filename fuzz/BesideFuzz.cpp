// A model and the files that it names: material libraries of OBJ files, buffers of glTF files. The
// first byte is the format, the second how the scene is made. The model follows, and behind it
// the other files, each led by a line of "@@" and its name. "@@NAME>TARGET" makes a link.
// What is looked for besides crashes: a file that was read and is not listed as an input, which a
// program might then overwrite, and a buffer that was read from outside the folder of the model.

#include "Bytes.h"
#include "Folder.h"

#include <lumivane/check/Finding.h>
#include <lumivane/check/SceneChecker.h>
#include <lumivane/importers/Importer.h>
#include <lumivane/session/Error.h>
#include <lumivane/session/LoadedScene.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
namespace Importers = Lumivane::Importers;
namespace Session = Lumivane::Session;
using Lumivane::Fuzz::Bytes;
using Lumivane::Fuzz::Folder;
using Lumivane::Fuzz::require;

constexpr std::size_t MostFiles = 16;
constexpr std::size_t MostName = 80;

const Folder& folder() {
  static const Folder made;
  return made;
}

fs::path modelFolder() { return folder().path() / "model"; }

std::string ending(char letter) {
  switch (letter) {
    case 'o':
      return ".obj";
    case 'b':
      return ".glb";
    default:
      return ".gltf";
  }
}

Importers::ImportOptions optionsOf(char letter) {
  const int bits = letter - '0';
  Importers::ImportOptions options;
  if ((bits & 1) != 0) options.sides = Importers::ImportSides::Both;
  options.allowOutside = (bits & 2) != 0;
  return options;
}

// Stays in the folder of the run, whatever the input asks for.
bool isKept(const fs::path& path) {
  const fs::path normal = path.lexically_normal();
  const auto end = folder().path().end();
  return std::mismatch(folder().path().begin(), end, normal.begin(), normal.end()).first == end &&
         normal != folder().path() && normal != modelFolder();
}

// Only links from one file of the run to another: the rest of the machine is not the same twice.
void makeFile(const std::string& name, const std::string& bytes) {
  const std::size_t arrow = name.find('>');
  const fs::path path = modelFolder() / name.substr(0, arrow);
  if (name.empty() || name.size() > MostName || name.find('\0') != std::string::npos) return;
  if (!isKept(path)) return;
  std::error_code ignored;
  fs::create_directories(path.parent_path(), ignored);
  if (arrow == std::string::npos) return Lumivane::Fuzz::writeBytes(path, bytes);
  const fs::path target = path.parent_path() / name.substr(arrow + 1);
  if (isKept(target)) fs::create_symlink(target, path, ignored);
}

// The model's bytes; the files beside it are made.
std::string makeFiles(const std::string& text) {
  const std::string mark = "\n@@";
  std::vector<std::size_t> starts;
  for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += mark.size())
    if (starts.size() < MostFiles) starts.push_back(at);
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const std::size_t end = i + 1 < starts.size() ? starts[i + 1] : text.size();
    const std::string part = text.substr(starts[i] + mark.size(), end - starts[i] - mark.size());
    const std::size_t line = std::min(part.find('\n'), part.size());
    makeFile(part.substr(0, line), part.substr(std::min(line + 1, part.size())));
  }
  return text.substr(0, starts.empty() ? text.size() : starts[0]);
}

// What an import gives, as one text.
std::string resultOf(const fs::path& model, const Importers::ImportOptions& options) {
  try {
    Importers::ImportedScene imported = Importers::Importer::importFile(model.string(), options);
    require(Lumivane::Check::SceneChecker::errors(imported.scene.scene()).empty());
    require(imported.report.regions > 0 && imported.report.points > 0);
    return Importers::Importer::sceneText(imported.scene.scene());
  } catch (const Session::Error& error) {
    require(!error.cause().empty());
    return error.what();
  }
}

bool isWithin(const fs::path& file, const fs::path& place) {
  return std::mismatch(place.begin(), place.end(), file.begin(), file.end()).first == place.end();
}

std::vector<fs::path> allFiles() {
  std::vector<fs::path> files;
  std::error_code error;
  for (const auto& entry : fs::recursive_directory_iterator(folder().path(), error))
    if (!entry.is_directory(error) || entry.is_symlink(error)) files.push_back(entry.path());
  return files;
}

// The listed files, and where they lead.
std::set<fs::path> listed(const fs::path& model) {
  std::set<fs::path> result;
  std::error_code error;
  for (const std::string& file : Importers::Importer::inputFiles(model.string())) {
    result.insert(fs::path(file).lexically_normal());
    result.insert(fs::canonical(file, error));
  }
  return result;
}

// Links to folders stay: what they lead to may be listed under another name.
bool removeUnlisted(const fs::path& model) {
  const std::set<fs::path> inputs = listed(model);
  bool isAny = false;
  std::error_code error;
  for (const fs::path& file : allFiles()) {
    if (fs::is_symlink(file, error) || inputs.count(file) > 0) continue;
    isAny = fs::remove(file, error) || isAny;
  }
  return isAny;
}

// They stay there, since a link to a file that is not there is another error.
bool emptyOutside() {
  bool isAny = false;
  std::error_code error;
  for (const fs::path& file : allFiles()) {
    if (isWithin(file, modelFolder()) || fs::is_symlink(file, error)) continue;
    Lumivane::Fuzz::writeBytes(file, "");
    isAny = true;
  }
  return isAny;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lumivane::Fuzz::silence();
  folder().clear();
  fs::create_directory(modelFolder());
  Bytes bytes(data, size);
  const auto format = bytes.take<char>();
  const Importers::ImportOptions options = optionsOf(bytes.take<char>());
  const fs::path model = modelFolder() / ("model" + ending(format));
  const std::string text = makeFiles(bytes.rest());
  std::error_code ignored;
  fs::remove_all(model, ignored);
  Lumivane::Fuzz::writeBytes(model, text);
  const std::string result = resultOf(model, options);
  if (removeUnlisted(model)) require(resultOf(model, options) == result);
  const bool mayReadOutside = options.allowOutside || format == 'o';
  if (!mayReadOutside && emptyOutside()) require(resultOf(model, options) == result);
  return 0;
}
