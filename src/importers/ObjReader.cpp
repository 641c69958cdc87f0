// Wavefront OBJ, and the colours of its material libraries. Read here and not by VTK, whose reader
// keeps single precision (centimetres are lost in a national grid), gives no group names, and
// trusts the numbers in the file.

#include "importers/ImportError.h"
#include "importers/Readers.h"
#include "importers/TextLines.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

namespace Lumivane::Importers {
namespace {

using Words = std::vector<std::string_view>;

// What follows the first word of a line, as names may hold blanks.
std::string nameIn(const Words& words) {
  if (words.size() < 2) return "";
  const char* const last = words.back().data() + words.back().size();
  return std::string(words[1].data(), static_cast<size_t>(last - words[1].data()));
}

int channel(double value) {
  return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255.0));
}

// The colours of a material library by name: Kd, and d or Tr.
class MaterialLibrary {
 public:
  void read(std::string_view text) {
    for (std::string_view line; nextLine(text, line);) {
      const Words words = wordsOf(line);
      if (!words.empty()) readLine(nameIn(words), words);
    }
  }

  const SourceMaterial* find(const std::string& name) const {
    const auto found = materials.find(name);
    return found == materials.end() ? nullptr : &found->second;
  }

 private:
  void readLine(const std::string& name, const Words& words) {
    if (words[0] == "newmtl") {
      current = &materials[name];
      current->name = name;
    }
    if (current == nullptr) return;
    double values[3];
    size_t count = 0;
    while (count < 3 && count + 1 < words.size() && readNumber(words[count + 1], values[count]))
      ++count;
    if (words[0] == "Kd" && count == 3) {
      current->red = channel(values[0]);
      current->green = channel(values[1]);
      current->blue = channel(values[2]);
    }
    if (words[0] == "d" && count >= 1) current->alpha = channel(values[0]);
    if (words[0] == "Tr" && count >= 1) current->alpha = channel(1.0 - values[0]);
  }

  std::map<std::string, SourceMaterial> materials;
  SourceMaterial* current = nullptr;
};

class ObjReader {
 public:
  explicit ObjReader(const std::string& path)
      : folder(std::filesystem::path(path).parent_path()),
        fallback(std::filesystem::path(path).stem().string()) {}

  SourceModel read(std::string_view text) {
    model.format = "OBJ";
    std::string joined;
    for (std::string_view line; nextLine(text, line);) {
      ++lineNumber;
      // A backslash at the end joins the next line.
      while (!line.empty() && line.back() == '\r') line.remove_suffix(1);
      if (!line.empty() && line.back() == '\\') {
        joined.append(line.substr(0, line.size() - 1)).append(" ");
        continue;
      }
      if (joined.empty()) {
        readLine(line);
      } else {
        joined.append(line);
        readLine(joined);
        joined.clear();
      }
    }
    if (!joined.empty()) readLine(joined);
    if (skippedElements > 0)
      model.warnings.push_back(std::to_string(skippedElements) +
                               " points, lines, curves or surfaces that are no polygons are "
                               "left out");
    return std::move(model);
  }

 private:
  [[noreturn]] void fail(const std::string& cause) const {
    throw ImportError("line " + std::to_string(lineNumber) + ": " + cause);
  }

  void readLine(std::string_view line) {
    if (line.find('\0') != std::string_view::npos) fail("a zero byte, so this is not OBJ text");
    const Words words = wordsOf(line);
    if (words.empty() || words[0].front() == '#') return;
    const std::string_view word = words[0];
    if (word == "v")
      readVertex(words);
    else if (word == "vt")
      ++textureCount;
    else if (word == "vn")
      ++normalCount;
    else if (word == "f" || word == "fo")
      readFace(words);
    else if (word == "o" || word == "g")
      startObject(nameIn(words));
    else if (word == "usemtl")
      startMaterial(nameIn(words));
    else if (word == "mtllib")
      readLibraries(words);
    else if (isOtherElement(word))
      ++skippedElements;
    else if (!isIgnored(word))
      fail(inQuotes(word) + " is not an OBJ statement");
  }

  static bool isOtherElement(std::string_view word) {
    return word == "p" || word == "l" || word == "curv" || word == "curv2" || word == "surf";
  }

  static bool isIgnored(std::string_view word) {
    static const char* const known[] = {
        "s",      "vp",         "mg",        "deg",   "bmat", "step", "cstype",
        "parm",   "trim",       "hole",      "scrv",  "sp",   "end",  "con",
        "bevel",  "c_interp",   "d_interp",  "lod",   "call", "csh",  "maplib",
        "usemap", "shadow_obj", "trace_obj", "ctech", "stech"};
    return std::find(std::begin(known), std::end(known), word) != std::end(known);
  }

