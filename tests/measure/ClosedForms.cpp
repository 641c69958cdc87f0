#include "measure/ClosedForms.h"

#include "plain/Geometry.h"

#include <lumivane/cmd/CmdManager.h>
#include <lumivane/geometry/Point2d.h>

#include <cmath>

namespace Lumivane::Test {
namespace {

constexpr double Pi = 3.141592653589793;
const Coordinates Ahead = {0, 0, 1};

// At the height z above the element.
PolygonPoints rectangle(double x0, double x1, double y0, double y1, double z) {
  return {{x0, y0, z}, {x1, y0, z}, {x1, y1, z}, {x0, y1, z}};
}

PolygonPoints square(double side, double z) {
  return rectangle(-side / 2, side / 2, -side / 2, side / 2, z);
}

double toFourDecimals(double value) { return std::round(value * 1e4) / 1e4; }

// Its points as a scene file would have them.
PolygonPoints disc(double radius, double x, double z) {
  PolygonPoints result;
  for (int i = 0; i < 720; ++i)
    result.push_back({toFourDecimals(x + radius * std::cos(i * Pi / 360)),
                      toFourDecimals(radius * std::sin(i * Pi / 360)), z});
  return result;
}

// From the element's plane upward.
PolygonPoints wall(double x0, double y0, double x1, double y1, double z0, double z1) {
  return {{x0, y0, z0}, {x1, y1, z0}, {x1, y1, z1}, {x0, y0, z1}};
}

// Parallel to the element, whose normal passes through the rectangle's corner.
double cornerFactor(double x, double y) {
  const double u = std::sqrt(1 + x * x);
  const double v = std::sqrt(1 + y * y);
  return (x / u * std::atan(y / u) + y / v * std::atan(x / v)) / (2 * Pi);
}

double sideFactor(double x, double y) {
  const double v = std::sqrt(1 + y * y);
  return (std::atan(x) - std::atan(x / v) / v) / (2 * Pi);
}

double shiftedDiscFactor(double radius, double height, double shift) {
  const double h = height / shift;
  const double r = radius / shift;
  const double z = 1 + h * h + r * r;
  return 0.5 * (1 - (z - 2 * r * r) / std::sqrt(z * z - 4 * r * r));
}

// The sine of the angle off the normal.
double sineOff(double y, double z) { return y / std::hypot(y, z); }

ClosedFormScene single(const std::string& name, const PolygonPoints& polygon, double factor,
                       const Coordinates& forward = Ahead) {
  return {name, {{name, polygon}}, forward, {{name, name, factor, lambertSum(polygon, forward)}}};
}

ClosedFormScene shadow() {
  const double large = 4 * cornerFactor(1, 1);
  const double small = 4 * cornerFactor(0.5, 0.5);
  return {"shadow",
          {{"back", square(4, 2)}, {"front", square(0.8, 0.8)}},
          Ahead,
          {{"shadow, back", "back", large - small, large - small},
           {"shadow, front", "front", small, small}}};
}

ClosedFormScene cube() {
  const double top = 4 * cornerFactor(1, 1);
  const double side = (1 - top) / 4;
  return {"cube",
          {{"top", square(2, 1)},
           {"left", wall(-1, -1, -1, 1, -1, 1)},
           {"right", wall(1, -1, 1, 1, -1, 1)},
           {"lower", wall(-1, -1, 1, -1, -1, 1)},
           {"upper", wall(-1, 1, 1, 1, -1, 1)}},
          Ahead,
          {{"cube, top", "top", top, top},
           {"cube, left", "left", side, side},
           {"cube, right", "right", side, side},
           {"cube, lower", "lower", side, side},
           {"cube, upper", "upper", side, side}}};
}

// Wound so that the normal points away from the origin: such a polygon is kept.
PolygonPoints keptPolygon(const PolygonPoints& polygon) {
  std::string ignored;
  const double side = Plain::dot(Plain::normal(polygon, ignored), polygon[0]);
  return side > 0 ? polygon : reversed(polygon);
}

}  // namespace

std::vector<ClosedFormScene> closedFormScenes() {
  const double tilt = 40 * Pi / 180;
  const double onAxis = 1.25 * 1.25 / (1.25 * 1.25 + 2 * 2);
  const PolygonPoints triangle = {{1, 0, 1}, {0, 1, 1.5}, {-0.7, -0.6, 2}};
  return {single("rect_corner", rectangle(0, 2, 0, 1.5, 3), cornerFactor(2.0 / 3, 0.5)),
          single("rect_centre", square(2, 1), 4 * cornerFactor(1, 1)),
          single("rect_side", wall(0, 1.5, 2, 1.5, 0, 3), sideFactor(2 / 1.5, 3 / 1.5)),
          single("disc_axis", disc(1.25, 0, 2), onAxis),
          single("disc_tilt", disc(1.25, 0, 2), std::cos(tilt) * onAxis,
                 {std::sin(tilt), 0, std::cos(tilt)}),
          single("disc_shift", disc(1, 1.5, 1), shiftedDiscFactor(1, 1, 1.5)),
          single("strip", {{-500, 1, 0.5}, {500, 1, 0.5}, {500, 3, 2.5}, {-500, 3, 2.5}},
                 0.5 * (sineOff(1, 0.5) - sineOff(3, 2.5))),
          single("triangle", triangle, lambertSum(triangle, Ahead)),
          shadow(),
          cube()};
}

std::unique_ptr<ShotScene> build(const ClosedFormScene& form) {
  auto scene = std::make_unique<ShotScene>();
  scene->setForward(form.forward);
  scene->setUp({0, 1, 0});
  for (const auto& [id, polygon] : form.polygons)
    scene->addRegion(scene->addObject(id), keptPolygon(polygon));
  return scene;
}

double lambertSum(const PolygonPoints& polygon, const Coordinates& forward) {
  double sum = 0.0;
  for (size_t i = 0; i < polygon.size(); ++i) {
    const Coordinates& a = polygon[i];
    const Coordinates& b = polygon[(i + 1) % polygon.size()];
    const Coordinates normal = Plain::cross(a, b);
    const double sine = Plain::length(normal);
    if (sine > 0) sum += std::atan2(sine, Plain::dot(a, b)) * Plain::dot(normal, forward) / sine;
  }
  return std::abs(sum) / (2 * Pi);
}

PieceLength::PieceLength(double length) : before(Cmd::CmdManager::maxSegmentsLength) {
  Cmd::CmdManager::maxSegmentsLength = length;
}

PieceLength::~PieceLength() { Cmd::CmdManager::maxSegmentsLength = before; }

MergeDistance::MergeDistance(double distance) : before(Geometry::Point2d::Precision) {
  Geometry::Point2d::Precision = distance;
}

MergeDistance::~MergeDistance() { Geometry::Point2d::Precision = before; }

}  // namespace Lumivane::Test
