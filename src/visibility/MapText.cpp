#include "kernel/CsvText.h"
#include "kernel/DisplayText.h"
#include "kernel/JsonText.h"

#include <lumivane/visibility/MapText.h>

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

// Maps and their shares as CSV and JSON. Both tables are made of the same rows; only the writers
// differ.
namespace Lumivane::Visibility {
namespace {

using Kernel::CsvRow;
using Kernel::JsonWriter;

const char* nameOf(Field field) {
  switch (field) {
    case Field::Hemisphere:
      return "hemisphere";
    case Field::Sphere:
      return "sphere";
  }
  return "";
}

const char* nameOf(VisibleMap::EdgeKind kind) {
  switch (kind) {
    case VisibleMap::EdgeKind::Silhouette:
      return "silhouette";
    case VisibleMap::EdgeKind::Crease:
      return "crease";
    case VisibleMap::EdgeKind::Inner:
      return "inner";
    case VisibleMap::EdgeKind::Crossing:
      return "crossing";
    case VisibleMap::EdgeKind::Field:
      return "field";
  }
  return "";
}

// Finds names and numbers of what the rows of a map are about.
class Naming {
 public:
  explicit Naming(const VisibleMap& map)
      : names(map.names ? *map.names : none), order(names.regions.size()) {
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
      return key(names.regions[a]) < key(names.regions[b]);
    });
  }

  std::string id(int object) const {
    const auto at = static_cast<std::size_t>(object) - 1;
    return object >= 1 && at < names.objectIds.size() ? Kernel::idText(names.objectIds[at]) : "";
  }

  std::string className(int number) const {
    const auto at = static_cast<std::size_t>(number);
    return number >= 0 && at < names.classNames.size() ? Kernel::utf8Text(names.classNames[at])
                                                       : "";
  }

  // The class of a region; empty for none.
  std::string classOf(const Label& label) const {
    const auto at = static_cast<std::size_t>(sceneNumber(label)) - 1;
    return at < names.classes.size() ? className(names.classes[at]) : "";
  }

  // Counted from 1 through all objects of the scene; 0 for one that it does not have.
  int sceneNumber(const Label& label) const {
    const auto found = std::lower_bound(
        order.begin(), order.end(), key(label),
        [this](std::size_t at, const Key& wanted) { return key(names.regions[at]) < wanted; });
    if (found == order.end() || key(names.regions[*found]) != key(label)) return 0;
    return static_cast<int>(*found) + 1;
  }

 private:
  using Key = std::pair<int, int>;
  static Key key(const Label& label) { return {label.object, label.region}; }

  const VisibleMap::Names none;
  const VisibleMap::Names& names;
  std::vector<std::size_t> order;  // positions of the regions by their object and number
};

class Rows {
 public:
  Rows(const VisibleMap& map, const MapShares& theShares) : naming(map), shares(theShares) {}

  void addTotal() {
    ShareRow row;
    row.kind = "total";
    row.share = allObjects();
    rows.push_back(std::move(row));
  }

  void addClasses() {
    for (const MapShares::ClassRow& source : shares.classes()) {
      ShareRow row;
      row.kind = "class";
      row.className = naming.className(source.classNumber);
      row.share = source.share;
      rows.push_back(std::move(row));
    }
  }

  void addObjects() {
    const std::vector<double>& fractions = shares.visibleFractions();
    for (std::size_t i = 0; i < shares.objects().size(); ++i) {
      add("object", shares.objects()[i]);
      if (i < fractions.size()) rows.back().visibleFraction = fractions[i];
    }
  }

  void addFaces() {
    for (const MapShares::Row& face : shares.faces()) add("face", face);
  }

  void addRegions() {
    for (const MapShares::Row& region : shares.regions()) {
      add("region", region);
      rows.back().region = naming.sceneNumber(region.label);
    }
  }

  void addSky() {
    ShareRow row;
    row.kind = "sky";
    row.share = shares.sky();
    rows.push_back(std::move(row));
  }

