// CityJSON 1.0, 1.1 and 2.0, and sequences of it: a text in lines, of which the first is a document
// with all that is common, and each other one a feature with vertices of its own. A feature is read
// as the document that it makes together with the first line, and the models are put together.

#include "importers/CityColours.h"
#include "importers/CityGeometry.h"
#include "importers/ImportError.h"
#include "importers/JsonDepth.h"
#include "importers/ModelSum.h"
#include "importers/Readers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <string>

namespace Lumivane::Importers {
namespace {

using Kernel::Vec3;
using Matrix = std::array<double, 16>;

constexpr Matrix Identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

const CityNode* member(const CityNode& node, const char* name) {
  if (!node.is_object()) return nullptr;
  const auto found = node.find(name);
  return found == node.end() ? nullptr : &*found;
}

double finiteNumber(const CityNode& node, const std::string& where) {
  const double value = node.is_number() ? node.get<double>() : std::nan("");
  if (!std::isfinite(value)) throw ImportError(where + " is not a finite number");
  return value;
}

Vec3 tripleOf(const CityNode& node, const std::string& where) {
  if (!node.is_array() || node.size() != 3)
    throw ImportError(where + " does not have 3 coordinates");
  const std::string coordinate = "a coordinate of " + where;
  return {finiteNumber(node[0], coordinate), finiteNumber(node[1], coordinate),
          finiteNumber(node[2], coordinate)};
}

std::string textOf(const CityNode* node) {
  return node != nullptr && node->is_string() ? node->get<std::string>() : "";
}

// The level of detail as a number: "2.2", or 2 as older files have it.
double levelOf(const CityNode& geometry) {
  const CityNode* const node = member(geometry, "lod");
  if (node == nullptr) return 0.0;
  if (node->is_number()) return node->get<double>();
  const std::string text = textOf(node);
  double level = 0.0;
  std::from_chars(text.data(), text.data() + text.size(), level);
  return level;
}

bool holdsSurfaces(const CityNode& geometry) {
  const std::string type = textOf(member(geometry, "type"));
  return type != "MultiPoint" && type != "MultiLineString";
}

Matrix matrixOf(const CityNode* node) {
  if (node == nullptr) return Identity;
  if (!node->is_array() || node->size() != 16)
    throw ImportError("a transformation matrix does not have 16 numbers");
  Matrix matrix{};
  for (size_t i = 0; i < 16; ++i)
    matrix[i] = finiteNumber((*node)[i], "an element of a transformation matrix");
  return matrix;
}

// Rows of the matrix one after the other; the last one counts for nothing in an affine map.
Vec3 mapped(const Matrix& m, Vec3 v) {
  return {m[0] * v.x + m[1] * v.y + m[2] * v.z + m[3], m[4] * v.x + m[5] * v.y + m[6] * v.z + m[7],
          m[8] * v.x + m[9] * v.y + m[10] * v.z + m[11]};
}

// What instances make beyond what the file holds.
constexpr size_t MostMappedVertices = 200000000;
constexpr size_t MostRepeatedPolygons = 1000000;

// Geometries of which nothing is taken.
struct LeftOut {
  size_t withoutSurfaces = 0;
  size_t ofLowerLevels = 0;

  void reportTo(SourceModel& model) const {
    if (withoutSurfaces > 0)
      model.warnings.push_back(std::to_string(withoutSurfaces) +
                               " geometries of points or lines are left out");
    if (ofLowerLevels > 0)
      model.warnings.push_back(std::to_string(ofLowerLevels) +
                               " geometries of a lower level of detail are left out");
  }
};

class CityJsonReader {
 public:
  CityJsonReader(const CityNode& document, LeftOut& counts) : root(document), leftOut(counts) {}

  SourceModel read() {
    checkVersion();
    readVertices();
    palette = std::make_unique<CityPalette>(root, model);
    const CityNode* const objects = member(root, "CityObjects");
    if (objects == nullptr || !objects->is_object()) throw ImportError("it has no \"CityObjects\"");
    for (const auto& [id, node] : objects->items()) readObject(id, node);
    return std::move(model);
  }

