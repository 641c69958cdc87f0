#include "measure/Outlines.h"

#include "measure/ContourRule.h"

#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/shot/Shot2d.h>

#include <cmath>
#include <stdexcept>

namespace Lumivane::Measure {
namespace {

using Kernel::Vec2;

// Points with a coordinate that is not finite stand for nothing: marked by not-a-number.
std::vector<Vec2> sweepPoints(const Shot::Shot2d& shot, const ContourRule& rule) {
  std::vector<Vec2> points;
  if (shot.getPoints() == nullptr) return points;
  for (const Geometry::Point2d* point : *shot.getPoints()->getPoints())
    points.push_back(rule.sweepPoint({point->getX(), point->getY()}));
  return points;
}

Vec2 pointOf(const std::vector<Vec2>& points, int number) {
  if (number < 1 || static_cast<size_t>(number) > points.size())
    throw std::out_of_range("point number = " + std::to_string(number));
  return points[static_cast<size_t>(number - 1)];
}

std::vector<Vec2> outline(const Geometry::Region2d& region, const std::vector<Vec2>& points) {
  std::vector<Vec2> result;
  if (region.getPoints() == nullptr) return result;
  for (const int number : *region.getPoints()) {
    const Vec2 point = pointOf(points, number);
    if (std::isfinite(point.x) && std::isfinite(point.y)) result.push_back(point);
  }
  return result;
}

void addEdge(std::vector<SweepEdge>& edges, Vec2 a, Vec2 b, RegionNumber region) {
  if (a.y == b.y) return;
  const bool upward = a.y < b.y;
  const Vec2 low = upward ? a : b;
  const Vec2 high = upward ? b : a;
  const double slope = (high.x - low.x) / (high.y - low.y);
  edges.push_back({low, high, slope, region, upward ? 1 : -1});
}

}  // namespace

std::vector<SweepEdge> sweepEdges(const Shot::Shot2d& shot, const ContourRule& rule) {
  std::vector<SweepEdge> edges;
  if (shot.getRegions() == nullptr) return edges;
  const std::vector<Vec2> points = sweepPoints(shot, rule);
  RegionNumber number = 0;
  for (const Geometry::Region2d* region : *shot.getRegions()->getRegions()) {
    ++number;
    const std::vector<Vec2> polygon = outline(*region, points);
    for (size_t i = 0; i < polygon.size(); ++i)
      addEdge(edges, polygon[i], polygon[(i + 1) % polygon.size()], number);
  }
  return edges;
}

}  // namespace Lumivane::Measure
