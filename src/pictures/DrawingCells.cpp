// Fills of drawings, and the labels in them.

#include "pictures/ClassColor.h"
#include "pictures/DrawingParts.h"
#include "pictures/LabelPlace.h"

#include <lumivane/session/Text.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <tuple>

namespace Lumivane::Pictures {
namespace {

using Color = Drawing::Color;
using Group = Drawing::Group;
using Kernel::Vec2;
using Kernel::Vec3;
using Visibility::Label;

constexpr Color White{255, 255, 255, 1.0};
constexpr double AmbientLight = 0.35;
constexpr double SeamWidth = 0.4;  // mm

Vec3 unit(Vec3 v) {
  const double length = Kernel::length3(v);
  return length > 0.0 ? Vec3{v.x / length, v.y / length, v.z / length} : v;
}

std::string objectId(int object) { return "o" + std::to_string(object); }

std::string faceId(const Label& label) {
  return objectId(label.object) + "-f" + (label.face > 0 ? std::to_string(label.face) : "none");
}

// The group with an id in a list, which is appended if it is not there.
Group& groupIn(std::vector<Group>& groups, std::map<std::string, std::size_t>& known,
               const std::string& id, const std::string& name) {
  const auto [found, isNew] = known.emplace(id, groups.size());
  if (isNew) {
    groups.emplace_back();
    groups.back().id = id;
    groups.back().name = name;
  }
  return groups[found->second];
}

class FillGroups {
 public:
  FillGroups(const DrawnScene& theScene, const CellLooks& theLooks, Group& theLayer)
      : scene(theScene), looks(theLooks), layer(theLayer) {}

  void add(const DrawnCell& cell) {
    const Label& label = scene.map.cells[cell.number].label;
    Drawing::Path path;
    path.id = "r" + std::to_string(cell.number + 1);
    path.title = looks.objectName(label.object) +
                 (label.face > 0 ? ", face " + std::to_string(label.face) : "") + ", region " +
                 std::to_string(label.region);
    path.closed = true;
    path.fill = looks.fill(label);
    for (const PlaneLine& line : cell.lines) path.lines.push_back(scene.paper(line));
    groupOf(label).paths.push_back(std::move(path));
  }

 private:
  Group& groupOf(const Label& label) {
    const std::string object = objectId(label.object);
    const std::string name = looks.objectName(label.object);
    switch (scene.options.groups) {
      case DrawingGroups::None:
        return layer;
      case DrawingGroups::Object:
        return groupIn(layer.groups, known, object, name);
      case DrawingGroups::Face: {
        Group& outer = groupIn(layer.groups, known, object, name);
        return groupIn(outer.groups, knownIn[object], faceId(label),
                       name + ", face " + std::to_string(label.face));
      }
      case DrawingGroups::Class:
        break;
    }
    const int number = looks.classOf(label);
    const std::string id = "class" + std::to_string(number + 1);
    Group& outer = groupIn(layer.groups, known, id, looks.className(number));
    outer.isLayer = true;
    return groupIn(outer.groups, knownIn[id], id + "-" + object, name);
  }

  const DrawnScene& scene;
  const CellLooks& looks;
  Group& layer;
  std::map<std::string, std::size_t> known;
  std::map<std::string, std::map<std::string, std::size_t>> knownIn;
};

bool isDrawn(const DrawingOptions& options, LineKind kind) {
  return options.widths[static_cast<std::size_t>(kind)] > 0.0;
}

using ColorKey = std::tuple<int, int, int>;

ColorKey keyOf(const Color& color) { return {color.red, color.green, color.blue}; }

// Where a renderer smooths the fills on both sides of an edge without a line, the background must
// not shine through. Under cells of one colour lies what they cover together, in one path, which
// has no seams; under an edge between two colours a line of one of them.
class Seams {
 public:
  Seams(const DrawnScene& theScene, const CellLooks& looks)
      : scene(theScene), isJoined(theScene.map.cells.size(), 0) {
    for (const FlatMap::Cell& cell : scene.map.cells) colors.push_back(looks.fill(cell.label));
  }