  void readVertex(const Words& words) {
    Kernel::Vec3 vertex;
    double* const targets[] = {&vertex.x, &vertex.y, &vertex.z};
    if (words.size() < 4) fail("a vertex has fewer than 3 coordinates");
    for (size_t i = 0; i < 3; ++i)
      if (!readNumber(words[i + 1], *targets[i]))
        fail("vertex coordinate " + inQuotes(words[i + 1]) + " is not a finite number");
    model.vertices.push_back(vertex);
  }

  // The position, from 0, that a reference in a face means: from 1, or from the end if negative.
  int reference(std::string_view word, size_t count, const char* what) const {
    long long number = 0;
    if (!readNumber(word, number)) fail("face corner " + inQuotes(word) + " is not a number");
    const long long size = static_cast<long long>(count);
    const long long index = number < 0 ? size + number : number - 1;
    if (number == 0 || index < 0 || index >= size)
      fail("face refers to " + std::string(what) + " " + std::string(word.substr(0, 20)) +
           ", but there are " + std::to_string(count));
    return static_cast<int>(index);
  }

  int corner(std::string_view word) const {
    const size_t slash = word.find('/');
    const int vertex = reference(word.substr(0, slash), model.vertices.size(), "vertex");
    if (slash == std::string_view::npos) return vertex;
    const std::string_view rest = word.substr(slash + 1);
    const size_t second = rest.find('/');
    const std::string_view texture = rest.substr(0, second);
    if (!texture.empty()) reference(texture, textureCount, "texture point");
    if (second != std::string_view::npos && second + 1 < rest.size())
      reference(rest.substr(second + 1), normalCount, "normal");
    return vertex;
  }

  void readFace(const Words& words) {
    if (words.size() < 4) fail("a face has fewer than 3 corners");
    std::vector<int> loop;
    loop.reserve(words.size() - 1);
    for (size_t i = 1; i < words.size(); ++i) loop.push_back(corner(words[i]));
    if (object < 0) startObject("");
    if (material < 0) startMaterial("");
    SourcePolygon polygon;
    polygon.loops.push_back(std::move(loop));
    polygon.material = material;
    polygon.object = object;
    model.polygons.push_back(std::move(polygon));
  }

  // A name that comes again means the same object.
  void startObject(const std::string& name) {
    const auto [place, isNew] =
        objects.emplace(name.empty() ? fallback : name, static_cast<int>(model.objects.size()));
    if (isNew) model.objects.push_back({place->first, false, name});
    object = place->second;
  }

  void startMaterial(const std::string& name) {
    const auto [place, isNew] = materials.emplace(name, static_cast<int>(model.materials.size()));
    if (isNew) {
      const SourceMaterial* const known = library.find(name);
      SourceMaterial plain;
      plain.name = name;
      model.materials.push_back(known != nullptr ? *known : plain);
      model.materials.back().className = name;
      if (known == nullptr && !name.empty())
        model.warnings.push_back("material " + inQuotes(name) + " is in no material library");
    }
    material = place->second;
  }

  // All words as one name, since names may hold blanks; else each word as a name. A line that comes
  // again says nothing new.
  void readLibraries(const Words& words) {
    if (!libraryLines.insert(nameIn(words)).second || readLibrary(nameIn(words))) return;
    for (size_t i = 1; i < words.size(); ++i)
      if (!readLibrary(std::string(words[i])))
        model.warnings.push_back("material library " + inQuotes(words[i]) + " cannot be read");
  }

  // A library that is named again has been read.
  bool readLibrary(const std::string& name) {
    const auto [place, isNew] = librariesRead.emplace(name, false);
    if (isNew) place->second = readNewLibrary(name);
    return place->second;
  }

  bool readNewLibrary(const std::string& name) {
    std::string slashed = name;
    std::replace(slashed.begin(), slashed.end(), '\\', '/');
    const std::filesystem::path path = folder / slashed;
    std::error_code error;
    if (name.empty() || !std::filesystem::is_regular_file(path, error)) return false;
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open()) return false;
    library.read(std::string(std::istreambuf_iterator<char>(file), {}));
    return true;
  }

  std::filesystem::path folder;
  std::string fallback;
  SourceModel model;
  MaterialLibrary library;
  std::set<std::string> libraryLines;
  std::map<std::string, bool> librariesRead;  // by name, and whether it could be read
  std::map<std::string, int> objects;
  std::map<std::string, int> materials;
  size_t lineNumber = 0;
  size_t textureCount = 0;
  size_t normalCount = 0;
  size_t skippedElements = 0;
  int object = -1;
  int material = -1;
};

}  // namespace

SourceModel readObj(const std::string& path, const std::string& bytes) {
  return ObjReader(path).read(bytes);
}

}  // namespace Lumivane::Importers