 private:
  void checkVersion() {
    const std::string type = textOf(member(root, "type"));
    if (type == "CityJSONFeature")
      throw ImportError("it is a single CityJSONFeature, not a whole CityJSON document");
    if (type.empty() && member(root, "Objects") != nullptr)
      throw ImportError("it is a scene file already: the other commands take it as it is");
    if (type != "CityJSON") throw ImportError("its \"type\" is not \"CityJSON\"");
    const std::string version = textOf(member(root, "version"));
    if (version != "1.0" && version != "1.1" && version != "2.0")
      throw ImportError("its version is \"" + version + "\"; 1.0, 1.1 and 2.0 are read");
    model.format = "CityJSON " + version;
    if (const CityNode* const metadata = member(root, "metadata"))
      model.referenceSystem = textOf(member(*metadata, "referenceSystem"));
  }

  void readVertices() {
    Vec3 scale{1, 1, 1};
    Vec3 translation;
    if (const CityNode* const transform = member(root, "transform")) {
      const CityNode* const s = member(*transform, "scale");
      const CityNode* const t = member(*transform, "translate");
      if (s == nullptr || t == nullptr)
        throw ImportError("its \"transform\" has no \"scale\" and \"translate\"");
      scale = tripleOf(*s, "the transform's scale");
      translation = tripleOf(*t, "the transform's translation");
    }
    const CityNode* const vertices = member(root, "vertices");
    if (vertices == nullptr || !vertices->is_array()) throw ImportError("it has no \"vertices\"");
    for (const CityNode& node : *vertices) {
      const Vec3 v = tripleOf(node, "vertex " + std::to_string(model.vertices.size()));
      model.vertices.push_back({v.x * scale.x + translation.x, v.y * scale.y + translation.y,
                                v.z * scale.z + translation.z});
    }
    numbers.count = model.vertices.size();
  }

  void readObject(const std::string& id, const CityNode& node) {
    try {
      if (!node.is_object()) throw ImportError("is no object");
      const CityNode* const geometries = member(node, "geometry");
      if (geometries == nullptr) return;
      if (!geometries->is_array()) throw ImportError("its \"geometry\" is not an array");
      addObject(id, textOf(member(node, "type")), *geometries);
    } catch (const ImportError& error) {
      throw ImportError("city object \"" + id + "\": " + error.what());
    }
  }

  // The geometries of the highest level of detail that has surfaces.
  void addObject(const std::string& id, const std::string& type, const CityNode& geometries) {
    double highest = -1.0;
    for (const CityNode& geometry : geometries)
      if (holdsSurfaces(geometry)) highest = std::max(highest, levelWithTemplates(geometry));
    model.objects.push_back({id, isTerrainType(type)});
    const std::string whole = wholeOf(id);
    if (!whole.empty()) model.wholes[id] = whole;
    for (const CityNode& geometry : geometries) {
      if (!holdsSurfaces(geometry))
        ++leftOut.withoutSurfaces;
      else if (levelWithTemplates(geometry) < highest)
        ++leftOut.ofLowerLevels;
      else
        addGeometry(geometry, type);
    }
  }

  // Follows the first parent that is no group, up to the one without. Empty for what is no part.
  std::string wholeOf(const std::string& id) const {
    const CityNode& objects = *member(root, "CityObjects");
    std::string whole = id;
    std::set<std::string> passed;  // a document may name parents in a circle
    while (passed.insert(whole).second) {
      const std::string parent = parentOf(objects, whole);
      if (parent.empty()) return whole == id ? "" : whole;
      whole = parent;
    }
    return "";
  }

  static std::string parentOf(const CityNode& objects, const std::string& id) {
    const CityNode* const node = member(objects, id.c_str());
    const CityNode* const parents = node == nullptr ? nullptr : member(*node, "parents");
    if (parents == nullptr || !parents->is_array()) return "";
    for (const CityNode& parent : *parents) {
      const std::string name = textOf(&parent);
      const CityNode* const other = name.empty() ? nullptr : member(objects, name.c_str());
      if (other != nullptr && textOf(member(*other, "type")) != "CityObjectGroup") return name;
    }
    return "";
  }

