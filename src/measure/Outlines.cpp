#include "measure/Outlines.h"

#include "measure/ContourRule.h"

#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/shot/Shot2d.h>

#include <cmath>
#include <stdexcept>

// The outlines of a shot's regions as edges for the sweep.
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

void takePoints(const Outline& outline, const std::vector<Vec2>& points, std::vector<Vec2>& line) {
  line.clear();
  for (const int number : *outline.points) {
    const Vec2 point = pointOf(points, number);
    if (std::isfinite(point.x) && std::isfinite(point.y)) line.push_back(point);
  }
}

size_t countOfPoints(const std::vector<Outline>& outlines) {
  size_t count = 0;
  for (const Outline& outline : outlines) count += outline.points->size();
  return count;
}

bool isLevel(Vec2 a, Vec2 b) { return a.y == b.y && a.x != b.x; }

// Lifts an end of each level edge by as little as there is: without the edge the outline would not
// be closed. It takes an edge that lies along the turned frame to the last bit.
bool liftLevelEdges(const std::vector<Outline>& outlines, std::vector<Vec2>& points) {
  bool lifted = false;
  for (const Outline& outline : outlines) {
    const std::vector<int>& numbers = *outline.points;
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
bool addEdges(std::vector<SweepEdge>& edges, const std::vector<Vec2>& line, RegionNumber region) {
  bool level = false;
  for (size_t i = 0; i < line.size(); ++i) {
    const Vec2 a = line[i];
    const Vec2 b = line[i + 1 < line.size() ? i + 1 : 0];
    level = level || isLevel(a, b);
    addEdge(edges, a, b, region);
  }
  return level;
}

bool addAllEdges(std::vector<SweepEdge>& edges, const std::vector<Outline>& outlines,
                 const std::vector<Vec2>& points) {
  edges.clear();
  edges.reserve(countOfPoints(outlines));
  std::vector<Vec2> line;
  bool level = false;
  for (const Outline& outline : outlines) {
    takePoints(outline, points, line);
    level = addEdges(edges, line, outline.region) || level;
  }
  return level;
}

}  // namespace

std::vector<SweepEdge> sweepEdges(std::vector<Vec2> points, const std::vector<Outline>& outlines) {
  std::vector<SweepEdge> edges;
  constexpr int MostTimes = 8;  // an edge may become level by what is lifted for another
  for (int i = 0; addAllEdges(edges, outlines, points) && i < MostTimes; ++i)
    if (!liftLevelEdges(outlines, points)) break;
  return edges;
}

std::vector<SweepEdge> sweepEdges(const Shot::Shot2d& shot, const ContourRule& rule) {
  if (shot.getRegions() == nullptr) return {};
  std::vector<Outline> outlines;
  RegionNumber number = 0;
  for (const Geometry::Region2d* region : *shot.getRegions()->getRegions()) {
    ++number;
    if (region->getPoints() != nullptr) outlines.push_back({number, region->getPoints()});
  }
  return sweepEdges(sweepPoints(shot, rule), outlines);
}

}  // namespace Lumivane::Measure
