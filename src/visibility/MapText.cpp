#include "kernel/CsvText.h"
#include "kernel/DisplayText.h"
#include "kernel/JsonText.h"

#include <lumivane/visibility/MapText.h>

#include <algorithm>
#include <charconv>
#include <numeric>
#include <tuple>
#include <utility>

namespace Lumivane::Visibility {
namespace {

// A text that grows, with the forms of numbers in it.
class Text {
 public:
  Text& operator<<(const std::string& text) {
    bytes += text;
    return *this;
  }
  Text& operator<<(const char* text) {
    bytes += text;
    return *this;
  }
  Text& operator<<(char character) {
    bytes += character;
    return *this;
  }
  Text& operator<<(int number) { return whole(number); }
  Text& operator<<(std::size_t number) { return whole(number); }

  // As few digits as read back to the same double.
  Text& shortest(double value) {
    const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof buffer, value + 0.0);
    bytes.append(buffer, end.ptr);
    return *this;
  }

  // 17 digits at most; the sum is never -0.
  Text& exact(double value) {
    const std::to_chars_result end =
        std::to_chars(buffer, buffer + sizeof buffer, value + 0.0, std::chars_format::general, 17);
    bytes.append(buffer, end.ptr);
    return *this;
  }

  Text& exact(const Vector& vector) {
    *this << '[';
    exact(vector[0]) << ',';
    exact(vector[1]) << ',';
    return exact(vector[2]) << ']';
  }

  std::string take() { return std::move(bytes); }

 private:
  template <class Number>
  Text& whole(Number number) {
    const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof buffer, number);
    bytes.append(buffer, end.ptr);
    return *this;
  }

  std::string bytes;
  char buffer[40] = {};
};

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

std::string cell(const std::string& text, bool isSafe) {
  return Kernel::csvField(isSafe ? Kernel::csvSafe(text) : text);
}

void addCsvRow(Text& text, const ShareRow& row, Field field, bool isSafe) {
  const auto number = [&text](int value) {
    text << ',';
    if (value > 0) text << value;
  };
  text << row.kind;
  number(row.object);
  text << ',' << cell(row.id, isSafe);
  number(row.face);
  number(row.region);
  number(row.sourceRegion);
  const bool isHemisphere = field == Field::Hemisphere;
  if (isHemisphere) (text << ',').shortest(row.share.area());
  if (isHemisphere) (text << ',').shortest(row.share.viewFactor);
  (text << ',').shortest(row.share.solidAngle);
  if (isHemisphere) (text << ',').shortest(row.share.hemisphereShare());
  text << ',' << cell(row.className, isSafe) << ',';
  if (row.visibleFraction) text.shortest(*row.visibleFraction);
  text << ',';
  if (isSeen(row)) text.shortest(row.share.minDistance);
  text << ',';
  if (isSeen(row)) text.shortest(row.share.maxDistance);
  text << '\n';
}

void addJsonRow(Text& text, const ShareRow& row, Field field) {
  const auto number = [&text](const char* key, int value) {
    if (value > 0) text << ",\"" << key << "\":" << value;
  };
  const auto value = [&text](const char* key, double of) {
    (text << ",\"" << key << "\":").shortest(of);
  };
  text << "{\"kind\":\"" << row.kind << '"';
  number("object", row.object);
  if (row.object > 0) text << ",\"id\":" << Kernel::jsonString(row.id);
  number("face", row.face);
  number("region", row.region);
  number("source_region", row.sourceRegion);
  const bool isHemisphere = field == Field::Hemisphere;
  if (isHemisphere) value("area", row.share.area());
  if (isHemisphere) value("view_factor", row.share.viewFactor);
  value("solid_angle", row.share.solidAngle);
  if (isHemisphere) value("hemisphere_share", row.share.hemisphereShare());
  if (!row.className.empty()) text << ",\"class\":" << Kernel::jsonString(row.className);
  if (row.visibleFraction) value("visible_fraction", *row.visibleFraction);
  if (isSeen(row)) value("min_distance", row.share.minDistance);
  if (isSeen(row)) value("max_distance", row.share.maxDistance);
  text << '}';
}

// From where a map is seen: the first keys of every document.
void addView(Text& text, const VisibleMap& map) {
  text << "{\"version\":1,\n\"eye\":";
  text.exact(map.eye) << ",\"forward\":";
  text.exact(map.forward) << ",\"up\":";
  text.exact(map.up) << ",\"field\":\"" << nameOf(map.field) << "\",\n";
}

// The members of a list, one to a line.
template <class Add>
void addList(Text& text, const char* key, std::size_t count, const Add& add) {
  text << '"' << key << "\":[";
  for (std::size_t i = 0; i < count; ++i) {
    text << (i == 0 ? "\n" : ",\n");
    add(i);
  }
  text << ']';
}

void addCell(Text& text, const VisibleMap& map, std::size_t number) {
  const VisibleMap::Cell& cell = map.cells[number];
  text << "{\"object\":" << cell.label.object << ",\"face\":" << cell.label.face
       << ",\"region\":" << cell.label.region << ",\"solid_angle\":";
  text.exact(cell.solidAngle) << ",\"view_factor\":";
  text.exact(cell.viewFactor) << ",\"min_distance\":";
  text.exact(cell.minDistance) << ",\"max_distance\":";
  text.exact(cell.maxDistance) << ",\"rings\":[";
  for (std::size_t ring = cell.firstRing; ring < cell.firstRing + cell.ringCount; ++ring) {
    text << (ring == cell.firstRing ? "[" : ",[");
    for (std::size_t i = map.ringOffsets[ring]; i < map.ringOffsets[ring + 1]; ++i) {
      if (i > map.ringOffsets[ring]) text << ',';
      text << map.ringVertices[i];
    }
    text << ']';
  }
  text << "]}";
}

void addEdge(Text& text, const VisibleMap::Edge& edge) {
  text << "{\"vertices\":[" << edge.from << ',' << edge.to << "],\"cells\":[" << edge.left << ','
       << edge.right << "],\"kind\":\"" << nameOf(edge.kind) << "\"}";
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
  Text text;
  for (const ShareRow& row : rows) {
    text << before;
    addCsvRow(text, row, field, isSafe);
  }
  return text.take();
}

std::string MapText::csv(const VisibleMap& map, const MapShares& shares, ShareDepth depth,
                         bool isSafe) {
  return csvHeading(map.field) + "\n" +
         csvRows(shareRows(map, shares, depth), map.field, "", isSafe);
}

std::string MapText::json(const VisibleMap& map, const MapShares& shares, ShareDepth depth) {
  const std::vector<ShareRow> rows = shareRows(map, shares, depth);
  Text text;
  addView(text, map);
  addList(text, "rows", rows.size(), [&](std::size_t i) { addJsonRow(text, rows[i], map.field); });
  text << "}\n";
  return text.take();
}

std::string MapText::mapJson(const VisibleMap& map) {
  Text text;
  addView(text, map);
  addList(text, "vertices", map.vertices.size(),
          [&](std::size_t i) { text.exact(map.vertices[i]); });
  addList(text << ",\n", "cells", map.cells.size(), [&](std::size_t i) { addCell(text, map, i); });
  addList(text << ",\n", "edges", map.edges.size(),
          [&](std::size_t i) { addEdge(text, map.edges[i]); });
  text << "}\n";
  return text.take();
}

}  // namespace Lumivane::Visibility
