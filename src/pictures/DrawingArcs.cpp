// Great circles are ellipses about the centre of an orthographic fisheye, and circles in a
// stereographic one. Lines stay chords here, since they are cut, joined and turned round as such;
// what is kept beside them is which runs of chords are arcs of which ellipse. A writer knows such a
// run again by the points within it, which no joining moves. Arcs are cut into pieces of at most a
// sixth of their ellipse: the two ends and the radii are all that a file has, and of longer ones
// their rounding would move the middle.

#include "kernel/Planar.h"
#include "pictures/DrawingParts.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace Lumivane::Pictures {
namespace {

using Kernel::Pi;
using Kernel::Vec2;
using Kernel::Vec3;
using Point = Drawing::Point;

constexpr double LongestPiece = Pi / 3.0;
// Beyond these an ellipse is as good as straight, and rounded radii would bend it.
constexpr double LeastRatio = 0.02;
constexpr double LargestRadius = 50.0;

// In the plane, whose unit is the disc's radius.
struct Ellipse {
  Vec2 middle{0.0, 0.0};
  Vec2 axis{1.0, 0.0};  // of the greater radius
  double radius = 1.0;
  double smaller = 1.0;

  double angleOf(Vec2 p) const {
    const Vec2 q = p - middle;
    return std::atan2((q.y * axis.x - q.x * axis.y) / smaller,
                      (q.x * axis.x + q.y * axis.y) / radius);
  }
};

// Of the great circle through two directions; none if it is nearly straight in the picture.
std::optional<Ellipse> ellipseOf(Vec3 a, Vec3 b, DrawingProjection projection) {
  const Vec3 across = Kernel::cross(a, b);
  const double length = Kernel::length3(across);
  if (!(length > 0.0)) return {};
  const Vec3 n = (1.0 / length) * across;
  const double level = std::hypot(n.x, n.y);
  Ellipse ellipse;
  if (level == 0.0) return ellipse;
  if (projection == DrawingProjection::Stereographic) {
    ellipse.radius = ellipse.smaller = 1.0 / std::abs(n.z);
    if (!(ellipse.radius < LargestRadius)) return {};
    ellipse.middle = {n.x / n.z, n.y / n.z};
    return ellipse;
  }
  ellipse.axis = {n.y / level, -n.x / level};
  ellipse.smaller = std::abs(n.z);
  if (!(ellipse.smaller > LeastRatio)) return {};
  return ellipse;
}

double turnBetween(double from, double to) { return std::remainder(to - from, 2.0 * Pi); }

class Arcs {
 public:
  Arcs(const DrawnScene& theScene, Drawing& theDrawing) : scene(theScene), drawing(theDrawing) {}

  void add(Vec3 from, Vec3 to) {
    const std::optional<Ellipse> ellipse = ellipseOf(from, to, scene.options.projection);
    if (!ellipse) return;
    lines.clear();
    scene.plane.addLine(from, to, lines);
    for (const PlaneLine& line : lines) add(line, *ellipse);
  }

  // A run of chords, in pieces.
  void add(const PlaneLine& line, const Ellipse& ellipse) {
    std::size_t first = 0;
    double start = line.empty() ? 0.0 : ellipse.angleOf(line.front());
    for (std::size_t i = 1; i < line.size(); ++i) {
      const bool isLast = i + 1 == line.size();
      if (!isLast && std::abs(turnBetween(start, ellipse.angleOf(line[i + 1]))) <= LongestPiece)
        continue;
      if (i > first + 1) addPiece(line, first, i, ellipse);
      first = i;
      start = ellipse.angleOf(line[i]);
    }
  }

 private:
  // Angles run clockwise on the page, whose y is downwards.
  void addPiece(const PlaneLine& line, std::size_t first, std::size_t last,
                const Ellipse& ellipse) {
    Drawing::Arc arc;
    arc.chords = last - first;
    arc.first = scene.paper(line[first]);
    arc.second = scene.paper(line[first + 1]);
    arc.beforeLast = scene.paper(line[last - 1]);
    arc.last = scene.paper(line[last]);
    arc.radius = scene.paper.scale * ellipse.radius;
    arc.smallerRadius = scene.paper.scale * ellipse.smaller;
    arc.turn = std::atan2(-ellipse.axis.y, ellipse.axis.x) * 180.0 / Pi;
    arc.isClockwise = turnBetween(ellipse.angleOf(line[first]), ellipse.angleOf(line[last])) < 0.0;
    drawing.arcs.push_back(arc);
  }

  const DrawnScene& scene;
  Drawing& drawing;
  std::vector<PlaneLine> lines;
};

}  // namespace

void addArcs(const DrawnScene& scene, const std::vector<DrawnLine>& lines, Drawing& drawing) {
  Arcs arcs(scene, drawing);
  for (const DrawnLine& line : lines) arcs.add(line.from, line.to);
  const FlatMap& map = scene.map;
  for (const Visibility::VisibleMap::Edge& edge : map.edges)
    arcs.add(map.at(edge.from), map.at(edge.to));
  PlaneLine border = scene.plane.border();
  border.insert(border.begin(), border.back());
  arcs.add(border, Ellipse());
}

}  // namespace Lumivane::Pictures
