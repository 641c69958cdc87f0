// glTF 2.0. The document is checked as a whole first, with every span of bytes that it refers to;
// then the shapes are read out of its buffers: nodes of the scene from the root downwards, for each
// the primitives of its mesh, and of these only the vertices that they use.

#include "importers/GltfDocument.h"
#include "importers/ImportError.h"
#include "importers/Readers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numeric>
#include <utility>

namespace Lumivane::Importers {
namespace {

using Json = nlohmann::json;
using Kernel::Vec3;

// Nodes may show one mesh, and primitives one accessor, again and again: so many polygons beyond
// what the file holds are made, and not more.
constexpr size_t MostRepeatedPolygons = 1000000;
constexpr size_t LeastBytesOfPolygon = 3;

const Json* member(const Json& node, const char* name) {
  const auto found = node.find(name);
  return found == node.end() ? nullptr : &*found;
}

std::string textOf(const Json& node, const char* name) {
  const Json* const text = member(node, name);
  return text != nullptr && text->is_string() ? text->get<std::string>() : "";
}

size_t sizeOf(const Json& node, const char* name, size_t otherwise) {
  const Json* const number = member(node, name);
  return number == nullptr ? otherwise : number->get<size_t>();
}

// Base colours are linear shares of light, and pictures hold the values of screens.
int channel(double linear) {
  const double value = std::clamp(linear, 0.0, 1.0);
  const double screen =
      value <= 0.0031308 ? 12.92 * value : 1.055 * std::pow(value, 1.0 / 2.4) - 0.055;
  return static_cast<int>(std::lround(screen * 255.0));
}

// The base colour; light that a material does not mention is reflected whole.
std::array<double, 4> baseColour(const Json& source) {
  std::array<double, 4> colour = {1.0, 1.0, 1.0, 1.0};
  const Json* const surface = member(source, "pbrMetallicRoughness");
  const Json* const factor =
      surface != nullptr && surface->is_object() ? member(*surface, "baseColorFactor") : nullptr;
  if (factor == nullptr) return colour;
  if (!factor->is_array() || factor->size() != colour.size())
    throw ImportError("a base colour is not 4 numbers");
  for (size_t c = 0; c < colour.size(); ++c) {
    if (!(*factor)[c].is_number()) throw ImportError("a base colour is not 4 numbers");
    colour[c] = (*factor)[c].get<double>();
  }
  return colour;
}

SourceMaterial materialOf(const Json& source) {
  SourceMaterial material;
  material.name = textOf(source, "name");
  material.className = material.name;
  const std::array<double, 4> colour = baseColour(source);
  material.red = channel(colour[0]);
  material.green = channel(colour[1]);
  material.blue = channel(colour[2]);
  if (textOf(source, "alphaMode") == "BLEND")
    material.alpha = static_cast<int>(std::lround(std::clamp(colour[3], 0.0, 1.0) * 255.0));
  return material;
}

// An affine map: three columns and a shift.
struct Transform {
  std::array<Vec3, 3> columns = {Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}};
  Vec3 shift;

  Vec3 turned(Vec3 v) const { return v.x * columns[0] + v.y * columns[1] + v.z * columns[2]; }
  Vec3 operator()(Vec3 v) const { return turned(v) + shift; }

  /// The map that does `first` and then this one.
  Transform after(const Transform& first) const {
    return {{turned(first.columns[0]), turned(first.columns[1]), turned(first.columns[2])},
            (*this)(first.shift)};
  }

  /// A mirroring map turns inside and outside round.
  bool isMirroring() const {
    return Kernel::dot(Kernel::cross(columns[0], columns[1]), columns[2]) < 0.0;
  }
};

template <size_t Count>
std::array<double, Count> numbersOf(const Json& node, const char* name,
                                    std::array<double, Count> otherwise) {
  const Json* const list = member(node, name);
  if (list == nullptr) return otherwise;
  for (size_t i = 0; i < Count; ++i) otherwise[i] = (*list)[i].get<double>();
  return otherwise;
}

// The rotation of a quaternion (x, y, z, w) of any length.
Transform rotationOf(const std::array<double, 4>& q) {
  const double length = q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3];
  if (!(length > 0.0)) return {};
  const double s = 2.0 / length;
  const auto [x, y, z, w] = q;
  return {{Vec3{1 - s * (y * y + z * z), s * (x * y + z * w), s * (x * z - y * w)},
           Vec3{s * (x * y - z * w), 1 - s * (x * x + z * z), s * (y * z + x * w)},
           Vec3{s * (x * z + y * w), s * (y * z - x * w), 1 - s * (x * x + y * y)}},
          {}};
}

