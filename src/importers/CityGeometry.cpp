// Boundaries, semantics and materials of a CityJSON geometry are arrays nested alike, to a depth
// that the geometry's type gives: rings in surfaces, surfaces in shells, shells in solids.

#include "importers/CityGeometry.h"

#include "importers/CityColours.h"
#include "importers/ImportError.h"
#include "importers/Outline.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Lumivane::Importers {
namespace {

// How many arrays stand around a surface; 0 for geometries without surfaces, -1 for unknown ones.
int depthOf(const std::string& type) {
  if (type == "MultiSurface" || type == "CompositeSurface") return 1;
  if (type == "Solid") return 2;
  if (type == "MultiSolid" || type == "CompositeSolid") return 3;
  if (type == "MultiPoint" || type == "MultiLineString") return 0;
  return -1;
}

const CityNode* member(const CityNode& node, const char* name) {
  if (!node.is_object()) return nullptr;
  const auto found = node.find(name);
  return found == node.end() ? nullptr : &*found;
}

std::string textOf(const CityNode* node) {
  return node != nullptr && node->is_string() ? node->get<std::string>() : "";
}

// A channel of a colour or a share, 0 to 1.
double share(const CityNode& node, double otherwise) {
  return node.is_number() ? std::clamp(node.get<double>(), 0.0, 1.0) : otherwise;
}

int channel(double value) { return static_cast<int>(std::lround(value * 255.0)); }

SourceMaterial appearanceOf(const CityNode& node) {
  SourceMaterial material;
  material.name = textOf(member(node, "name"));
  const CityNode* const colour = member(node, "diffuseColor");
  if (colour != nullptr && colour->is_array() && colour->size() == 3) {
    material.red = channel(share((*colour)[0], 0.8));
    material.green = channel(share((*colour)[1], 0.8));
    material.blue = channel(share((*colour)[2], 0.8));
  }
  const CityNode* const transparency = member(node, "transparency");
  if (transparency != nullptr) material.alpha = channel(1.0 - share(*transparency, 0.0));
  return material;
}

// Values that are nested as the boundaries are; a single value counts for all below.
const CityNode* below(const CityNode* values, size_t index) {
  if (values == nullptr || !values->is_array()) return values;
  return index < values->size() ? &(*values)[index] : nullptr;
}

int indexIn(const CityNode* node, size_t count, const char* what) {
  if (node == nullptr || node->is_null()) return -1;
  if (!node->is_number_integer()) throw ImportError(std::string(what) + " is not a whole number");
  const auto index = node->get<long long>();
  if (index < 0 || index >= static_cast<long long>(count))
    throw ImportError(std::string(what) + " " + std::to_string(index) + " is not among the " +
                      std::to_string(count));
  return static_cast<int>(index);
}

class GeometryReader {
 public:
  GeometryReader(const CityNode& geometry, const CityVertices& numbers, const std::string& type,
                 int index, CityPalette& colours, SourceModel& target)
      : vertices(numbers), objectType(type), objectIndex(index), palette(colours), model(target) {
    readSemantics(geometry);
    readMaterials(geometry);
  }

  void addShells(const CityNode& boundaries, int depth) {
    addNested(boundaries, depth, semantics, materials);
  }

 private:
  void readSemantics(const CityNode& geometry) {
    const CityNode* const node = member(geometry, "semantics");
    if (node == nullptr) return;
    semantics = member(*node, "values");
    const CityNode* const surfaces = member(*node, "surfaces");
    if (surfaces == nullptr || !surfaces->is_array()) return;
    for (const CityNode& surface : *surfaces)
      surfaceTypes.push_back(textOf(member(surface, "type")));
  }

  // The first theme counts.
  void readMaterials(const CityNode& geometry) {
    const CityNode* const themes = member(geometry, "material");
    if (themes == nullptr || !themes->is_object() || themes->empty()) return;
    const CityNode& theme = themes->begin().value();
    materials = member(theme, "values");
    if (materials == nullptr) materials = member(theme, "value");
  }

