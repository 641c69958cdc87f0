// Line work of drawings: a layer for each kind, in it a path for each object, or for plotters one
// path for each kind.

#include "pictures/DrawingParts.h"
#include "pictures/Strokes.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace Lumivane::Pictures {

using Line = Drawing::Line;

const char* lineKindName(LineKind kind) {
  switch (kind) {
    case LineKind::Outline:
      return "outline";
    case LineKind::Silhouette:
      return "silhouette";
    case LineKind::Crease:
      return "crease";
    case LineKind::Inner:
      return "inner";
    case LineKind::Crossing:
      return "crossing";
    case LineKind::Field:
      return "field";
    case LineKind::Hidden:
      break;
  }
  return "hidden";
}

namespace {

// Hidden lines first, then thin ones, so that thick ones lie over them.
constexpr LineKind DrawingOrder[] = {LineKind::Hidden,   LineKind::Inner,      LineKind::Crease,
                                     LineKind::Crossing, LineKind::Silhouette, LineKind::Outline};

Visibility::Label labelOf(const DrawnScene& scene, const DrawnLine& line) {
  if (line.cell >= 0) return scene.map.cells[static_cast<std::size_t>(line.cell)].label;
  if (line.region < 0) return {};
  return scene.map.names->regions[static_cast<std::size_t>(line.region)];
}

// What one path of a kind holds: the lines of one object, if there are groups of classes those of
// one class in it; 0 for all.
struct PathKey {
  int classNumber = 0;
  int object = 0;
  bool operator<(const PathKey& other) const {
    return std::pair(classNumber, object) < std::pair(other.classNumber, other.object);
  }
};

PathKey keyOf(const DrawnScene& scene, const CellLooks& looks, const DrawnLine& line) {
  if (scene.options.groups == DrawingGroups::None || scene.options.strokes) return {};
  const Visibility::Label label = labelOf(scene, line);
  if (scene.options.groups != DrawingGroups::Class) return {0, label.object};
  return {label.object == 0 ? -1 : looks.classOf(label), label.object};
}

void count(const std::vector<Line>& lines, Drawing::Counts& counts) {
  counts.paths += lines.size();
  counts.drawn += lengthOf(lines);
  counts.travel += penTravel(lines);
}

Drawing::Path pathOf(const DrawnScene& scene, LineKind kind, std::vector<Line> lines) {
  Drawing::Path path;
  path.lines = std::move(lines);
  path.color = kind == LineKind::Hidden ? Grey : Black;
  path.width = scene.options.widths[static_cast<std::size_t>(kind)];
  if (kind == LineKind::Hidden) path.dashes.assign(std::begin(Dashes), std::end(Dashes));
  return path;
}

// The last group of a layer, which is made if it is of another class. Classes come in their order.
Drawing::Group& classGroup(Drawing::Group& layer, const CellLooks& looks, int number) {
  const std::string id = layer.id + "-class" + std::to_string(number + 1);
  if (layer.groups.empty() || layer.groups.back().id != id) {
    layer.groups.emplace_back();
    layer.groups.back().id = id;
    layer.groups.back().name = looks.className(number);
    layer.groups.back().isLayer = true;
  }
  return layer.groups.back();
}

void addKind(const DrawnScene& scene, const CellLooks& looks, LineKind kind,
             const std::vector<DrawnLine>& lines, Drawing& drawing) {
  std::map<PathKey, std::vector<Line>> byKey;
  std::size_t& counted = drawing.counts.lines[static_cast<std::size_t>(kind)];
  const bool apart = scene.options.groups != DrawingGroups::None && !scene.options.strokes;
  const bool byClass = apart && scene.options.groups == DrawingGroups::Class;
  std::vector<PlaneLine> parts;
  for (const DrawnLine& line : lines) {
    if (line.kind != kind) continue;
    parts.clear();
    scene.plane.addLine(line.from, line.to, parts);
    counted += parts.size();
    for (const PlaneLine& part : parts)
      byKey[keyOf(scene, looks, line)].push_back(scene.paper(part));
  }
  if (byKey.empty() || !(scene.options.widths[static_cast<std::size_t>(kind)] > 0.0)) return;
  Drawing::Group layer;
  layer.id = lineKindName(kind);
  layer.name = lineKindName(kind);
  layer.isLayer = true;
  for (auto& entry : byKey) {
    const PathKey& key = entry.first;
    std::vector<Line> joined = joinedLines(entry.second);
    if (scene.options.strokes) joined = orderedForPen(joined);
    if (joined.empty()) continue;
    count(joined, drawing.counts);
    Drawing::Path path = pathOf(scene, kind, std::move(joined));
    Drawing::Group& group = byClass ? classGroup(layer, looks, key.classNumber) : layer;
    if (apart) {
      path.id = group.id + "-o" + std::to_string(key.object);
      path.title = looks.objectName(key.object);
    }
    group.paths.push_back(std::move(path));
  }
  drawing.layers.push_back(std::move(layer));
}

}  // namespace

void addLines(const DrawnScene& scene, const CellLooks& looks, const std::vector<DrawnLine>& lines,
              Drawing& drawing) {
  for (const LineKind kind : DrawingOrder) addKind(scene, looks, kind, lines, drawing);
  const double width = scene.options.widths[static_cast<std::size_t>(LineKind::Field)];
  if (scene.options.projection == DrawingProjection::Parallel || !(width > 0.0)) return;
  Drawing::Group layer;
  layer.id = lineKindName(LineKind::Field);
  layer.name = layer.id;
  layer.isLayer = true;
  Drawing::Path path = pathOf(scene, LineKind::Field, {scene.paper(scene.plane.border())});
  path.closed = true;
  drawing.counts.lines[static_cast<std::size_t>(LineKind::Field)] = 1;
  layer.paths.push_back(std::move(path));
  drawing.layers.push_back(std::move(layer));
}

}  // namespace Lumivane::Pictures