  void add(const DrawnLine& line) {
    if (!isOpen(line)) return;
    const auto cell = static_cast<std::size_t>(line.cell);
    const auto other = static_cast<std::size_t>(line.otherCell);
    if (keyOf(colors[cell]) == keyOf(colors[other])) {
      isJoined[cell] = isJoined[other] = 1;
      return;
    }
    Drawing::Path& path = lines[keyOf(colors[cell])];
    path.color = colors[cell];
    path.width = SeamWidth;
    std::vector<PlaneLine> parts;
    scene.plane.addLine(line.from, line.to, parts);
    path.roundEnds = false;
    for (const PlaneLine& part : parts) addShortened(scene.paper(part), path);
  }

  void addTo(Group& layer, const std::vector<DrawnCell>& cells) {
    for (const DrawnCell& cell : cells) {
      if (isJoined[cell.number] == 0) continue;
      Drawing::Path& path = areas[keyOf(colors[cell.number])];
      path.closed = true;
      path.fill = colors[cell.number];
      for (const PlaneLine& line : cell.lines) path.lines.push_back(scene.paper(line));
    }
    for (auto& entry : areas) layer.paths.push_back(std::move(entry.second));
    for (auto& entry : lines) layer.paths.push_back(std::move(entry.second));
  }

 private:
  bool isOpen(const DrawnLine& line) const {
    if (line.otherCell < 0 || line.cell < 0 || isDrawn(scene.options, line.kind)) return false;
    return isSeen(line.cell) && isSeen(line.otherCell);
  }
  // So that nothing of it stands out where cells are narrow at its ends.
  static void addShortened(Drawing::Line line, Drawing::Path& path) {
    for (int end = 0; end < 2; ++end) {
      const Drawing::Point a = line[0];
      const Drawing::Point b = line[1];
      const double length = std::hypot(b.x - a.x, b.y - a.y);
      if (length <= 2.0 * SeamWidth) return;
      const double part = SeamWidth / length;
      line[0] = {a.x + part * (b.x - a.x), a.y + part * (b.y - a.y)};
      std::reverse(line.begin(), line.end());
    }
    path.lines.push_back(std::move(line));
  }
  bool isSeen(int cell) const {
    return scene.map.cells[static_cast<std::size_t>(cell)].label.object != 0;
  }

  const DrawnScene& scene;
  std::vector<Color> colors;   // of cells
  std::vector<char> isJoined;  // to a cell of its colour
  std::map<ColorKey, Drawing::Path> areas;
  std::map<ColorKey, Drawing::Path> lines;
};

// ---- labels

struct Box {
  double left, top, right, bottom;
  bool meets(const Box& other) const {
    return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
  }
};

class LabelPlacer {
 public:
  LabelPlacer(const Drawing& theDrawing, double theHeight)
      : drawing(theDrawing), height(theHeight) {}

  // \param middle   that is farthest from the border of the cell
  // \param outline  of the cell
  void add(const std::string& text, Drawing::Point middle,
           const std::vector<Drawing::Line>& outline, Group& layer) {
    const double width = textWidth(text, height);
    Drawing::Text label;
    label.text = text;
    label.height = height;
    label.halo = HaloPart * height;
    Box box = boxAround(middle, width);
    if (!isWithin(box, outline) || isTaken(box)) {
      const Drawing::Point place = freePlace(middle, width);
      box = boxAround(place, width);
      addLeader(middle, box, layer);
      middle = place;
    }
    taken.push_back(box);
    label.place = {middle.x, middle.y + 0.35 * height};
    layer.texts.push_back(label);
  }