  std::vector<ShareRow> take() { return std::move(rows); }

 private:
  void add(const char* kind, const MapShares::Row& source) {
    ShareRow row;
    row.kind = kind;
    row.object = source.label.object;
    row.id = naming.id(source.label.object);
    row.face = source.label.face;
    row.sourceRegion = source.label.region;
    row.className = naming.className(source.classNumber);
    row.share = source.share;
    rows.push_back(std::move(row));
  }

  // Summed up in the scene's order: what the sky leaves of the field would lose digits.
  ViewShare allObjects() const {
    ViewShare sum;
    for (const MapShares::Row& object : shares.objects()) {
      const ViewShare& share = object.share;
      if (!(share.solidAngle > 0.0)) continue;
      sum.minDistance =
          sum.solidAngle > 0.0 ? std::min(sum.minDistance, share.minDistance) : share.minDistance;
      sum.maxDistance = std::max(sum.maxDistance, share.maxDistance);
      sum.solidAngle += share.solidAngle;
      sum.viewFactor += share.viewFactor;
    }
    return sum;
  }

  Naming naming;
  const MapShares& shares;
  std::vector<ShareRow> rows;
};

bool isSeen(const ShareRow& row) { return row.kind != "sky" && row.share.solidAngle > 0.0; }

void addCsvRow(CsvRow& text, const ShareRow& row, Field field) {
  const auto number = [&text](int value) { value > 0 ? text.number(value) : text.empty(); };
  const auto distance = [&](double value) { isSeen(row) ? text.number(value) : text.empty(); };
  text.text(row.kind);
  number(row.object);
  text.text(row.id);
  number(row.face);
  number(row.region);
  number(row.sourceRegion);
  const bool isHemisphere = field == Field::Hemisphere;
  if (isHemisphere) text.number(row.share.area()).number(row.share.viewFactor);
  text.number(row.share.solidAngle);
  if (isHemisphere) text.number(row.share.hemisphereShare());
  text.text(row.className);
  row.visibleFraction ? text.number(*row.visibleFraction) : text.empty();
  distance(row.share.minDistance);
  distance(row.share.maxDistance);
}

void addJsonRow(JsonWriter& json, const ShareRow& row, Field field) {
  const auto number = [&json](const char* key, int value) {
    if (value > 0) json.key(key).number(value);
  };
  json.beginObject().key("kind").text(row.kind);
  number("object", row.object);
  // A row of what several objects are parts of has an id, too, and an object without one has "".
  if (row.object > 0 || !row.id.empty()) json.key("id").text(row.id);
  number("face", row.face);
  number("region", row.region);
  number("source_region", row.sourceRegion);
  const bool isHemisphere = field == Field::Hemisphere;
  if (isHemisphere) json.key("area").number(row.share.area());
  if (isHemisphere) json.key("view_factor").number(row.share.viewFactor);
  json.key("solid_angle").number(row.share.solidAngle);
  if (isHemisphere) json.key("hemisphere_share").number(row.share.hemisphereShare());
  if (!row.className.empty()) json.key("class").text(row.className);
  if (row.visibleFraction) json.key("visible_fraction").number(*row.visibleFraction);
  if (isSeen(row)) json.key("min_distance").number(row.share.minDistance);
  if (isSeen(row)) json.key("max_distance").number(row.share.maxDistance);
  json.endObject();
}

void addVector(JsonWriter& json, const Vector& vector) {
  json.beginArray();
  for (const double coordinate : vector) json.longNumber(coordinate);
  json.endArray();
}

// From where a map is seen: the first keys of every document.
void addView(JsonWriter& json, const VisibleMap& map) {
  json.key("version").number(1).newLine();
  addVector(json.key("eye"), map.eye);
  addVector(json.key("forward"), map.forward);
  addVector(json.key("up"), map.up);
  json.key("field").text(nameOf(map.field));
}

// The members of a list, one to a line.
template <class Add>
void addList(JsonWriter& json, const char* key, std::size_t count, const Add& add) {
  json.newLine().key(key).beginArray();
  for (std::size_t i = 0; i < count; ++i) {
    json.newLine();
    add(i);
  }
  json.endArray();
}

