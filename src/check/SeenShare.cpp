// The cells that the first pass of a shot makes of a polygon wholly in front of the eye: the same
// clipper makes them here, for a plane that no corner touches. Which cells a polygon has does not
// depend on the plane, since it is cut into triangles before these are clipped.

#include "algorithm/pipeline/PolygonClipper.h"
#include "algorithm/pipeline/RegionShapes.h"
#include "kernel/Planar.h"

#include <lumivane/check/SceneChecker.h>

#include <algorithm>
#include <cmath>

namespace Lumivane::Check {
namespace {

using Algorithm::SinglePoint;
using Kernel::Vec3;

// Twice the area as length, by Newell's method.
Vec3 newellNormal(const std::vector<Vec3>& outline) {
  return Kernel::twiceAreaVector(outline.size(), outline[0], [&](size_t i) { return outline[i]; });
}

bool hasShortEdge(const std::vector<Vec3>& polygon) {
  for (size_t i = 0; i < polygon.size(); ++i)
    if (Kernel::distance(polygon[i], polygon[(i + 1) % polygon.size()]) <
        SceneChecker::ShortestEdge)
      return true;
  return false;
}

// A point so far off along x that all corners lie in front of it.
double behindAll(const std::vector<Vec3>& outline) {
  double lowest = outline.front().x;
  double extent = 1.0;
  for (const Vec3 p : outline) {
    lowest = std::min(lowest, p.x);
    extent = std::max(extent, std::abs(p.x));
  }
  return lowest - extent;
}

}  // namespace

double SceneChecker::seenShare(const std::vector<std::array<double, 3>>& corners) {
  std::vector<SinglePoint> single;
  std::vector<Vec3> outline;
  for (const auto& [x, y, z] : corners) {
    single.push_back(Algorithm::toSingle({x, y, z}));
    outline.push_back(Algorithm::toVec3(single.back()));
  }
  if (outline.size() < 3) return 0.0;
  const Vec3 whole = newellNormal(outline);
  const double area = Kernel::length3(whole);
  if (!(area > 0.0) || !std::isfinite(area)) return 0.0;

  Algorithm::PolygonClipper clipper;
  clipper.setPlane({behindAll(outline), 0.0, 0.0}, {1.0, 0.0, 0.0});
  double seen = 0.0;
  for (const Algorithm::NormalCell& cell : clipper.clip(single.data(), single.size()))
    if (Kernel::dot(Algorithm::toVec3(cell.normal), whole) > 0.0 && !hasShortEdge(cell.polygon))
      seen += Kernel::length3(newellNormal(cell.polygon));
  return std::min(1.0, seen / area);
}

}  // namespace Lumivane::Check
