#include "importers/Outline.h"

#include "kernel/Planar.h"

#include <algorithm>
#include <cmath>

namespace Lumivane::Importers {

using Kernel::Vec3;

namespace {

const Vec3& at(const std::vector<Vec3>& vertices, int number) {
  return vertices[static_cast<size_t>(number)];
}

}  // namespace

Vec3 areaVector(const Loop& loop, const std::vector<Vec3>& vertices) {
  return 0.5 * Kernel::twiceAreaVector(loop.size(), at(vertices, loop.front()),
                                       [&](size_t i) { return at(vertices, loop[i]); });
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

double extentOf(const Loop& loop, const std::vector<Vec3>& vertices) {
  double extent = 0.0;
  for (const int v : loop)
    extent = std::max(extent, Kernel::distance(at(vertices, v), at(vertices, loop.front())));
  return extent;
}

bool isConvex(const OutlinePlane& plane, const Loop& loop, const std::vector<Vec3>& vertices) {
  for (size_t i = 0; i < loop.size(); ++i) {
    const Vec3 before = at(vertices, loop[i]);
    const Vec3 corner = at(vertices, loop[(i + 1) % loop.size()]);
    const Vec3 after = at(vertices, loop[(i + 2) % loop.size()]);
    const Vec3 turn = Kernel::cross(corner - before, after - corner);
    if (Kernel::dot(turn, plane.normal) < 0.0) return false;
  }
  return true;
}

bool visitsAVertexTwice(const Loop& loop) {
  if (loop.size() == 3) return false;  // repeated neighbours are gone already
  Loop sorted = loop;
  std::sort(sorted.begin(), sorted.end());
  return std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end();
}

}  // namespace Lumivane::Importers