void addCell(JsonWriter& json, const VisibleMap& map, const Naming& naming, std::size_t number) {
  const VisibleMap::Cell& cell = map.cells[number];
  json.beginObject().key("object").number(cell.label.object).key("face").number(cell.label.face);
  json.key("region").number(cell.label.region);
  const std::string className = naming.classOf(cell.label);
  if (!className.empty()) json.key("class").text(className);
  json.key("solid_angle").longNumber(cell.solidAngle);
  json.key("view_factor").longNumber(cell.viewFactor);
  json.key("min_distance").longNumber(cell.minDistance);
  json.key("max_distance").longNumber(cell.maxDistance).key("rings").beginArray();
  for (std::size_t ring = cell.firstRing; ring < cell.firstRing + cell.ringCount; ++ring) {
    json.beginArray();
    for (std::size_t i = map.ringOffsets[ring]; i < map.ringOffsets[ring + 1]; ++i)
      json.number(map.ringVertices[i]);
    json.endArray();
  }
  json.endArray().endObject();
}

void addEdge(JsonWriter& json, const VisibleMap::Edge& edge) {
  json.beginObject().key("vertices").beginArray().number(edge.from).number(edge.to).endArray();
  json.key("cells").beginArray().number(edge.left).number(edge.right).endArray();
  json.key("kind").text(nameOf(edge.kind)).endObject();
}

}  // namespace

std::vector<ShareRow> shareRows(const VisibleMap& map, const MapShares& shares, ShareDepth depth) {
  Rows rows(map, shares);
  if (depth == ShareDepth::Total) rows.addTotal();
  if (depth == ShareDepth::Class) rows.addClasses();
  if (depth >= ShareDepth::Object) rows.addObjects();
  if (depth >= ShareDepth::Face) rows.addFaces();
  if (depth >= ShareDepth::Region) rows.addRegions();
  rows.addSky();
  return rows.take();
}

std::string MapText::csvHeading(Field field) {
  const bool isHemisphere = field == Field::Hemisphere;
  return std::string("kind,object,id,face,region,source_region,") +
         (isHemisphere ? "area,view_factor,solid_angle,hemisphere_share" : "solid_angle") +
         ",class,visible_fraction,min_distance,max_distance";
}

std::string MapText::csvRows(const std::vector<ShareRow>& rows, Field field,
                             const std::string& before, bool isSafe) {
  std::string text;
  CsvRow record(isSafe);
  for (const ShareRow& row : rows) {
    addCsvRow(record, row, field);
    text += before + record.take();
  }
  return text;
}

std::string MapText::csv(const VisibleMap& map, const MapShares& shares, ShareDepth depth,
                         bool isSafe) {
  return csvHeading(map.field) + "\n" +
         csvRows(shareRows(map, shares, depth), map.field, "", isSafe);
}

std::string MapText::json(const VisibleMap& map, const MapShares& shares, ShareDepth depth) {
  return json(map, shareRows(map, shares, depth));
}

std::string MapText::json(const VisibleMap& map, const std::vector<ShareRow>& rows) {
  JsonWriter json;
  addView(json.beginObject(), map);
  addList(json, "rows", rows.size(), [&](std::size_t i) { addJsonRow(json, rows[i], map.field); });
  return json.endObject().take();
}

std::string MapText::mapJson(const VisibleMap& map) {
  const Naming naming(map);
  JsonWriter json;
  addView(json.beginObject(), map);
  addList(json, "vertices", map.vertices.size(),
          [&](std::size_t i) { addVector(json, map.vertices[i]); });
  addList(json, "cells", map.cells.size(), [&](std::size_t i) { addCell(json, map, naming, i); });
  addList(json, "edges", map.edges.size(), [&](std::size_t i) { addEdge(json, map.edges[i]); });
  return json.endObject().take();
}

}  // namespace Lumivane::Visibility