  void addNested(const CityNode& node, int depth, const CityNode* semantic,
                 const CityNode* material) {
    if (!node.is_array()) throw ImportError("its boundaries are not nested as its type asks for");
    if (depth == 0) {
      addSurface(node, semantic, material);
      return;
    }
    for (size_t i = 0; i < node.size(); ++i)
      addNested(node[i], depth - 1, below(semantic, i), below(material, i));
  }

  void addSurface(const CityNode& rings, const CityNode* semantic, const CityNode* material) {
    SourcePolygon polygon;
    for (const CityNode& ring : rings) {
      if (!ring.is_array()) throw ImportError("an outline of a surface is not an array");
      std::vector<int> loop;
      for (const CityNode& vertex : ring) loop.push_back(vertexOf(vertex));
      if (loop.size() < 3) throw ImportError("an outline of a surface has fewer than 3 points");
      polygon.loops.push_back(std::move(loop));
    }
    if (polygon.loops.empty()) throw ImportError("a surface has no outline");
    polygon.object = objectIndex;
    polygon.material = materialOf(semantic, material, polygon.loops.front());
    model.polygons.push_back(std::move(polygon));
  }

  int vertexOf(const CityNode& node) const {
    if (node.is_array())
      throw ImportError("its boundaries are nested deeper than its type asks for");
    const int index = indexIn(&node, vertices.count, "a point number");
    if (index < 0) throw ImportError("a point number is missing");
    return vertices.first + index;
  }

  int materialOf(const CityNode* semantic, const CityNode* material,
                 const std::vector<int>& outline) {
    const int surface = indexIn(semantic, surfaceTypes.size(), "a number of a semantic surface");
    const int appearance =
        indexIn(material, static_cast<size_t>(palette.appearanceCount()), "a number of a material");
    const std::string type = surface < 0 ? "" : surfaceTypes[static_cast<size_t>(surface)];
    return palette.material(appearance, type, objectType, outline);
  }

  const CityVertices& vertices;
  const std::string& objectType;
  int objectIndex;
  CityPalette& palette;
  SourceModel& model;
  std::vector<std::string> surfaceTypes;
  const CityNode* semantics = nullptr;
  const CityNode* materials = nullptr;
};

}  // namespace

CityPalette::CityPalette(const CityNode& root, SourceModel& target) : model(target) {
  const CityNode* const appearance = member(root, "appearance");
  const CityNode* const materials =
      appearance == nullptr ? nullptr : member(*appearance, "materials");
  if (materials == nullptr || !materials->is_array()) return;
  for (const CityNode& node : *materials) appearances.push_back(appearanceOf(node));
}

SourceMaterial CityPalette::colour(int appearance, const std::string& surface,
                                   const std::string& object,
                                   const std::vector<int>& outline) const {
  if (appearance >= 0) return appearances[static_cast<size_t>(appearance)];
  if (const SourceMaterial* const own = surfaceColour(surface)) return *own;
  if (!isBuildingType(object)) return objectColour(object);
  return *surfaceColour(surfaceTypeBySlope(planeOf(outline, model.vertices).normal));
}

int CityPalette::material(int appearance, const std::string& surface, const std::string& object,
                          const std::vector<int>& outline) {
  SourceMaterial material = colour(appearance, surface, object, outline);
  material.className = cityClass(surface, object);
  const std::array<int, 4> rgba = {material.red, material.green, material.blue, material.alpha};
  const auto [place, isNew] = numbers.emplace(std::make_pair(material.className, rgba),
                                              static_cast<int>(model.materials.size()));
  if (isNew) model.materials.push_back(std::move(material));
  return place->second;
}

bool addCityGeometry(const CityNode& geometry, const CityVertices& vertices,
                     const std::string& objectType, int objectIndex, CityPalette& palette,
                     SourceModel& model) {
  const std::string type = textOf(member(geometry, "type"));
  const int depth = depthOf(type);
  if (depth < 0) throw ImportError("a geometry has no type that is known");
  if (depth == 0) return false;
  const CityNode* const boundaries = member(geometry, "boundaries");
  if (boundaries == nullptr) throw ImportError("a geometry has no boundaries");
  GeometryReader(geometry, vertices, objectType, objectIndex, palette, model)
      .addShells(*boundaries, depth);
  return true;
}

}  // namespace Lumivane::Importers
