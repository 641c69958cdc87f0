// The axes as paths, like those of the windows to the pixel. Letters are drawn by hand, so that no
// picture needs a font.

#include "pictures/AxesPaths.h"

#include "kernel/Planar.h"
#include "kernel/PlaneAxes.h"

#include <cmath>
#include <string>

namespace Lumivane::Pictures {
namespace {

namespace PlaneAxes = Kernel::PlaneAxes;
using Kernel::Vec2;
using Path = VectorPicture::Path;
using Places = std::vector<Vec2>;

using Kernel::Pi;

VectorPicture::Color color(const PlaneAxes::Rgba& rgba) {
  return {rgba[0], rgba[1], rgba[2], rgba[3] / 255.0};
}

VectorPicture::Line line(const PictureFrame& frame, const Places& places) {
  VectorPicture::Line result;
  for (const Vec2 place : places) result.push_back(frame.at(place));
  return result;
}

// One pixel wide, as the library draws them.
Path stroke(const PictureFrame& frame, const std::vector<Places>& lines, VectorPicture::Color color,
            bool closed = false) {
  Path path;
  for (const Places& places : lines) path.lines.push_back(line(frame, places));
  path.closed = closed;
  path.pen = VectorPicture::Pen{color, 1.0};
  return path;
}

Path head(const PictureFrame& frame, Vec2 direction) {
  const Vec2 side = {-direction.y, direction.x};
  const Vec2 middle = PlaneAxes::Reach * direction;
  const Vec2 half = (PlaneAxes::HeadLength * 0.5) * direction;
  const Vec2 wing = PlaneAxes::HeadHalfWidth * side;
  Path path;
  path.lines = {line(frame, {middle + half, middle - half + wing, middle - half - wing})};
  path.closed = true;
  path.fill = color(PlaneAxes::HeadColor);
  return path;
}

// Three letters drawn by hand, so that a picture needs no font and looks the same everywhere. The
// unit is the size of the type; x is moved on by the width of the letter.
Places letterU(double x) {
  Places places = {{x, 0.5}};
  for (int i = 0; i <= 8; ++i) {
    const double angle = Pi * (1.0 + i / 8.0);
    places.push_back({x + 0.17 + 0.17 * std::cos(angle), 0.17 + 0.17 * std::sin(angle)});
  }
  places.push_back({x + 0.34, 0.5});
  places.push_back({x + 0.34, 0.0});
  return places;
}

Places letterV(double x) { return {{x, 0.5}, {x + 0.19, 0.0}, {x + 0.38, 0.5}}; }

Places digitOne(double x) { return {{x, 0.55}, {x + 0.15, 0.7}, {x + 0.15, 0.0}}; }

Path label(const PictureFrame& frame, const PlaneAxes::Label& label) {
  const double size = PlaneAxes::LabelPoints * PlaneAxes::LabelScale;
  constexpr double advance = 0.55;
  std::vector<Places> letters;
  double x = 0.05;
  for (const char letter : std::string(label.text)) {
    letters.push_back(letter == 'u' ? letterU(x) : letter == 'v' ? letterV(x) : digitOne(x));
    x += advance;
  }
  for (Places& places : letters)
    for (Vec2& place : places) place = label.place + size * (Vec2{0.0, 0.2} + place);
  Path path = stroke(frame, letters, color(PlaneAxes::HeadColor));
  path.pen->width = frame.length(0.08 * size);
  return path;
}

// What both projections have: two axes with their heads and names.
std::vector<Path> arrows(const PictureFrame& frame, const std::array<PlaneAxes::Label, 2>& labels) {
  const double reach = PlaneAxes::Reach;
  const VectorPicture::Color axisColor = color(PlaneAxes::AxisColor);
  std::vector<Path> paths = {stroke(frame, {{{-reach, 0.0}, {reach, 0.0}}}, axisColor),
                             stroke(frame, {{{0.0, -reach}, {0.0, reach}}}, axisColor),
                             head(frame, {1.0, 0.0}), head(frame, {0.0, 1.0})};
  for (const PlaneAxes::Label& text : labels) paths.push_back(label(frame, text));
  return paths;
}

Places ring(double radius) {
  Places places;
  for (int i = 0; i < PlaneAxes::RingSides; ++i) {
    const double angle = 2.0 * Pi / PlaneAxes::RingSides * i;
    places.push_back({radius * std::sin(angle), radius * std::cos(angle)});
  }
  return places;
}

}  // namespace

std::vector<Path> radialAxes(const PictureFrame& frame) {
  std::vector<Path> paths = arrows(frame, PlaneAxes::RadialLabels);
  for (const double radius : PlaneAxes::RingRadii)
    paths.push_back(stroke(frame, {ring(radius)}, color(PlaneAxes::RingColor), true));
  return paths;
}

std::vector<Path> squareAxes(const PictureFrame& frame) {
  std::vector<Path> paths = arrows(frame, PlaneAxes::SquareLabels);
  // The library lays every line once for each step of the other direction; here one line has the
  // opacity of them all. The directions are two paths, since crossings are darker.
  const int steps = PlaneAxes::GridSteps;
  VectorPicture::Color gridColor = color(PlaneAxes::GridColor);
  gridColor.opacity = PlaneAxes::layeredOpacity(gridColor.opacity, steps + 1);
  std::vector<Places> upright;
  std::vector<Places> level;
  for (int i = 0; i <= steps; ++i) {
    const double at = -1.0 + i * (2.0 / steps);
    upright.push_back({{at, -1.0}, {at, 1.0}});
    level.push_back({{-1.0, at}, {1.0, at}});
  }
  paths.push_back(stroke(frame, upright, gridColor));
  paths.push_back(stroke(frame, level, gridColor));
  return paths;
}

}  // namespace Lumivane::Pictures
