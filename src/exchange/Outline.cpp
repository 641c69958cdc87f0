// Polygons with holes, and those that are not flat, are cut into triangles by Face::makeFromLoops
// on a scratch scene. It gets the polygon flattened onto its plane and blown up or shrunk to one
// size, since it works in single precision with a fixed tolerance; the corners of its triangles are
// then found again among the flattened ones, so that no coordinate of the scene is touched.

#include "exchange/Outline.h"

#include <lumivane/geometry/Face.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Scene3D.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace Lumivane::Exchange {
namespace {

using Kernel::Vec2;
using Kernel::Vec3;
using Loops3d = std::vector<std::vector<Geometry::Point3d>>;

// The side of the square into which a polygon is scaled: its tolerance there is 0.001.
constexpr double FlatSize = 1000.0;
// A filling that covers another area than the polygon by more than this share is no filling.
constexpr double AreaTolerance = 1e-3;

const Vec3& at(const std::vector<Vec3>& vertices, int number) {
  return vertices[static_cast<size_t>(number)];
}

// A polygon in the coordinates of its plane.
class Flattening {
 public:
  Flattening(const std::vector<Loop>& loops, const std::vector<Vec3>& vertices)
      : plane(planeOf(loops.front(), vertices)) {
    const Vec3 axis = std::abs(plane.normal.x) < 0.6 ? Vec3{1, 0, 0} : Vec3{0, 1, 0};
    right = Kernel::normalise(Kernel::cross(axis, plane.normal)).direction;
    up = Kernel::cross(plane.normal, right);
    double extent = 0.0;
    for (const int v : loops.front()) {
      const Vec2 p = flat(at(vertices, v));
      extent = std::max({extent, std::abs(p.x), std::abs(p.y)});
    }
    factor = extent > 0.0 ? FlatSize / extent : 1.0;
  }

  // Single precision, as the triangulation gives it back.
  std::pair<float, float> operator()(const Vec3& point) const {
    const Vec2 p = flat(point);
    return {static_cast<float>(p.x * factor), static_cast<float>(p.y * factor)};
  }

 private:
  Vec2 flat(const Vec3& point) const {
    const Vec3 offset = point - plane.origin;
    return {Kernel::dot(offset, right), Kernel::dot(offset, up)};
  }

  OutlinePlane plane;
  Vec3 right;
  Vec3 up;
  double factor = 1.0;
};

double signedArea(const std::vector<Geometry::Point3d>& loop) {
  double sum = 0.0;
  for (size_t i = 0; i < loop.size(); ++i) {
    const Geometry::Point3d& a = loop[i];
    const Geometry::Point3d& b = loop[(i + 1) % loop.size()];
    sum += a.getX() * b.getY() - b.getX() * a.getY();
  }
  return sum / 2.0;
}

using Corners = std::map<std::pair<double, double>, int>;

// The flat loops, the outline counter-clockwise and the holes clockwise, each closed by its first
// point; and which corner stands where.
Loops3d flatLoops(const std::vector<Loop>& loops, const std::vector<Vec3>& vertices,
                  Corners& corners, double& area) {
  const Flattening flattening(loops, vertices);
  Loops3d result;
  for (const Loop& loop : loops) {
    if (loop.size() < 3) continue;
    std::vector<Geometry::Point3d> flat;
    for (const int v : loop) {
      const auto [x, y] = flattening(at(vertices, v));
      flat.emplace_back(x, y, 0.0);
      corners.emplace(std::pair<double, double>(x, y), v);
    }
    const double size = signedArea(flat);
    if ((size > 0.0) != result.empty()) std::reverse(flat.begin(), flat.end());
    area += result.empty() ? std::abs(size) : -std::abs(size);
    flat.push_back(flat.front());
    result.push_back(std::move(flat));
  }
  return result;
}

// The triangles that run counter-clockwise in the flat coordinates; each comes in both directions.
std::vector<Loop> frontTriangles(Scene::Scene3D& scene, Scene::Object& object,
                                 const Corners& corners, double& area) {
  std::vector<Loop> triangles;
  for (Geometry::Region* const region : *object.getRegions()->getRegions()) {
    std::vector<Geometry::Point3d> flat;
    Loop triangle;
    for (const int number : *region->getPoints()) {
      flat.push_back(*scene.getPoints()->getPoint(number - 1));
      const auto found = corners.find({flat.back().getX(), flat.back().getY()});
      if (found != corners.end()) triangle.push_back(found->second);
    }
    const double size = signedArea(flat);
    if (size <= 0.0 || triangle.size() != 3) continue;
    area += size;
    triangles.push_back(std::move(triangle));
  }
  return triangles;
}

}  // namespace

Vec3 areaVector(const Loop& loop, const std::vector<Vec3>& vertices) {
  Vec3 sum;
  const Vec3 origin = at(vertices, loop.front());
  for (size_t i = 1; i + 1 < loop.size(); ++i)
    sum = sum + Kernel::cross(at(vertices, loop[i]) - origin, at(vertices, loop[i + 1]) - origin);
  return 0.5 * sum;
}

OutlinePlane planeOf(const Loop& loop, const std::vector<Vec3>& vertices) {
  OutlinePlane plane;
  if (loop.size() < 3) return plane;
  const Vec3 first = at(vertices, loop.front());
  Vec3 sum;
  for (const int v : loop) sum = sum + (at(vertices, v) - first);
  plane.origin = first + (1.0 / static_cast<double>(loop.size())) * sum;
  const Vec3 area = areaVector(loop, vertices);
  plane.area = Kernel::length3(area);
  plane.normal = plane.area > 0.0 ? (1.0 / plane.area) * area : Vec3{};
  return plane;
}

double greatestDistance(const OutlinePlane& plane, const Loop& loop,
                        const std::vector<Vec3>& vertices) {
  double greatest = 0.0;
  for (const int v : loop) greatest = std::max(greatest, std::abs(plane.distance(at(vertices, v))));
  return greatest;
}

bool visitsAVertexTwice(const Loop& loop) {
  if (loop.size() == 3) return false;  // repeated neighbours are gone already
  Loop sorted = loop;
  std::sort(sorted.begin(), sorted.end());
  return std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end();
}

std::vector<Loop> triangulated(const std::vector<Loop>& loops, const std::vector<Vec3>& vertices) {
  if (loops.size() == 1 && loops.front().size() == 3) return loops;
  Corners corners;
  double wanted = 0.0;
  Loops3d flat = flatLoops(loops, vertices, corners, wanted);
  Scene::Scene3D scene;
  Scene::Object object;
  Geometry::Face::makeFromLoops(&scene, &object, std::move(flat), 1);
  double filled = 0.0;
  std::vector<Loop> triangles = frontTriangles(scene, object, corners, filled);
  if (!(std::abs(filled - wanted) <= AreaTolerance * wanted)) return {};
  return triangles;
}

}  // namespace Lumivane::Exchange