  double levelWithTemplates(const CityNode& geometry) const {
    if (textOf(member(geometry, "type")) != "GeometryInstance") return levelOf(geometry);
    return levelOf(*templateOf(geometry));
  }

  void addGeometry(const CityNode& geometry, const std::string& type) {
    const int object = static_cast<int>(model.objects.size()) - 1;
    if (textOf(member(geometry, "type")) == "GeometryInstance")
      addInstance(geometry, type, object);
    else
      addCityGeometry(geometry, numbers, type, object, *palette, model);
  }

  const CityNode* templateOf(const CityNode& instance) const {
    const CityNode* const all = member(root, "geometry-templates");
    const CityNode* const templates = all == nullptr ? nullptr : member(*all, "templates");
    const CityNode* const number = member(instance, "template");
    if (templates == nullptr || !templates->is_array() || number == nullptr ||
        !number->is_number_integer())
      throw ImportError("an instance has no template");
    const auto index = number->get<long long>();
    if (index < 0 || index >= static_cast<long long>(templates->size()))
      throw ImportError("an instance names template " + std::to_string(index) + ", but there are " +
                        std::to_string(templates->size()));
    const CityNode* const found = &(*templates)[static_cast<size_t>(index)];
    if (textOf(member(*found, "type")) == "GeometryInstance")
      throw ImportError("a template is an instance itself");
    return found;
  }

  // A template's vertices are its own; an instance maps them and moves them to one vertex of the
  // document.
  void addInstance(const CityNode& instance, const std::string& type, int object) {
    const CityNode* const node = templateOf(instance);
    const CityNode* const anchor = member(instance, "boundaries");
    if (anchor == nullptr || !anchor->is_array() || anchor->size() != 1 ||
        !(*anchor)[0].is_number_integer())
      throw ImportError("the boundaries of an instance are not one point number");
    const auto index = (*anchor)[0].get<long long>();
    if (index < 0 || index >= static_cast<long long>(numbers.count))
      throw ImportError("a point number " + std::to_string(index) + " is not among the " +
                        std::to_string(numbers.count));
    const Vec3 origin = model.vertices[static_cast<size_t>(index)];
    const Matrix matrix = matrixOf(member(instance, "transformationMatrix"));
    mappedVertices += templateVertices().size();
    if (mappedVertices > MostMappedVertices)
      throw ImportError("instances place templates again and again, more than " +
                        std::to_string(MostMappedVertices) + " points; split the file");
    const int first = static_cast<int>(model.vertices.size());
    for (const Vec3& v : templateVertices()) model.vertices.push_back(mapped(matrix, v) + origin);
    const size_t firstPolygon = model.polygons.size();
    const CityVertices own{templateVertices().size(), first};
    if (!addCityGeometry(*node, own, type, object, *palette, model)) ++leftOut.withoutSurfaces;
    keepUsedVertices(first, firstPolygon);
    repeatedPolygons += model.polygons.size() - firstPolygon;
    if (repeatedPolygons > MostRepeatedPolygons)
      throw ImportError("instances repeat templates to more than " +
                        std::to_string(MostRepeatedPolygons) + " polygons; split the file");
  }

  // Drops those of the last vertices, from `first` on, that none of the last polygons uses.
  void keepUsedVertices(int first, size_t firstPolygon) {
    std::map<int, int> numbersOfUsed;
    for (size_t p = firstPolygon; p < model.polygons.size(); ++p)
      for (const std::vector<int>& loop : model.polygons[p].loops)
        for (const int vertex : loop) numbersOfUsed.emplace(vertex, 0);
    int next = first;
    for (auto& [vertex, number] : numbersOfUsed) {
      model.vertices[static_cast<size_t>(next)] = model.vertices[static_cast<size_t>(vertex)];
      number = next++;
    }
    model.vertices.resize(static_cast<size_t>(next));
    for (size_t p = firstPolygon; p < model.polygons.size(); ++p)
      for (std::vector<int>& loop : model.polygons[p].loops)
        for (int& vertex : loop) vertex = numbersOfUsed.at(vertex);
  }

