// What explains a drawing: sky, rings and compass of fisheyes, scale bar, north arrow and legend.

#include "pictures/DrawingParts.h"

#include <algorithm>
#include <cmath>

namespace Lumivane::Pictures {
namespace {

using Group = Drawing::Group;
using Kernel::Vec2;
using Kernel::Vec3;
using Point = Drawing::Point;

constexpr double Degree = 0.017453292519943295;
constexpr double ThinLine = 0.13;  // mm
constexpr double BarHeight = 1.4;  // mm
constexpr double RowHeight = 1.6;  // of the text's height

bool isFisheye(DrawingProjection projection) {
  return projection == DrawingProjection::Orthographic ||
         projection == DrawingProjection::Equidistant ||
         projection == DrawingProjection::Equisolid ||
         projection == DrawingProjection::Stereographic;
}

Group layerOf(const char* name) {
  Group layer;
  layer.id = name;
  layer.name = name;
  layer.isLayer = true;
  return layer;
}

Drawing::Text textAt(Point place, double height, const std::string& text, double anchor = 0.5) {
  Drawing::Text result;
  result.place = place;
  result.height = height;
  result.text = text;
  result.anchor = anchor;
  return result;
}

Drawing::Path thinLine(Drawing::Line line, bool closed = false) {
  Drawing::Path path;
  path.lines.push_back(std::move(line));
  path.closed = closed;
  path.color = Grey;
  path.width = ThinLine;
  return path;
}

Drawing::Line circle(Point middle, double radius) {
  Drawing::Line line;
  for (int i = 0; i < 360; ++i)
    line.push_back(
        {middle.x + radius * std::cos(i * Degree), middle.y + radius * std::sin(i * Degree)});
  return line;
}

void addRings(const DrawnScene& scene, Group& layer) {
  const Point middle = scene.paper(Vec2{0.0, 0.0});
  const double height = 0.8 * scene.options.textHeight;
  for (double angle = scene.options.rings; angle < 90.0 - 1e-9; angle += scene.options.rings) {
    const double radius = discRadius(scene.options.projection, angle * Degree) * scene.paper.scale;
    layer.paths.push_back(thinLine(circle(middle, radius), true));
    std::string text = std::to_string(angle);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    layer.texts.push_back(
        textAt({middle.x + 0.4, middle.y - radius - 0.5}, height, text + "\xC2\xB0", 0.0));
    layer.texts.back().halo = HaloPart * height;
  }
}

// North is y in the scene, east x.
void addCompass(const DrawnScene& scene, Group& layer) {
  struct Mark {
    const char* name;
    Vec3 direction;
  };
  const FlatMap& map = scene.map;
  const double height = scene.options.textHeight * 1.2;
  for (const Mark& mark :
       {Mark{"N", {0, 1, 0}}, Mark{"E", {1, 0, 0}}, Mark{"S", {0, -1, 0}}, Mark{"W", {-1, 0, 0}}}) {
    const Vec3 d = {Kernel::dot(mark.direction, map.right), Kernel::dot(mark.direction, map.up),
                    Kernel::dot(mark.direction, map.forward)};
    if (d.z < -1e-9) continue;
    const double across = std::hypot(d.x, d.y);
    const double radius =
        across > 0.0 ? discRadius(scene.options.projection, std::atan2(across, d.z)) : 0.0;
    const Vec2 way = across > 0.0 ? Vec2{d.x / across, d.y / across} : Vec2{0.0, 0.0};
    const Point rim = scene.paper(radius * way);
    const double outwards = radius > 0.95 ? 1.0 : 0.0;
    const auto at = [&](double mm) { return Point{rim.x + mm * way.x, rim.y - mm * way.y}; };
    layer.paths.push_back(thinLine({at(-1.2), at(1.2 * outwards)}));
    const Point place = at(outwards > 0.0 ? 1.6 + 0.55 * height : 0.0);
    layer.texts.push_back(
        textAt({place.x, place.y + (outwards > 0.0 ? 0.35 : -0.4) * height}, height, mark.name));
  }
}

void addArrow(const DrawnScene& scene, const Drawing& drawing, Group& layer) {
  const Vec2 way = {scene.map.right.y, scene.map.up.y};  // of the scene's y in the picture
  const double length = Kernel::length2(way);
  if (length < 0.05) return;
  const Vec2 n = {way.x / length, -way.y / length};
  const double size = 9.0;
  const Point middle = {drawing.frame[2] - 0.7 * size, drawing.frame[1] + 0.9 * size};
  const auto at = [&](double along, double side) {
    return Point{middle.x + size * (along * n.x - side * n.y),
                 middle.y + size * (along * n.y + side * n.x)};
  };
  Drawing::Path arrow;
  arrow.lines.push_back({at(0.5, 0.0), at(-0.5, 0.3), at(-0.25, 0.0), at(-0.5, -0.3)});
  arrow.closed = true;
  arrow.fill = Black;
  layer.paths.push_back(std::move(arrow));
  const Point tip = at(0.75, 0.0);
  layer.texts.push_back(textAt({tip.x, tip.y + 0.35 * 3.0}, 3.0, "N"));
}

// 1, 2 or 5 times a power of ten, no more than a length.
double roundLength(double length) {
  const double power = std::pow(10.0, std::floor(std::log10(length)));
  for (const double step : {5.0, 2.0})
    if (step * power <= length) return step * power;
  return power;
}

std::string numberText(double value) {
  std::string text = std::to_string(value);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

void addScaleBar(const DrawnScene& scene, const Drawing& drawing, double top, Group& layer) {
  const double height = scene.options.textHeight;
  const double length = roundLength(45.0 / scene.paper.scale);
  const double left = drawing.frame[0];
  const double step = 0.25 * length * scene.paper.scale;
  const double y = top + 1.6 * height;
  for (int i = 0; i < 4; ++i) {
    Drawing::Path box;
    const double x = left + step * i;
    box.lines.push_back({{x, y}, {x + step, y}, {x + step, y + BarHeight}, {x, y + BarHeight}});
    box.closed = true;
    box.color = Black;
    box.width = ThinLine;
    if (i % 2 == 0) box.fill = Black;
    layer.paths.push_back(std::move(box));
  }
  layer.texts.push_back(textAt({left, y - 0.4 * height}, height, "0", 0.0));
  layer.texts.push_back(textAt({left + 4.0 * step, y - 0.4 * height}, height,
                               numberText(length) + (scene.options.scale ? " m" : ""),
                               0.5));  // a scale is of metres
  if (scene.options.scale)
    layer.texts.push_back(textAt({left + 4.0 * step + 3.0 * height, y + BarHeight}, height,
                                 "1:" + numberText(1000.0 / scene.paper.scale), 0.0));
}

void addLegend(const DrawnScene& scene, const CellLooks& looks, const std::vector<int>& classes,
               double top, Drawing& drawing) {
  Group layer = layerOf("legend");
  const double height = scene.options.textHeight;
  const double left = 0.5 * (drawing.frame[0] + drawing.frame[2]);
  double y = top + height;
  for (const int number : classes) {
    Drawing::Path box;
    box.lines.push_back({{left, y},
                         {left + 2.0 * height, y},
                         {left + 2.0 * height, y + height},
                         {left, y + height}});
    box.closed = true;
    box.fill = looks.classColor(number);
    box.color = Black;
    box.width = ThinLine;
    layer.paths.push_back(std::move(box));
    layer.texts.push_back(
        textAt({left + 2.6 * height, y + 0.85 * height}, height, looks.className(number), 0.0));
    y += RowHeight * height;
  }
  drawing.layers.push_back(std::move(layer));
}

}  // namespace

void addSky(const DrawnScene& scene, Drawing& drawing) {
  if (!scene.options.sky || scene.options.strokes) return;
  Group layer = layerOf("sky");
  Drawing::Path path;
  path.lines.push_back(scene.paper(scene.plane.border()));
  path.closed = true;
  path.fill = scene.options.sky;
  layer.paths.push_back(std::move(path));
  drawing.layers.push_back(std::move(layer));
}

void addMarks(const DrawnScene& scene, Drawing& drawing) {
  if (scene.options.strokes) return;
  Group layer = layerOf("marks");
  if (isFisheye(scene.options.projection)) {
    if (scene.options.rings > 0.0) addRings(scene, layer);
    if (scene.options.north) addCompass(scene, layer);
  } else if (scene.options.projection == DrawingProjection::Parallel && scene.options.north) {
    addArrow(scene, drawing, layer);
  }
  if (!layer.paths.empty()) drawing.layers.push_back(std::move(layer));
}

double footHeight(const DrawingOptions& options, std::size_t legendRows) {
  const double height = options.textHeight;
  const bool hasBar = options.scaleBar && options.projection == DrawingProjection::Parallel;
  const double bar = hasBar ? 1.6 * height + BarHeight + height : 0.0;
  const double rows = options.legend && legendRows > 0
                          ? height * (1.0 + RowHeight * static_cast<double>(legendRows))
                          : 0.0;
  return options.strokes ? 0.0 : std::max({bar, rows, colorScaleHeight(options)});
}

void addFoot(const DrawnScene& scene, const CellLooks& looks, const std::vector<int>& classes,
             double top, Drawing& drawing) {
  if (scene.options.strokes) return;
  if (scene.options.scaleBar && scene.options.projection == DrawingProjection::Parallel) {
    Group layer = layerOf("scale");
    addScaleBar(scene, drawing, top, layer);
    drawing.layers.push_back(std::move(layer));
  }
  addColorScale(scene, top, drawing);
  if (scene.options.legend) addLegend(scene, looks, classes, top, drawing);
}

}  // namespace Lumivane::Pictures
