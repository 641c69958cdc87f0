// A damaged file must be refused in one line before the reader sees it, so everything it will
// follow is looked at first: types, references, spans of buffers, and that the nodes are trees.

#include "importers/GltfDocument.h"

#include "importers/ImportError.h"
#include "importers/JsonDepth.h"
#include "importers/TextLines.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

#include <nlohmann/json.hpp>

namespace Lumivane::Importers {
namespace {

using Json = nlohmann::json;

constexpr std::uint32_t BinaryMagic = 0x46546C67;  // "glTF"
constexpr std::uint32_t JsonChunk = 0x4E4F534A;
constexpr std::uint32_t DataChunk = 0x004E4942;

struct Container {
  std::string json;
  GltfBytes data;  // the data chunk of a binary file, null if there is none
};

std::uint32_t word(const std::string& bytes, size_t offset) {
  std::uint32_t value = 0;
  for (size_t i = 4; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[offset + i]);
  return value;
}

Container openBinary(const std::string& bytes) {
  if (bytes.size() < 20 || word(bytes, 0) != BinaryMagic)
    throw ImportError("it does not start as a binary glTF file does");
  if (word(bytes, 4) != 2)
    throw ImportError("it is glTF version " + std::to_string(word(bytes, 4)) + "; 2 is read");
  if (word(bytes, 8) != bytes.size())
    throw ImportError("it declares " + std::to_string(word(bytes, 8)) +
                      " bytes, but the file has " + std::to_string(bytes.size()));
  Container container;
  for (size_t offset = 12; offset < bytes.size();) {
    if (bytes.size() - offset < 8 || bytes.size() - offset - 8 < word(bytes, offset))
      throw ImportError("a chunk does not fit into the file");
    const size_t size = word(bytes, offset);
    const std::uint32_t type = word(bytes, offset + 4);
    if (offset == 12 && type != JsonChunk) throw ImportError("its first chunk is not JSON");
    if (offset == 12) container.json = bytes.substr(offset + 8, size);
    if (type == DataChunk && container.data == nullptr)
      container.data = std::make_shared<const std::string>(bytes, offset + 8, size);
    offset += 8 + size;
  }
  return container;
}

Json parse(const std::string& text) {
  checkDepth(text);
  try {
    return Json::parse(text);
  } catch (const Json::parse_error& error) {
    throw ImportError("not JSON: damaged at byte " + std::to_string(error.byte) + " of " +
                      std::to_string(text.size()));
  } catch (const Json::exception& error) {
    throw ImportError(std::string("not JSON: ") + error.what());
  }
}

// Which list a member means that holds an index or a list of them.
struct Reference {
  const char* owner;  // the list that the owner stands in; null for any
  const char* member;
  const char* target;
  bool isList = false;
};
constexpr Reference References[] = {
    {"accessors", "bufferView", "bufferViews"},
    {"images", "bufferView", "bufferViews"},
    {"bufferViews", "buffer", "buffers"},
    {"nodes", "mesh", "meshes"},
    {"nodes", "skin", "skins"},
    {"nodes", "camera", "cameras"},
    {"nodes", "children", "nodes", true},
    {"scenes", "nodes", "nodes", true},
    {"skins", "joints", "nodes", true},
    {"skins", "skeleton", "nodes"},
    {"skins", "inverseBindMatrices", "accessors"},
    {"textures", "source", "images"},
    {"textures", "sampler", "samplers"},
    {"meshes", "material", "materials"},
    {"meshes", "indices", "accessors"},
    {"animations", "input", "accessors"},
    {"animations", "output", "accessors"},
    {"animations", "node", "nodes"},
    {"materials", "index", "textures"},
};

const Json* member(const Json& node, const char* name) {
  if (!node.is_object()) return nullptr;
  const auto found = node.find(name);
  return found == node.end() ? nullptr : &*found;
}

class Checker {
 public:
  Checker(const Json& document, GltfBuffers files, GltfBytes chunk)
      : root(document), reader(std::move(files)), data(std::move(chunk)) {}

  // The bytes of the buffers, when all is well.
  std::vector<GltfBytes> check() {
    checkAsset();
    for (const char* const list :
         {"accessors", "animations", "buffers", "bufferViews", "cameras", "images", "materials",
          "meshes", "nodes", "samplers", "scenes", "skins", "textures"})
      checkList(list);
    checkScene();
    checkTrees();
    forEach("buffers",
            [this](const Json& node, const std::string& where) { checkBuffer(node, where); });
    forEach("bufferViews",
            [this](const Json& node, const std::string& where) { checkView(node, where); });
    forEach("accessors",
            [this](const Json& node, const std::string& where) { checkAccessor(node, where); });
    forEach("meshes",
            [this](const Json& node, const std::string& where) { checkMesh(node, where); });
    forEach("nodes",
            [this](const Json& node, const std::string& where) { checkNode(node, where); });
    forEach("skins",
            [this](const Json& node, const std::string& where) { checkSkin(node, where); });
    forEach("animations",
            [this](const Json& node, const std::string& where) { checkAnimation(node, where); });
    return std::move(buffers);
  }

