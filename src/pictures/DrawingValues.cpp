// Values at places of a plan: squares under its lines or dots over them, and the scale of colours
// that explains them.

#include "pictures/DrawingParts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

namespace Lumivane::Pictures {
namespace {

using Color = Drawing::Color;
using Group = Drawing::Group;
using Kernel::Vec2;

constexpr double BarWidth = 60.0;   // mm
constexpr double BarHeight = 3.0;   // mm
constexpr double ThinLine = 0.13;   // mm
constexpr double SeamWidth = 0.05;  // mm; closes what smooth edges leave between squares
constexpr int Shades = 256;
constexpr double Pi = 3.141592653589793;

// Ten colours of viridis (S. van der Walt and N. Smith, CC0), equally far from each other.
constexpr std::array<std::array<int, 3>, 10> Viridis = {{{68, 1, 84},
                                                         {72, 40, 120},
                                                         {62, 74, 137},
                                                         {49, 104, 142},
                                                         {38, 130, 142},
                                                         {31, 158, 137},
                                                         {53, 183, 121},
                                                         {110, 206, 88},
                                                         {181, 222, 43},
                                                         {253, 231, 37}}};

// From 0 to 255; what is outside the range has the colour of its end.
int shadeOf(double value, const DrawingValues& values) {
  const double part = (value - values.low) / (values.high - values.low);
  return static_cast<int>(std::lround(std::clamp(part, 0.0, 1.0) * (Shades - 1)));
}

Vec2 onPlane(const DrawnScene& scene, const Visibility::Vector& point) {
  const Kernel::Vec3 place = scene.map.placeOf(point);
  return {place.x, place.y};
}

// A level square of the scene as it is seen.
PlaneLine squareAt(const DrawnScene& scene, const Visibility::Vector& at, double side) {
  const double half = 0.5 * side;
  PlaneLine line;
  for (const std::array<double, 2>& corner :
       {std::array<double, 2>{-half, -half}, {half, -half}, {half, half}, {-half, half}})
    line.push_back(onPlane(scene, {at[0] + corner[0], at[1] + corner[1], at[2]}));
  return clippedToBox(line, scene.plane.box());
}

Drawing::Line dotAt(const DrawnScene& scene, const Visibility::Vector& at, double radius) {
  constexpr int Corners = 16;
  const Drawing::Point middle = scene.paper(onPlane(scene, at));
  Drawing::Line line;
  for (int i = 0; i < Corners; ++i)
    line.push_back({middle.x + radius * std::cos(2.0 * Pi * i / Corners),
                    middle.y + radius * std::sin(2.0 * Pi * i / Corners)});
  return line;
}

bool isInBox(const Vec2& p, const PlaneBox& box) {
  return p.x >= box.low.x && p.x <= box.high.x && p.y >= box.low.y && p.y <= box.high.y;
}

// The nearest last, which is drawn over the others.
std::vector<DrawingValues::Value> fromFarToNear(const DrawnScene& scene,
                                                const DrawingValues& values) {
  std::vector<DrawingValues::Value> sorted = values.values;
  const auto depth = [&scene](const DrawingValues::Value& value) {
    return Kernel::dot({value.place[0], value.place[1], value.place[2]}, scene.map.forward);
  };
  std::stable_sort(sorted.begin(), sorted.end(),
                   [&](const DrawingValues::Value& a, const DrawingValues::Value& b) {
                     return depth(a) > depth(b);
                   });
  return sorted;
}

// Whether no two squares overlap, so that those of one shade may be one path: where the outlines of
// a path overlap, it is not filled.
bool areApart(const DrawingValues& values) {
  const double least = values.side * (1.0 - 1e-6);
  std::map<std::array<double, 2>, std::vector<std::array<double, 2>>> buckets;
  for (const DrawingValues::Value& value : values.values) {
    const std::array<double, 2> at = {value.place[0], value.place[1]};
    const std::array<double, 2> own = {std::floor(at[0] / values.side),
                                       std::floor(at[1] / values.side)};
    for (const double x : {own[0] - 1.0, own[0], own[0] + 1.0})
      for (const double y : {own[1] - 1.0, own[1], own[1] + 1.0}) {
        const auto found = buckets.find({x, y});
        if (found == buckets.end()) continue;
        for (const std::array<double, 2>& other : found->second)
          if (std::abs(other[0] - at[0]) < least && std::abs(other[1] - at[1]) < least)
            return false;
      }
    buckets[own].push_back(at);
  }
  return true;
}

Drawing::Path shadePath(int shade, const DrawingValues& values) {
  Drawing::Path path;
  path.closed = true;
  path.fill = scaleColor(static_cast<double>(shade) / (Shades - 1));
  path.color = values.side > 0.0 ? *path.fill : Black;
  path.width = values.side > 0.0 ? SeamWidth : ThinLine;
  return path;
}

Drawing::Path boxPath(double left, double top, double width, double height) {
  Drawing::Path path;
  path.lines.push_back(
      {{left, top}, {left + width, top}, {left + width, top + height}, {left, top + height}});
  path.closed = true;
  return path;
}

std::string numberText(double value) {
  char buffer[32];
  const std::to_chars_result end =
      std::to_chars(buffer, buffer + sizeof buffer, std::round(value * 1e9) / 1e9 + 0.0);
  return {buffer, end.ptr};
}

// Steps of 1, 2 or 5 times a power of ten, so that there are about five.
double tickStep(double range) {
  const double rough = range / 5.0;
  const double power = std::pow(10.0, std::floor(std::log10(rough)));
  for (const double step : {1.0, 2.0, 5.0})
    if (step * power >= rough) return step * power;
  return 10.0 * power;
}

Drawing::Text textAt(Drawing::Point place, double height, const std::string& text) {
  Drawing::Text result;
  result.place = place;
  result.height = height;
  result.text = text;
  return result;
}

void addTicks(const DrawingValues& values, double left, double width, double top, double height,
              Group& layer) {
  const double range = values.high - values.low;
  const double step = tickStep(range);
  for (double tick = std::ceil(values.low / step - 1e-9) * step; tick <= values.high + 1e-9 * range;
       tick += step) {
    const double x = left + width * (tick - values.low) / range;
    Drawing::Path line;
    line.lines.push_back({{x, top + BarHeight}, {x, top + BarHeight + 0.8}});
    line.color = Black;
    line.width = ThinLine;
    layer.paths.push_back(std::move(line));
    layer.texts.push_back(textAt({x, top + BarHeight + 1.1 + height}, height, numberText(tick)));
  }
}

}  // namespace

Color scaleColor(double part) {
  const double at = std::clamp(part, 0.0, 1.0) * static_cast<double>(Viridis.size() - 1);
  const std::size_t first = std::min(static_cast<std::size_t>(at), Viridis.size() - 2);
  const double rest = at - static_cast<double>(first);
  const auto mixed = [&](std::size_t component) {
    const double from = Viridis[first][component];
    return static_cast<int>(std::lround(from + rest * (Viridis[first + 1][component] - from)));
  };
  return {mixed(0), mixed(1), mixed(2), 1.0};
}

void addValues(const DrawnScene& scene, Drawing& drawing) {
  if (!scene.options.values || scene.options.strokes) return;
  const DrawingValues& values = *scene.options.values;
  const bool isTogether = values.side > 0.0 && areApart(values);
  std::map<int, Drawing::Path> shades;
  Group layer;
  layer.id = layer.name = "values";
  layer.isLayer = true;
  for (const DrawingValues::Value& value : fromFarToNear(scene, values)) {
    Drawing::Line line;
    if (values.side > 0.0)
      line = scene.paper(squareAt(scene, value.place, values.side));
    else if (isInBox(onPlane(scene, value.place), scene.plane.box()))
      line = dotAt(scene, value.place, 0.5 * values.dot);
    if (line.size() <= 2) continue;
    const int shade = shadeOf(value.value, values);
    if (isTogether) {
      shades[shade].lines.push_back(std::move(line));
      continue;
    }
    layer.paths.push_back(shadePath(shade, values));
    layer.paths.back().lines.push_back(std::move(line));
  }
  for (auto& shade : shades) {
    Drawing::Path path = shadePath(shade.first, values);
    path.id = "value-" + std::to_string(shade.first);
    path.lines = std::move(shade.second.lines);
    layer.paths.push_back(std::move(path));
  }
  drawing.layers.push_back(std::move(layer));
}

double colorScaleHeight(const DrawingOptions& options) {
  if (!options.values || options.strokes) return 0.0;
  return 1.6 * options.textHeight + BarHeight + 1.1 + 1.6 * options.textHeight;
}

void addColorScale(const DrawnScene& scene, double top, Drawing& drawing) {
  if (!scene.options.values || scene.options.strokes) return;
  const DrawingValues& values = *scene.options.values;
  const double height = scene.options.textHeight;
  const double right = drawing.frame[2];
  const double width = std::min(BarWidth, 0.5 * (right - drawing.frame[0]));
  const double left = right - width;
  const double y = top + 1.6 * height;
  Group layer;
  layer.id = layer.name = "colours";
  layer.isLayer = true;
  constexpr int Boxes = 64;
  for (int i = 0; i < Boxes; ++i) {
    // Each reaches under the next one, so that no seam shows.
    const double reach = i + 1 < Boxes ? 1.5 : 1.0;
    Drawing::Path box = boxPath(left + width * i / Boxes, y, reach * width / Boxes, BarHeight);
    box.fill = scaleColor((i + 0.5) / Boxes);
    layer.paths.push_back(std::move(box));
  }
  Drawing::Path border = boxPath(left, y, width, BarHeight);
  border.color = Black;
  border.width = ThinLine;
  layer.paths.push_back(std::move(border));
  addTicks(values, left, width, y, height, layer);
  layer.texts.push_back(textAt({left + 0.5 * width, y - 0.4 * height}, height, values.title));
  drawing.layers.push_back(std::move(layer));
}

}  // namespace Lumivane::Pictures