  const std::vector<Vec3>& templateVertices() {
    if (!ownVertices.empty()) return ownVertices;
    const CityNode* const all = member(root, "geometry-templates");
    const CityNode* const vertices = all == nullptr ? nullptr : member(*all, "vertices-templates");
    if (vertices == nullptr || !vertices->is_array())
      throw ImportError("there are no vertices of templates");
    for (const CityNode& node : *vertices)
      ownVertices.push_back(
          tripleOf(node, "template vertex " + std::to_string(ownVertices.size())));
    return ownVertices;
  }

  const CityNode& root;
  LeftOut& leftOut;
  SourceModel model;
  CityVertices numbers;
  std::vector<Vec3> ownVertices;
  std::unique_ptr<CityPalette> palette;
  size_t mappedVertices = 0;
  size_t repeatedPolygons = 0;
};

CityNode parsed(const std::string& bytes) {
  checkDepth(bytes);
  try {
    return CityNode::parse(bytes);
  } catch (const CityNode::parse_error& error) {
    throw ImportError("not JSON: damaged at byte " + std::to_string(error.byte) + " of " +
                      std::to_string(bytes.size()));
  } catch (const CityNode::exception& error) {
    throw ImportError(std::string("not JSON: ") + error.what());
  }
}

// What a feature has in place of the first line's.
constexpr std::array<const char*, 3> OfFeatures = {"CityObjects", "vertices", "appearance"};

class CitySequenceReader {
 public:
  explicit CitySequenceReader(std::istream& theLines) : lines(theLines) {}

  SourceModel read() {
    std::string line;
    while (std::getline(lines, line)) {
      ++number;
      if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
      try {
        isStarted ? readFeature(parsed(line)) : readFirst(parsed(line));
      } catch (const ImportError& error) {
        throw ImportError("line " + std::to_string(number) + ": " + error.what());
      }
      isStarted = true;
    }
    if (!isStarted) throw ImportError("it is empty");
    SourceModel model = sum.take();
    model.format += " sequence";
    leftOut.reportTo(model);
    return model;
  }

 private:
  // A document, mostly without objects and vertices.
  void readFirst(CityNode node) {
    if (textOf(member(node, "type")) == "CityJSONFeature")
      throw ImportError("is a CityJSONFeature, and the first line is to be of the type CityJSON");
    first = std::move(node);
    if (!first.is_object()) throw ImportError("is no object");
    for (const char* const key : {"CityObjects", "vertices"})
      if (member(first, key) == nullptr)
        first[key] = std::string(key) == "vertices" ? CityNode::array() : CityNode::object();
    addObjectsOf(first);
  }

  void readFeature(CityNode feature) {
    if (textOf(member(feature, "type")) != "CityJSONFeature")
      throw ImportError("its \"type\" is not \"CityJSONFeature\"");
    CityNode document = first;
    for (const char* const key : OfFeatures) {
      const auto own = feature.find(key);
      if (own != feature.end()) document[key] = std::move(*own);
    }
    if (!feature.contains("CityObjects")) throw ImportError("it has no \"CityObjects\"");
    if (!feature.contains("vertices")) throw ImportError("it has no \"vertices\"");
    addObjectsOf(document);
  }

  void addObjectsOf(const CityNode& document) {
    SourceModel model = CityJsonReader(document, leftOut).read();
    for (const SourceObject& object : model.objects) {
      const auto [known, isNew] = lineOf.emplace(object.id, number);
      if (!isNew)
        throw ImportError("city object \"" + object.id + "\" stands in line " +
                          std::to_string(known->second) + " as well");
    }
    sum.add(std::move(model));
  }

  std::istream& lines;
  CityNode first;
  ModelSum sum;
  LeftOut leftOut;
  std::map<std::string, size_t> lineOf;  // of city objects
  size_t number = 0;
  bool isStarted = false;
};

}  // namespace

SourceModel readCityJson(const std::string& bytes) {
  LeftOut leftOut;
  const CityNode root = parsed(bytes);
  SourceModel model = CityJsonReader(root, leftOut).read();
  leftOut.reportTo(model);
  return model;
}

SourceModel readCityJsonSequence(std::istream& lines) { return CitySequenceReader(lines).read(); }

}  // namespace Lumivane::Importers
