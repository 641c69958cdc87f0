// The files that stand beside a model are found by their names in it, without reading the model
// as a whole. Both readings of a name are listed where readers may differ (blanks in the name of a
// material library, percent signs in a URI): a file too many only means that it is not overwritten.

#include "importers/GltfBuffers.h"
#include "importers/ImportError.h"
#include "importers/JsonDepth.h"
#include "importers/TextLines.h"

#include <lumivane/importers/Importer.h>
#include <lumivane/session/Files.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <set>

#include <nlohmann/json.hpp>

namespace Lumivane::Importers {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

class FileList {
 public:
  explicit FileList(const std::string& model) : folder(fs::path(model).parent_path()) {
    add(fs::path(model));
  }

  void addBeside(const std::string& name) {
    std::error_code error;
    if (!name.empty() && fs::is_regular_file(folder / name, error)) add(folder / name);
  }

  std::vector<std::string> files;

 private:
  void add(const fs::path& path) {
    if (known.insert(path.string()).second) files.push_back(path.string());
  }

  fs::path folder;
  std::set<std::string> known;
};

std::string slashed(std::string_view name) {
  std::string result(name);
  std::replace(result.begin(), result.end(), '\\', '/');
  return result;
}

void addLibraries(std::string_view line, FileList& list) {
  const std::vector<std::string_view> words = wordsOf(line);
  if (words.size() < 2 || words[0] != "mtllib") return;
  const char* const last = words.back().data() + words.back().size();
  list.addBeside(slashed({words[1].data(), static_cast<size_t>(last - words[1].data())}));
  for (size_t i = 1; i < words.size(); ++i) list.addBeside(slashed(words[i]));
}

// A backslash at the end of a line joins the next one.
void addFilesOfObj(std::string_view text, FileList& list) {
  std::string joined;
  for (std::string_view line; nextLine(text, line);) {
    while (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    const bool goesOn = !line.empty() && line.back() == '\\';
    if (joined.empty() && !goesOn) {
      addLibraries(line, list);
      continue;
    }
    joined.append(line.substr(0, line.size() - (goesOn ? 1 : 0))).append(goesOn ? " " : "");
    if (goesOn) continue;
    addLibraries(joined, list);
    joined.clear();
  }
  addLibraries(joined, list);
}

// The document of a binary file is its first chunk, behind 20 bytes of lengths and marks.
std::string_view gltfDocument(std::string_view bytes) {
  constexpr size_t HeadLength = 20;
  if (bytes.substr(0, 4) != "glTF") return bytes;
  if (bytes.size() < HeadLength) return {};
  std::uint32_t length = 0;
  for (size_t i = 4; i-- > 0;) length = (length << 8U) | static_cast<unsigned char>(bytes[12 + i]);
  return bytes.substr(HeadLength, length);
}

void addFilesOfGltf(std::string_view bytes, FileList& list) {
  const std::string_view text = gltfDocument(bytes);
  try {
    checkDepth(text);
  } catch (const ImportError&) {
    return;  // the reader refuses it as well
  }
  const Json document = Json::parse(text, nullptr, false);
  if (!document.is_object() || !document.contains("buffers")) return;
  const Json& buffers = document.at("buffers");
  if (!buffers.is_array()) return;
  for (const Json& buffer : buffers) {
    if (!buffer.is_object() || !buffer.contains("uri") || !buffer.at("uri").is_string()) continue;
    const auto uri = buffer.at("uri").get<std::string>();
    if (uri.rfind("data:", 0) == 0) continue;
    list.addBeside(uri);
    list.addBeside(percentDecoded(uri));
  }
}

}  // namespace

std::vector<std::string> Importer::inputFiles(const std::string& path) {
  FileList list(path);
  std::string ending = fs::path(path).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(), [](unsigned char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : static_cast<char>(c);
  });
  const bool isObj = ending == ".obj";
  std::error_code error;
  if (!isObj && ending != ".gltf" && ending != ".glb") return list.files;
  if (!fs::is_regular_file(path, error)) return list.files;  // a pipe can be read only once
  const std::string bytes = Session::readBytes(path);
  if (isObj)
    addFilesOfObj(bytes, list);
  else
    addFilesOfGltf(bytes, list);
  return list.files;
}

}  // namespace Lumivane::Importers