 private:
  using Visit = std::function<void(const Json&, const std::string&)>;

  [[noreturn]] static void fail(const std::string& where, const std::string& cause) {
    throw ImportError(where + ": " + cause);
  }

  static std::string memberOf(const std::string& where, const std::string& name) {
    return std::string(where).append(", ").append(name);
  }

  long long sizeOf(const char* list) const {
    const Json* const node = member(root, list);
    return node == nullptr ? 0 : static_cast<long long>(node->size());
  }

  void forEach(const char* list, const Visit& visit) const {
    const Json* const nodes = member(root, list);
    if (nodes == nullptr) return;
    for (size_t i = 0; i < nodes->size(); ++i)
      visit((*nodes)[i], std::string(list) + " " + std::to_string(i));
  }

  void checkAsset() const {
    if (!root.is_object()) throw ImportError("its JSON is not an object");
    const Json* const asset = member(root, "asset");
    const Json* const version = asset == nullptr ? nullptr : member(*asset, "version");
    if (version == nullptr || !version->is_string() ||
        version->get<std::string>().rfind("2.", 0) != 0)
      throw ImportError("it is not glTF 2.0");
    const Json* const required = member(root, "extensionsRequired");
    if (required == nullptr) return;
    static const char* const harmless[] = {"KHR_materials_unlit", "KHR_lights_punctual",
                                           "KHR_texture_transform"};
    for (const Json& name : *required) {
      const std::string text = name.is_string() ? name.get<std::string>() : name.dump();
      if (std::find(std::begin(harmless), std::end(harmless), text) == std::end(harmless))
        throw ImportError("it needs the extension " + inQuotes(text) + ", which is not read");
    }
  }

  // A list of objects whose references are in range, at any depth.
  void checkList(const std::string& list) const {
    const Json* const nodes = member(root, list.c_str());
    if (nodes == nullptr) return;
    if (!nodes->is_array()) fail(list, "is no list");
    for (size_t i = 0; i < nodes->size(); ++i) {
      const std::string where = list + " " + std::to_string(i);
      if (!(*nodes)[i].is_object()) fail(where, "is no object");
      checkReferences((*nodes)[i], list, where);
    }
  }

  void checkReferences(const Json& node, const std::string& list, const std::string& where) const {
    if (node.is_array())
      for (const Json& item : node) checkReferences(item, list, where);
    if (!node.is_object()) return;
    for (const auto& [key, value] : node.items()) {
      if (key == "extras" || key == "extensions") continue;
      for (const Reference& reference : References)
        if (list == reference.owner && key == reference.member)
          reference.isList ? checkIndices(value, reference.target, memberOf(where, key))
                           : checkIndex(value, reference.target, memberOf(where, key));
      checkReferences(value, list, where);
    }
  }

  void checkIndices(const Json& value, const char* target, const std::string& where) const {
    if (!value.is_array()) fail(where, "is no list");
    for (const Json& item : value) checkIndex(item, target, where);
  }

  void checkIndex(const Json& value, const char* target, const std::string& where) const {
    const long long count = sizeOf(target);
    if (!value.is_number_integer() || value.get<long long>() < 0 || value.get<long long>() >= count)
      fail(where, shown(value) + " is none of the " + std::to_string(count) + " " + target);
  }

  static std::string shown(const Json& value) {
    return value.is_number()
               ? value.dump()
               : inQuotes(value.is_string() ? value.get<std::string>() : value.type_name());
  }

  void checkScene() const {
    const Json* const scene = member(root, "scene");
    if (scene != nullptr) checkIndex(*scene, "scenes", "scene");
    if (sizeOf("scenes") == 0) throw ImportError("there is no scene in it");
  }

  // No node has two parents or is its own ancestor.
  void checkTrees() const {
    const size_t count = static_cast<size_t>(sizeOf("nodes"));
    std::vector<size_t> parent(count, count);
    for (size_t owner = 0; owner < count; ++owner) {
      const Json* const children = member((*member(root, "nodes"))[owner], "children");
      if (children == nullptr) continue;
      const std::string where = "nodes " + std::to_string(owner);
      for (const Json& child : *children) {
        if (parent[child.get<size_t>()] < count)
          fail(where, "child " + child.dump() + " has another parent already");
        parent[child.get<size_t>()] = owner;
      }
    }
    checkAncestors(parent);
  }