 private:
  Box boxAround(Drawing::Point p, double width) const {
    return {p.x - 0.5 * width, p.y - 0.6 * height, p.x + 0.5 * width, p.y + 0.6 * height};
  }
  // Of a box whose middle lies in it.
  static bool isWithin(const Box& box, const std::vector<Drawing::Line>& outline) {
    for (const Drawing::Line& line : outline)
      for (std::size_t i = 0; i < line.size(); ++i)
        if (meets(box, line[i], line[i + 1 == line.size() ? 0 : i + 1])) return false;
    return true;
  }
  // Whether a straight piece has a point in a box.
  static bool meets(const Box& box, Drawing::Point a, Drawing::Point b) {
    double low = 0.0;
    double high = 1.0;
    const auto cut = [&](double atA, double atB) {  // to where it is above 0
      if (atA < 0.0 && atB < 0.0) low = 2.0;
      if (atA < 0.0 && atB >= 0.0) low = std::max(low, atA / (atA - atB));
      if (atA >= 0.0 && atB < 0.0) high = std::min(high, atA / (atA - atB));
    };
    cut(a.x - box.left, b.x - box.left);
    cut(box.right - a.x, box.right - b.x);
    cut(a.y - box.top, b.y - box.top);
    cut(box.bottom - a.y, box.bottom - b.y);
    return low <= high;
  }
  bool isTaken(const Box& box) const {
    const auto& frame = drawing.frame;
    if (box.left < frame[0] || box.top < frame[1] || box.right > frame[2] || box.bottom > frame[3])
      return true;
    return std::any_of(taken.begin(), taken.end(), [&](const Box& b) { return b.meets(box); });
  }
  // The nearest one in circles around the middle, else the first.
  Drawing::Point freePlace(Drawing::Point middle, double width) const {
    for (double away = 2.0 * height; away < 40.0 * height; away += height)
      for (int i = 0; i < 16; ++i) {
        const double angle = 0.39269908169872414 * (i % 2 == 0 ? i / 2 : -(i / 2) - 1) - 0.785;
        const Drawing::Point p = {middle.x + (away + 0.4 * width) * std::cos(angle),
                                  middle.y + away * std::sin(angle)};
        if (!isTaken(boxAround(p, width))) return p;
      }
    return {middle.x, middle.y - 2.0 * height};
  }
  static void addLeader(Drawing::Point from, const Box& box, Group& layer) {
    Drawing::Path path;
    path.color = Black;
    path.width = 0.13;
    const double x = std::clamp(from.x, box.left, box.right);
    const double y = std::clamp(from.y, box.top, box.bottom);
    path.lines.push_back({from, {x, y}});
    layer.paths.push_back(std::move(path));
  }

