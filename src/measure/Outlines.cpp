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
  points.reserve(shot.getPoints()->getPoints()->size());
  for (const Geometry::Point2d* point : *shot.getPoints()->getPoints())
    points.push_back(rule.sweepPoint({point->getX(), point->getY()}));
  return points;
}

Vec2 pointOf(const std::vector<Vec2>& points, int number) {
  if (number < 1 || static_cast<size_t>(number) > points.size())
    throw std::out_of_range("point number = " + std::to_string(number));
  return points[static_cast<size_t>(number - 1)];
}

void takeOutline(const Geometry::Region2d& region, const std::vector<Vec2>& points,
                 std::vector<Vec2>& outline) {
  outline.clear();
  if (region.getPoints() == nullptr) return;
  for (const int number : *region.getPoints()) {
    const Vec2 point = pointOf(points, number);
    if (std::isfinite(point.x) && std::isfinite(point.y)) outline.push_back(point);
  }
}

size_t countOfPoints(const std::vector<Geometry::Region2d*>& regions) {
  size_t count = 0;
  for (const Geometry::Region2d* region : regions)
    if (region->getPoints() != nullptr) count += region->getPoints()->size();
  return count;
}

bool isLevel(Vec2 a, Vec2 b) { return a.y == b.y && a.x != b.x; }

// Lifts an end of each level edge by as little as there is: without the edge the outline would not
// be closed. It takes an edge that lies along the turned frame to the last bit.
bool liftLevelEdges(const std::vector<Geometry::Region2d*>& regions, std::vector<Vec2>& points) {
  bool lifted = false;
  for (const Geometry::Region2d* region : regions) {
    if (region->getPoints() == nullptr) continue;
    const std::vector<int>& numbers = *region->getPoints();
    for (size_t i = 0; i < numbers.size(); ++i) {
      const Vec2 a = pointOf(points, numbers[i]);
      Vec2& b = points[static_cast<size_t>(numbers[i + 1 < numbers.size() ? i + 1 : 0] - 1)];
      if (!isLevel(a, b)) continue;
      b.y = std::nextafter(b.y, 2.0);
      lifted = true;
    }
  }
  return lifted;
}

void addEdge(std::vector<SweepEdge>& edges, Vec2 a, Vec2 b, RegionNumber region) {
  if (a.y == b.y) return;
  const bool upward = a.y < b.y;
  const Vec2 low = upward ? a : b;
  const Vec2 high = upward ? b : a;
  const double slope = (high.x - low.x) / (high.y - low.y);
  edges.push_back({low, high, slope, region, upward ? 1 : -1});
}

// Whether an edge was level.
bool addEdges(std::vector<SweepEdge>& edges, const std::vector<Vec2>& outline,
              RegionNumber region) {
  bool level = false;
  for (size_t i = 0; i < outline.size(); ++i) {
    const Vec2 a = outline[i];
    const Vec2 b = outline[i + 1 < outline.size() ? i + 1 : 0];
    level = level || isLevel(a, b);
    addEdge(edges, a, b, region);
  }
  return level;
}

bool addAllEdges(std::vector<SweepEdge>& edges, const std::vector<Geometry::Region2d*>& regions,
                 const std::vector<Vec2>& points) {
  edges.clear();
  edges.reserve(countOfPoints(regions));
  std::vector<Vec2> outline;
  bool level = false;
  RegionNumber number = 0;
  for (const Geometry::Region2d* region : regions) {
    takeOutline(*region, points, outline);
    level = addEdges(edges, outline, ++number) || level;
  }
  return level;
}

}  // namespace

std::vector<SweepEdge> sweepEdges(const Shot::Shot2d& shot, const ContourRule& rule) {
  std::vector<SweepEdge> edges;
  if (shot.getRegions() == nullptr) return edges;
  const std::vector<Geometry::Region2d*>& regions = *shot.getRegions()->getRegions();
  std::vector<Vec2> points = sweepPoints(shot, rule);
  constexpr int MostTimes = 8;  // an edge may become level by what is lifted for another
  for (int i = 0; addAllEdges(edges, regions, points) && i < MostTimes; ++i)
    if (!liftLevelEdges(regions, points)) break;
  return edges;
}

}  // namespace Lumivane::Measure