  // Every node is walked over once: a walk that meets one of an earlier walk is no circle.
  static void checkAncestors(const std::vector<size_t>& parent) {
    std::vector<size_t> walkOf(parent.size(), parent.size());
    for (size_t start = 0; start < parent.size(); ++start) {
      for (size_t node = start; node < parent.size(); node = parent[node]) {
        if (walkOf[node] == start)
          fail("nodes", "node " + std::to_string(node) + " is its own ancestor");
        if (walkOf[node] < parent.size()) break;
        walkOf[node] = start;
      }
    }
  }

  // A number that is not negative and small enough to reckon with.
  static long long countIn(const Json& node, const char* name, long long otherwise,
                           const std::string& where) {
    const Json* const value = member(node, name);
    if (value == nullptr) {
      if (otherwise < 0) fail(where, std::string("has no \"") + name + "\"");
      return otherwise;
    }
    if (!value->is_number_integer() || value->get<double>() < 0 || value->get<double>() > 1e12)
      fail(where, std::string("its \"") + name + "\" is not a size");
    return value->get<long long>();
  }

  void checkBuffer(const Json& node, const std::string& where) {
    const long long wanted = countIn(node, "byteLength", -1, where);
    const Json* const uri = member(node, "uri");
    if (uri != nullptr && !uri->is_string()) fail(where, "its \"uri\" is not a text");
    if (uri == nullptr && data == nullptr) fail(where, "has no data");
    try {
      buffers.push_back(uri == nullptr ? data : reader.read(uri->get_ref<const std::string&>()));
    } catch (const ImportError& error) {
      fail(where, error.what());
    }
    const auto there = static_cast<long long>(buffers.back()->size());
    if (there < wanted)
      fail(where, "has " + std::to_string(there) + " of its " + std::to_string(wanted) + " bytes");
  }

  const Json& at(const char* list, const Json& index) const {
    return (*member(root, list))[index.get<size_t>()];
  }

  void checkView(const Json& node, const std::string& where) const {
    const Json* const buffer = member(node, "buffer");
    if (buffer == nullptr) fail(where, "has no buffer");
    const long long end =
        countIn(node, "byteOffset", 0, where) + countIn(node, "byteLength", -1, where);
    if (end > countIn(at("buffers", *buffer), "byteLength", -1, where))
      fail(where, "goes beyond its buffer");
    const long long stride = countIn(node, "byteStride", 4, where);
    if (stride < 1 || stride > 252) fail(where, "its \"byteStride\" is not 4 to 252");
  }

  static long long componentSize(const Json& accessor, const std::string& where) {
    switch (countIn(accessor, "componentType", -1, where)) {
      case 5120:
      case 5121:
        return 1;
      case 5122:
      case 5123:
        return 2;
      case 5125:
      case 5126:
        return 4;
      default:
        fail(where, "its \"componentType\" is none of glTF's");
    }
  }

  static std::string typeOf(const Json& accessor) {
    const Json* const type = member(accessor, "type");
    return type != nullptr && type->is_string() ? type->get<std::string>() : "";
  }

  static long long componentCount(const Json& accessor, const std::string& where) {
    static const std::map<std::string, long long> counts = {{"SCALAR", 1}, {"VEC2", 2}, {"VEC3", 3},
                                                            {"VEC4", 4},   {"MAT2", 4}, {"MAT3", 9},
                                                            {"MAT4", 16}};
    const auto found = counts.find(typeOf(accessor));
    if (found == counts.end()) fail(where, "its \"type\" is none of glTF's");
    return found->second;
  }

  void checkAccessor(const Json& node, const std::string& where) const {
    if (member(node, "sparse") != nullptr) fail(where, "is sparse, which is not read");
    const long long components = componentCount(node, where);
    checkNumbers(node, "min", static_cast<size_t>(components), where);
    checkNumbers(node, "max", static_cast<size_t>(components), where);
    const long long element = componentSize(node, where) * components;
    const long long count = countIn(node, "count", -1, where);
    if (count < 1) fail(where, "has no elements");
    const Json* const viewIndex = member(node, "bufferView");
    if (viewIndex == nullptr) fail(where, "has no buffer view");
    const Json& view = at("bufferViews", *viewIndex);
    const long long stride = countIn(view, "byteStride", element, where);
    if (stride < element) fail(where, "its elements overlap");
    const long long end = countIn(node, "byteOffset", 0, where) + stride * (count - 1) + element;
    if (end > countIn(view, "byteLength", -1, where)) fail(where, "goes beyond its buffer view");
  }