Transform transformOf(const Json& node) {
  if (member(node, "matrix") != nullptr) {
    const auto m = numbersOf<16>(node, "matrix", {});
    return {{Vec3{m[0], m[1], m[2]}, Vec3{m[4], m[5], m[6]}, Vec3{m[8], m[9], m[10]}},
            {m[12], m[13], m[14]}};
  }
  Transform result = rotationOf(numbersOf<4>(node, "rotation", {0, 0, 0, 1}));
  const auto scale = numbersOf<3>(node, "scale", {1, 1, 1});
  for (size_t i = 0; i < 3; ++i) result.columns[i] = scale[i] * result.columns[i];
  const auto shift = numbersOf<3>(node, "translation", {0, 0, 0});
  result.shift = {shift[0], shift[1], shift[2]};
  return result;
}

// The elements of an accessor, one after the other or apart.
class Elements {
 public:
  Elements(const GltfDocument& document, size_t index) {
    const Json& accessor = document.root.at("accessors")[index];
    const Json& view = document.root.at("bufferViews")[accessor.at("bufferView").get<size_t>()];
    count = accessor.at("count").get<size_t>();
    type = accessor.at("componentType").get<int>();
    const size_t components = textOf(accessor, "type") == "VEC3" ? 3 : 1;
    stride = sizeOf(view, "byteStride", components * componentSize());
    start = document.buffers[view.at("buffer").get<size_t>()]->data() +
            sizeOf(view, "byteOffset", 0) + sizeOf(accessor, "byteOffset", 0);
  }

  size_t size() const { return count; }

  Vec3 position(size_t element) const {
    std::array<float, 3> p{};
    std::memcpy(p.data(), start + element * stride, sizeof p);
    return {p[0], p[1], p[2]};
  }

  // Little-endian, as the machines are for which this is built.
  size_t index(size_t element) const {
    std::uint32_t value = 0;
    std::memcpy(&value, start + element * stride, componentSize());
    return value;
  }

 private:
  size_t componentSize() const { return type == 5121 ? 1 : type == 5123 ? 2 : 4; }

  const char* start = nullptr;
  size_t count = 0;
  size_t stride = 0;
  int type = 0;
};

enum Mode : size_t { Triangles = 4, Strip = 5, Fan = 6 };

// The corners of triangle `t` among the indices of a primitive. Every second triangle of a strip
// is turned round, so that all run the same way.
std::array<size_t, 3> cornersOf(size_t mode, size_t t) {
  if (mode == Fan) return {0, t + 1, t + 2};
  if (mode == Triangles) return {3 * t, 3 * t + 1, 3 * t + 2};
  return t % 2 == 0 ? std::array<size_t, 3>{t, t + 1, t + 2}
                    : std::array<size_t, 3>{t + 1, t, t + 2};
}

size_t triangleCount(size_t mode, size_t indices) {
  if (mode < Triangles || indices < 3) return 0;
  return mode == Triangles ? indices / 3 : indices - 2;
}

class GltfReader {
 public:
  explicit GltfReader(const GltfDocument& opened) : document(opened) {
    model.format = "glTF";
    model.yUp = true;
    if (const Json* const materials = member(document.root, "materials"))
      for (const Json& material : *materials) model.materials.push_back(materialOf(material));
    model.materials.emplace_back();  // for primitives without a material
    for (const GltfBytes& buffer : document.buffers) mostPolygons += buffer->size();
    mostPolygons = mostPolygons / LeastBytesOfPolygon + MostRepeatedPolygons;
  }

  SourceModel read() {
    const size_t number = sizeOf(document.root, "scene", 0);
    const Json& scene = document.root.at("scenes")[number];
    const Json* const roots = member(scene, "nodes");
    isPlaced.assign(nodes().size(), false);
    if (roots != nullptr)
      for (const Json& root : *roots) addNode(root.get<size_t>(), number);
    if (skippedPrimitives > 0)
      model.warnings.push_back(std::to_string(skippedPrimitives) +
                               " primitives of points or lines are left out");
    if (hasEntries("skins") || hasEntries("animations"))
      model.warnings.emplace_back("skins and animations are left out: everything stands at rest");
    return std::move(model);
  }

 private:
  struct Placed {
    size_t node;
    Transform parent;
  };

  const Json& nodes() const {
    static const Json none = Json::array();
    const Json* const list = member(document.root, "nodes");
    return list == nullptr ? none : *list;
  }

  bool hasEntries(const char* list) const {
    const Json* const entries = member(document.root, list);
    return entries != nullptr && !entries->empty();
  }

  // Trees of nodes can be deep, so this does not call itself.
  void addNode(size_t root, size_t scene) {
    std::vector<Placed> waiting = {{root, {}}};
    while (!waiting.empty()) {
      const Placed placed = waiting.back();
      waiting.pop_back();
      if (isPlaced[placed.node])
        throw ImportError("scenes " + std::to_string(scene) + ": node " +
                          std::to_string(placed.node) + " occurs twice in it");
      isPlaced[placed.node] = true;
      const Json& node = nodes()[placed.node];
      const Transform transform = placed.parent.after(transformOf(node));
      const Json* const children = member(node, "children");
      if (children != nullptr)
        for (size_t i = children->size(); i-- > 0;)
          waiting.push_back({(*children)[i].get<size_t>(), transform});
      addMesh(node, placed.node, transform);
    }
  }