  const Drawing& drawing;
  double height;
  std::vector<Box> taken;
};

double areaOnPage(const DrawnCell& cell, const Paper& paper) {
  return areaOf(cell.lines) * paper.scale * paper.scale;
}

}  // namespace

CellLooks::CellLooks(const DrawnScene& drawnScene) : scene(drawnScene) {
  hasClasses = !scene.map.names->classNames.empty();
  for (const FlatMap::Cell& cell : scene.map.cells)
    if (cell.label.object != 0)
      brushes.emplace(scene.colors.brushNumber(cell.label), scene.colors.brush(cell.label));
}

Color CellLooks::fill(const Label& label) const {
  switch (scene.options.fill) {
    case DrawingFill::None:
    case DrawingFill::White:
      return White;
    case DrawingFill::Brush:
      return scene.colors.brush(label);
    case DrawingFill::Class:
      return classColor(classOf(label));
    case DrawingFill::Object:
      return MapColors().fill(label);
    case DrawingFill::Shading:
      break;
  }
  return shaded(label);
}

Color CellLooks::shaded(const Label& label) const {
  const int region = regionOf(*scene.map.names, label);
  if (region < 0) return White;
  const auto& light = scene.options.light;
  const RegionPlanes::Plane& plane = scene.planes[region];
  const Vec3 sight = scene.map.isParallel ? scene.map.forward : plane.point - scene.map.eye;
  const Vec3 normal = Kernel::dot(plane.normal, sight) > 0.0 ? -plane.normal : plane.normal;
  const double cosine = Kernel::dot(unit(normal), unit({light[0], light[1], light[2]}));
  const double bright = AmbientLight + (1.0 - AmbientLight) * (0.5 + 0.5 * cosine);
  const Color brush = scene.colors.brush(label);
  const auto lit = [bright](int channel) {
    return static_cast<int>(std::lround(bright * channel));
  };
  return {lit(brush.red), lit(brush.green), lit(brush.blue), 1.0};
}

int CellLooks::classOf(const Label& label) const {
  if (!hasClasses) return scene.colors.brushNumber(label) - 1;
  const int region = regionOf(*scene.map.names, label);
  return region < 0 || scene.map.names->classes.empty()
             ? -1
             : scene.map.names->classes[static_cast<std::size_t>(region)];
}

std::string CellLooks::className(int number) const {
  if (number < 0) return "no class";
  if (!hasClasses) return "brush " + std::to_string(number + 1);
  return Session::idText(scene.map.names->classNames[static_cast<std::size_t>(number)]);
}

Color CellLooks::classColor(int number) const {
  const auto brush = brushes.find(number + 1);
  if (!hasClasses)
    return brush != brushes.end() ? brush->second : MapColors().fill({number + 1, 0, 1});
  return Pictures::classColor(
      number < 0 ? "" : scene.map.names->classNames[static_cast<std::size_t>(number)]);
}

std::string CellLooks::objectName(int object) const {
  const auto i = static_cast<std::size_t>(object) - 1;
  const auto& ids = scene.map.names->objectIds;
  return i < ids.size() ? Session::idText(ids[i]) : objectId(object);
}

std::vector<DrawnCell> drawnCells(const FlatMap& map, const DrawingPlane& plane) {
  std::vector<DrawnCell> cells;
  std::vector<std::vector<Vec3>> rings;
  for (std::size_t i = 0; i < map.cells.size(); ++i) {
    const FlatMap::Cell& cell = map.cells[i];
    if (cell.label.object == 0) continue;
    rings.clear();
    for (std::size_t r = cell.firstRing; r < cell.firstRing + cell.ringCount; ++r) {
      rings.emplace_back();
      for (std::size_t k = map.ringOffsets[r]; k < map.ringOffsets[r + 1]; ++k)
        rings.back().push_back(map.at(map.ringVertices[k]));
    }
    DrawnCell drawn;
    drawn.number = i;
    plane.addCell(rings, drawn.lines);
    if (!drawn.lines.empty()) cells.push_back(std::move(drawn));
  }
  return cells;
}

void addFills(const DrawnScene& scene, const CellLooks& looks, const std::vector<DrawnCell>& cells,
              const std::vector<DrawnLine>& lines, Drawing& drawing) {
  if (scene.options.fill == DrawingFill::None || scene.options.strokes) return;
  Group seams;
  seams.id = "seams";
  seams.name = "under seams";
  seams.isLayer = true;
  Seams under(scene, looks);
  for (const DrawnLine& line : lines) under.add(line);
  under.addTo(seams, cells);
  if (!seams.paths.empty()) drawing.layers.push_back(std::move(seams));
  Group layer;
  layer.id = "fills";
  layer.name = "fills";
  layer.isLayer = true;
  FillGroups groups(scene, looks, layer);
  for (const DrawnCell& cell : cells) groups.add(cell);
  drawing.layers.push_back(std::move(layer));
}

// One label for each object, in the largest of its cells.
void addLabels(const DrawnScene& scene, const CellLooks& looks, const std::vector<DrawnCell>& cells,
               Drawing& drawing) {
  if (scene.options.labels == DrawingLabels::None || scene.options.strokes) return;
  std::map<int, std::pair<double, const DrawnCell*>> largest;
  for (const DrawnCell& cell : cells) {
    const double area = areaOnPage(cell, scene.paper);
    auto& best = largest[scene.map.cells[cell.number].label.object];
    if (area > best.first) best = {area, &cell};
  }
  Group layer;
  layer.id = "labels";
  layer.name = "labels";
  layer.isLayer = true;
  LabelPlacer placer(drawing, scene.options.textHeight);
  for (const auto& [object, found] : largest) {
    if (found.second == nullptr || found.first < 0.25) continue;
    const InnerPlace pole = poleOfInaccessibility(found.second->lines, 0.2 / scene.paper.scale);
    const Label& label = scene.map.cells[found.second->number].label;
    const std::string text = scene.options.labels == DrawingLabels::Id
                                 ? looks.objectName(object)
                                 : looks.className(looks.classOf(label));
    std::vector<Drawing::Line> outline;
    for (const PlaneLine& line : found.second->lines) outline.push_back(scene.paper(line));
    placer.add(text, scene.paper(pole.place), outline, layer);
  }
  drawing.layers.push_back(std::move(layer));
}

}  // namespace Lumivane::Pictures
