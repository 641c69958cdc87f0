// A drawing, put together: the map of what is seen, its lines and the hidden ones, a plane, a page.

#include "pictures/Colors.h"
#include "pictures/DrawingParts.h"

#include <lumivane/base/Brush.h>
#include <lumivane/base/Brushes.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <set>
#include <stdexcept>

namespace Lumivane::Pictures {

using Color = Drawing::Color;
using Kernel::Vec2;
using Kernel::Vec3;

// ---- colours

struct DrawingColors::Data {
  std::vector<Color> brushes;
  std::vector<std::vector<int>> numbers;  // by object and region
};

DrawingColors::DrawingColors() = default;
DrawingColors::~DrawingColors() = default;
DrawingColors::DrawingColors(const DrawingColors&) = default;
DrawingColors& DrawingColors::operator=(const DrawingColors&) = default;

DrawingColors::DrawingColors(const Scene::Scene3D& scene) {
  auto made = std::make_shared<Data>();
  const auto* const brushes =
      scene.getBrushes() == nullptr ? nullptr : scene.getBrushes()->getBrushes();
  if (brushes != nullptr)
    for (const Base::Brush* brush : *brushes) {
      made->brushes.push_back(brush == nullptr ? Black : toColor(*brush));
      made->brushes.back().opacity = 1.0;
    }
  if (scene.getObjects() != nullptr)
    for (const Scene::Object* object : *scene.getObjects()->getObjects()) {
      made->numbers.emplace_back();
      if (object == nullptr || object->getRegions() == nullptr) continue;
      for (const Geometry::Region* region : *object->getRegions()->getRegions())
        made->numbers.back().push_back(region == nullptr ? 0 : region->getBrushNumber());
    }
  data = std::move(made);
}

int DrawingColors::brushNumber(const Visibility::Label& label) const {
  const auto object = static_cast<std::size_t>(label.object) - 1;
  const auto region = static_cast<std::size_t>(label.region) - 1;
  if (data == nullptr || object >= data->numbers.size()) return 0;
  return region < data->numbers[object].size() ? data->numbers[object][region] : 0;
}

Color DrawingColors::brush(const Visibility::Label& label) const {
  const auto number = static_cast<std::size_t>(brushNumber(label)) - 1;
  if (data == nullptr || number >= data->brushes.size()) return {224, 224, 224, 1.0};
  return data->brushes[number];
}

const std::vector<DrawingProjectionName>& drawingProjections() {
  static const std::vector<DrawingProjectionName> names = {
      {DrawingProjection::Perspective, "perspective"},
      {DrawingProjection::Parallel, "parallel"},
      {DrawingProjection::Orthographic, "orthographic"},
      {DrawingProjection::Equidistant, "equidistant"},
      {DrawingProjection::Equisolid, "equisolid"},
      {DrawingProjection::Stereographic, "stereographic"},
      {DrawingProjection::Equirectangular, "equirectangular"},
      {DrawingProjection::Cylindrical, "cylindrical"},
  };
  return names;
}

namespace {

constexpr double Degree = 0.017453292519943295;
// A content smaller than this, in mm, is none.
constexpr double LeastContent = 1.0;
constexpr double LargestPage = 20000.0;  // mm

void require(bool holds, const char* text) {
  if (!holds) throw std::invalid_argument(text);
}

void checkValues(const DrawingOptions& options) {
  const DrawingValues& values = *options.values;
  require(options.projection == DrawingProjection::Parallel,
          "values are drawn in parallel projections alone");
  require(values.side >= 0.0 && std::isfinite(values.side),
          "the side of squares is to be 0 or more");
  require(values.dot > 0.0 && values.dot <= 1000.0,
          "the width of dots is to be above 0 to 1000 mm");
  require(std::isfinite(values.low) && std::isfinite(values.high) && values.low < values.high,
          "the range of the values is to be finite, its end above its beginning");
  for (const DrawingValues::Value& value : values.values)
    require(!std::isnan(value.value), "values are to be numbers");
}

}  // namespace

void checkDrawing(const DrawingOptions& options) {
  const double fov = options.fieldOfView;
  require(fov > 0.0 && fov < 180.0, "the field of view is to be above 0 and below 180 degrees");
  require(options.aspect > 0.0 && std::isfinite(options.aspect),
          "the aspect, width by height, is to be above 0");
  require(std::isfinite(options.shift[0]) && std::isfinite(options.shift[1]),
          "the shift is to be finite");
  require(!options.scale || (*options.scale > 0.0 && std::isfinite(*options.scale)),
          "the scale is to be above 0");
  require(options.margin >= 0.0 && std::isfinite(options.margin), "the margin is to be 0 or more");
  require(options.creaseAngle >= 0.0 && options.creaseAngle <= 180.0,
          "the crease angle is to be 0 to 180 degrees");
  require(options.textHeight > 0.0 && options.textHeight <= 1000.0,
          "the height of texts is to be above 0");
  require(options.flatness > 0.0 && std::isfinite(options.flatness),
          "the flatness is to be above 0");
  require(options.contentWidth >= LeastContent && options.contentWidth <= LargestPage,
          "the width of the content is to be 1 to 20000 mm");
  require(options.rings >= 0.0 && options.rings <= 90.0 &&
              (options.rings == 0.0 || options.rings >= 1.0),
          "the angle between rings is to be 0, or 1 to 90 degrees");
  require(!options.exactArcs || options.projection == DrawingProjection::Orthographic ||
              options.projection == DrawingProjection::Stereographic,
          "exact arcs are of orthographic and stereographic fisheyes");
  if (options.values) checkValues(options);
  for (const double width : options.widths)
    require(width >= 0.0 && width <= 100.0, "widths of lines are to be 0 to 100 mm");
  if (!options.page) return;
  for (const double side : *options.page)
    require(side > 0.0 && side <= LargestPage, "sides of the page are to be above 0 to 20000 mm");
}

Visibility::LookOptions drawnLook(const DrawingOptions& options, Visibility::Field field) {
  Visibility::LookOptions how;
  how.field = field;
  how.forward = options.forward;
  how.up = options.up;
  how.twoSided = options.twoSided;
  how.threads = options.threads;
  how.cancelled = options.cancelled;
  how.edgeSources = true;
  return how;
}

namespace {

FlatMap mapOf(const Visibility::SceneIndex& index, const DrawingOptions& options) {
  if (options.projection == DrawingProjection::Parallel) {
    Visibility::ParallelOptions how;
    how.direction = options.forward;
    how.up = options.up;
    how.twoSided = options.twoSided;
    how.threads = options.threads;
    how.cancelled = options.cancelled;
    return flatMap(index.lookAlong(how));
  }
  const bool isWhole =
      options.projection == DrawingProjection::Cylindrical ||
      (options.projection == DrawingProjection::Equirectangular && options.isWhole);
  const auto field = isWhole ? Visibility::Field::Sphere : Visibility::Field::Hemisphere;
  return flatMap(index.look(options.eye, drawnLook(options, field)));
}

PlaneBox perspectiveBox(const DrawingOptions& options) {
  const double half = std::tan(0.5 * options.fieldOfView * Degree);
  const double high = half / options.aspect;
  const Vec2 middle = {2.0 * half * options.shift[0], 2.0 * high * options.shift[1]};
  return {middle - Vec2{half, high}, middle + Vec2{half, high}};
}

}  // namespace

PlaneBox boxOf(const std::vector<DrawnLine>& lines) {
  PlaneBox box{{1e300, 1e300}, {-1e300, -1e300}};
  for (const DrawnLine& line : lines)
    for (const Vec3& p : {line.from, line.to}) {
      box.low = {std::min(box.low.x, p.x), std::min(box.low.y, p.y)};
      box.high = {std::max(box.high.x, p.x), std::max(box.high.y, p.y)};
    }
  return box;
}

namespace {

std::unique_ptr<DrawingPlane> planeOf(const DrawingOptions& options, const PlaneBox& content) {
  switch (options.projection) {
    case DrawingProjection::Orthographic:
    case DrawingProjection::Equidistant:
    case DrawingProjection::Equisolid:
    case DrawingProjection::Stereographic:
      return discPlane(options.projection);
    case DrawingProjection::Equirectangular:
      return bandPlane(options.isWhole);
    case DrawingProjection::Cylindrical:
      return cylinderPlane(std::tan(0.5 * options.fieldOfView * Degree));
    case DrawingProjection::Perspective:
      return straightPlane(perspectiveBox(options));
    case DrawingProjection::Parallel:
      break;
  }
  return straightPlane(content);
}

// ---- page

struct Room {
  double width;
  double height;
};

// What margins and foot leave of a page that is asked for.
Room roomOn(const DrawingOptions& options, double foot) {
  const auto& page = *options.page;
  const Room room = {page[0] - 2.0 * options.margin, page[1] - 2.0 * options.margin - foot};
  if (room.width < LeastContent || room.height < LeastContent)
    throw std::runtime_error(
        "the page has no room within its margins: make it larger than twice "
        "the margin, or the margin smaller");
  return room;
}

double scaleFor(const DrawingOptions& options, const PlaneBox& box, double foot) {
  if (options.projection == DrawingProjection::Parallel && options.scale) return *options.scale;
  const double width = std::max(box.width(), 1e-300);
  const double height = std::max(box.height(), 1e-300);
  if (!options.page) return options.contentWidth / std::max(width, height / 1.5);
  const Room room = roomOn(options, foot);
  return std::min(room.width / width, room.height / height);
}

// Of what is seen at a scale that the page has no room for, the middle.
PlaneBox cutToPage(const DrawingOptions& options, PlaneBox box, double scale, double foot) {
  if (!options.page) return box;
  const Room room = roomOn(options, foot);
  const Vec2 middle = 0.5 * (box.low + box.high);
  const double x = std::min(0.5 * box.width(), 0.5 * room.width / scale);
  const double y = std::min(0.5 * box.height(), 0.5 * room.height / scale);
  return {middle - Vec2{x, y}, middle + Vec2{x, y}};
}

// Sets page and frame, and says where the plane lies on it.
Paper placeOn(const DrawingOptions& options, const PlaneBox& box, double scale, double foot,
              Drawing& drawing) {
  const double width = scale * box.width();
  const double height = scale * box.height();
  const double margin = options.margin;
  double left = margin;
  double top = margin;
  drawing.width = width + 2.0 * margin;
  drawing.height = height + 2.0 * margin + foot;
  if (options.page && !options.crop) {
    const Room room = roomOn(options, foot);
    drawing.width = (*options.page)[0];
    drawing.height = (*options.page)[1];
    left += 0.5 * (room.width - width);
    top += 0.5 * (room.height - height);
  }
  if (!(drawing.width <= LargestPage && drawing.height <= LargestPage))
    throw std::runtime_error("at this scale the drawing is larger than 20 m: take a smaller scale");
  drawing.frame = {left, top, left + width, top + height};
  return {scale, left - scale * box.low.x, top + scale * box.high.y};
}

PlaneBox contentOf(const DrawingPlane& plane, const std::vector<DrawnCell>& cells) {
  PlaneBox box{{1e300, 1e300}, {-1e300, -1e300}};
  for (const DrawnCell& cell : cells)
    for (const PlaneLine& line : cell.lines)
      for (const Vec2& p : line) {
        box.low = {std::min(box.low.x, p.x), std::min(box.low.y, p.y)};
        box.high = {std::max(box.high.x, p.x), std::max(box.high.y, p.y)};
      }
  const PlaneBox& all = plane.box();
  return {{std::max(box.low.x, all.low.x), std::max(box.low.y, all.low.y)},
          {std::min(box.high.x, all.high.x), std::min(box.high.y, all.high.y)}};
}

std::vector<int> classesOf(const DrawnScene& scene, const CellLooks& looks) {
  std::set<int> classes;
  if (scene.options.legend)
    for (const FlatMap::Cell& cell : scene.map.cells)
      if (cell.label.object != 0) classes.insert(looks.classOf(cell.label));
  return {classes.begin(), classes.end()};
}

// What is not an arc even with exact ones, as it is nearly straight, is off it by no more than a
// file's numbers can say.
double flatness(const DrawingOptions& options) {
  constexpr double OfExactArcs = 2e-4;  // mm
  return options.exactArcs ? std::min(OfExactArcs, options.flatness) : options.flatness;
}

// How a drawing is made of a map and its lines.
Drawing draw(const FlatMap& map, const RegionPlanes& planes, const std::vector<DrawnLine>& lines,
             const DrawingColors& colors, const DrawingOptions& options) {
  Drawing drawing;
  drawing.title = options.title;
  drawing.background = options.background;
  drawing.counts.cells = map.cells.size();
  PlaneBox content = boxOf(lines);
  if (lines.empty() || !(content.width() > 0.0 || content.height() > 0.0))
    throw std::runtime_error("nothing of the scene is in the picture: look from elsewhere");
  std::unique_ptr<DrawingPlane> plane = planeOf(options, content);
  DrawnScene scene{options, colors, map, planes, *plane, {}};
  const CellLooks names(scene);
  const std::vector<int> classes = classesOf(scene, names);
  const double foot = footHeight(options, classes.size());
  PlaneBox box = plane->box();
  double scale = scaleFor(options, box, foot);
  if (options.projection == DrawingProjection::Parallel) {
    box = cutToPage(options, box, scale, foot);
    plane = planeOf(options, box);
  }
  plane->setTolerance(flatness(options) / scale);
  std::vector<DrawnCell> cells = drawnCells(map, *plane);
  if (cells.empty())
    throw std::runtime_error("nothing of the scene is in the picture: look from elsewhere");
  if (options.crop && options.projection != DrawingProjection::Parallel) {
    box = contentOf(*plane, cells);
    scale = scaleFor(options, box, foot);
    plane->setTolerance(flatness(options) / scale);
  }
  const DrawnScene placed{options, colors, map,
                          planes,  *plane, placeOn(options, box, scale, foot, drawing)};
  const CellLooks looks(placed);
  addSky(placed, drawing);
  addFills(placed, looks, cells, lines, drawing);
  const bool isUnderLines = options.values && options.values->side > 0.0;
  if (isUnderLines) addValues(placed, drawing);
  addLines(placed, looks, lines, drawing);
  if (options.exactArcs) addArcs(placed, lines, drawing);
  if (!isUnderLines) addValues(placed, drawing);
  addMarks(placed, drawing);
  addLabels(placed, looks, cells, drawing);
  addFoot(placed, looks, classes, drawing.frame[3], drawing);
  return drawing;
}

}  // namespace

Drawing drawScene(const Visibility::SceneIndex& index, const DrawingColors& colors,
                  const DrawingOptions& options) {
  checkDrawing(options);
  const FlatMap map = mapOf(index, options);
  const std::vector<Visibility::SceneEdge> edges = index.edges();
  const RegionPlanes planes(edges, map.names->regions.size());
  std::vector<DrawnLine> lines = visibleLines(map, edges, planes, options.creaseAngle);
  if (options.hidden) {
    const std::vector<DrawnLine> hidden =
        hiddenLines(map, edges, index.crossings(options.threads, options.cancelled), lines,
                    options.creaseAngle);
    lines.insert(lines.end(), hidden.begin(), hidden.end());
  }
  return draw(map, planes, lines, colors, options);
}

}  // namespace Lumivane::Pictures