  void checkMesh(const Json& node, const std::string& where) const {
    const Json* const primitives = member(node, "primitives");
    if (primitives == nullptr || !primitives->is_array() || primitives->empty())
      fail(where, "has no primitives");
    for (const Json& primitive : *primitives) {
      if (countIn(primitive, "mode", 4, where) > 6) fail(where, "a primitive has an unknown mode");
      const Json* const attributes = member(primitive, "attributes");
      if (attributes == nullptr || !attributes->is_object()) fail(where, "has no attributes");
      checkAttributes(*attributes, where);
      checkIndexAccessor(primitive, where);
      const Json* const targets = member(primitive, "targets");
      if (targets == nullptr) continue;
      if (!targets->is_array()) fail(where, "its targets are not a list");
      for (const Json& target : *targets)
        for (const auto& [name, accessor] : target.items())
          checkIndex(accessor, "accessors", memberOf(where, name));
    }
  }

  void checkAttributes(const Json& attributes, const std::string& where) const {
    const Json* const position = member(attributes, "POSITION");
    if (position == nullptr) fail(where, "has no positions");
    long long count = -1;
    for (const auto& [name, index] : attributes.items()) {
      checkIndex(index, "accessors", memberOf(where, name));
      const long long own = countIn(at("accessors", index), "count", -1, where);
      if (count >= 0 && own != count) fail(where, "its attributes differ in length");
      count = own;
    }
    const Json& accessor = at("accessors", *position);
    if (typeOf(accessor) != "VEC3" || countIn(accessor, "componentType", -1, where) != 5126)
      fail(where, "its positions are not three floats each");
  }

  void checkIndexAccessor(const Json& primitive, const std::string& where) const {
    const Json* const indices = member(primitive, "indices");
    if (indices == nullptr) return;
    const Json& accessor = at("accessors", *indices);
    const long long type = countIn(accessor, "componentType", -1, where);
    if (typeOf(accessor) != "SCALAR" || (type != 5121 && type != 5123 && type != 5125))
      fail(where, "its indices are not unsigned whole numbers");
  }

  static void checkNumbers(const Json& node, const char* name, size_t count,
                           const std::string& where) {
    const Json* const values = member(node, name);
    if (values == nullptr) return;
    const bool fits = values->is_array() && values->size() == count;
    if (!fits || !std::all_of(values->begin(), values->end(), [](const Json& value) {
          return value.is_number() && std::isfinite(value.get<double>());
        }))
      fail(where,
           std::string("its \"") + name + "\" is not " + std::to_string(count) + " finite numbers");
  }

  void checkNode(const Json& node, const std::string& where) const {
    checkNumbers(node, "matrix", 16, where);
    checkNumbers(node, "translation", 3, where);
    checkNumbers(node, "scale", 3, where);
    checkNumbers(node, "rotation", 4, where);
  }

  void checkSkin(const Json& node, const std::string& where) const {
    const Json* const joints = member(node, "joints");
    if (joints == nullptr || !joints->is_array()) fail(where, "has no joints");
    const Json* const matrices = member(node, "inverseBindMatrices");
    if (matrices == nullptr) return;
    const Json& accessor = at("accessors", *matrices);
    if (typeOf(accessor) != "MAT4" || countIn(accessor, "componentType", -1, where) != 5126 ||
        countIn(accessor, "count", -1, where) < static_cast<long long>(joints->size()))
      fail(where, "its matrices do not fit its joints");
  }

  void checkAnimation(const Json& node, const std::string& where) const {
    const Json* const samplers = member(node, "samplers");
    const Json* const channels = member(node, "channels");
    if (samplers == nullptr || !samplers->is_array() || channels == nullptr ||
        !channels->is_array())
      fail(where, "has no samplers and channels");
    for (const Json& channel : *channels)
      if (countIn(channel, "sampler", -1, where) >= static_cast<long long>(samplers->size()))
        fail(where, "a channel refers to a sampler that does not exist");
  }

  const Json& root;
  GltfBuffers reader;
  GltfBytes data;
  std::vector<GltfBytes> buffers;
};

}  // namespace

GltfDocument openGltf(const std::string& path, const std::string& bytes, bool allowOutside) {
  const bool isBinary = bytes.size() >= 4 && word(bytes, 0) == BinaryMagic;
  const Container container = isBinary ? openBinary(bytes) : Container{bytes, nullptr};
  GltfDocument document{parse(container.json), {}};
  document.buffers =
      Checker(document.root, GltfBuffers(path, allowOutside), container.data).check();
  return document;
}

}  // namespace Lumivane::Importers