  void addMesh(const Json& node, size_t number, const Transform& transform) {
    const Json* const index = member(node, "mesh");
    if (index == nullptr) return;
    const Json& mesh = document.root.at("meshes")[index->get<size_t>()];
    std::string name = textOf(node, "name");
    if (name.empty()) name = textOf(mesh, "name");
    const std::string className = name;
    if (name.empty()) name = "node " + std::to_string(number);
    model.objects.push_back({name, false, className});
    where = "meshes " + index->dump();
    for (const Json& primitive : mesh.at("primitives")) addPrimitive(primitive, transform);
  }

  void addPrimitive(const Json& primitive, const Transform& transform) {
    const Elements positions(document, primitive.at("attributes").at("POSITION").get<size_t>());
    const size_t mode = sizeOf(primitive, "mode", Triangles);
    const size_t count = triangleCount(mode, indexCount(primitive, positions.size()));
    if (count == 0) {
      ++skippedPrimitives;
      return;
    }
    if (model.polygons.size() + count > mostPolygons)
      throw ImportError("its nodes and primitives repeat what they show to more than " +
                        std::to_string(mostPolygons) + " polygons; split the file");
    std::vector<size_t> indices = indicesOf(primitive, positions.size());
    addVertices(positions, indices, transform);
    const bool turned = transform.isMirroring();
    for (size_t t = 0; t < count; ++t) addTriangle(primitive, indices, cornersOf(mode, t), turned);
  }

  size_t indexCount(const Json& primitive, size_t vertexCount) const {
    const Json* const accessor = member(primitive, "indices");
    return accessor == nullptr ? vertexCount : Elements(document, accessor->get<size_t>()).size();
  }

  std::vector<size_t> indicesOf(const Json& primitive, size_t vertexCount) const {
    const Json* const accessor = member(primitive, "indices");
    if (accessor == nullptr) {
      std::vector<size_t> indices(vertexCount);
      std::iota(indices.begin(), indices.end(), size_t{0});
      return indices;
    }
    const Elements elements(document, accessor->get<size_t>());
    std::vector<size_t> indices(elements.size());
    for (size_t i = 0; i < indices.size(); ++i) {
      indices[i] = elements.index(i);
      if (indices[i] >= vertexCount)
        throw ImportError(where + ": a polygon refers to vertex " + std::to_string(indices[i]) +
                          ", but there are " + std::to_string(vertexCount));
    }
    return indices;
  }

  // Appends the vertices that are used, and makes their numbers in the model of the indices.
  void addVertices(const Elements& positions, std::vector<size_t>& indices,
                   const Transform& transform) {
    std::vector<size_t> used = indices;
    std::sort(used.begin(), used.end());
    used.erase(std::unique(used.begin(), used.end()), used.end());
    const size_t first = model.vertices.size();
    if (first + used.size() > static_cast<size_t>(std::numeric_limits<int>::max()))
      throw ImportError("it has more vertices than can be numbered");
    for (const size_t index : used) {
      const Vec3 vertex = transform(positions.position(index));
      if (!std::isfinite(vertex.x) || !std::isfinite(vertex.y) || !std::isfinite(vertex.z))
        throw ImportError(where + ": vertex " + std::to_string(index) + " is not finite");
      model.vertices.push_back(vertex);
    }
    for (size_t& index : indices)
      index = first +
              static_cast<size_t>(std::lower_bound(used.begin(), used.end(), index) - used.begin());
  }

  void addTriangle(const Json& primitive, const std::vector<size_t>& indices,
                   const std::array<size_t, 3>& corners, bool turned) {
    std::vector<int> loop;
    for (const size_t corner : corners) loop.push_back(static_cast<int>(indices[corner]));
    if (turned) std::reverse(loop.begin(), loop.end());
    SourcePolygon polygon;
    polygon.loops.push_back(std::move(loop));
    polygon.material = static_cast<int>(sizeOf(primitive, "material", model.materials.size() - 1));
    polygon.object = static_cast<int>(model.objects.size()) - 1;
    model.polygons.push_back(std::move(polygon));
  }

  const GltfDocument& document;
  SourceModel model;
  std::vector<bool> isPlaced;
  std::string where;
  size_t mostPolygons = 0;
  size_t skippedPrimitives = 0;
};

}  // namespace

SourceModel readGltf(const std::string& path, const std::string& bytes, bool allowOutside) {
  const GltfDocument document = openGltf(path, bytes, allowOutside);
  return GltfReader(document).read();
}

}  // namespace Lumivane::Importers
