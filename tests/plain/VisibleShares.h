#pragma once

#include "kernel/Vec.h"

#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/shot/Shot2d.h>

#include <cmath>
#include <utility>
#include <vector>

/// What is visible of a shot computed point by point, for comparison.
namespace Lumivane::Plain {

using Polygon = std::vector<Kernel::Vec2>;

/// The outlines of a shot's regions in drawing order.
inline std::vector<Polygon> outlines(const Shot::Shot2d& shot) {
  std::vector<Polygon> result;
  for (const Geometry::Region2d* region : *shot.getRegions()->getRegions()) {
    Polygon polygon;
    for (const int number : *region->getPoints()) {
      const Geometry::Point2d* point = shot.getPoints()->getPoint(number - 1);
      polygon.push_back({point->getX(), point->getY()});
    }
    result.push_back(std::move(polygon));
  }
  return result;
}

/// How often the outline winds around the point, by the edges right of it.
inline int windingNumber(const Polygon& polygon, Kernel::Vec2 p) {
  int winding = 0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const Kernel::Vec2 a = polygon[i];
    const Kernel::Vec2 b = polygon[(i + 1) % polygon.size()];
    if ((a.y <= p.y) == (b.y <= p.y)) continue;
    const double x = a.x + (b.x - a.x) * ((p.y - a.y) / (b.y - a.y));
    if (x > p.x) winding += a.y <= p.y ? 1 : -1;
  }
  return winding;
}

/// Number, from 1, of the region drawn last of those that wind around the point; 0 if none does.
inline std::size_t topmostRegion(const std::vector<Polygon>& regions, Kernel::Vec2 p) {
  for (std::size_t number = regions.size(); number > 0; --number)
    if (windingNumber(regions[number - 1], p) != 0) return number;
  return 0;
}

/// Twice the area that a polygon encloses, signed, by the sum over its edges.
inline double twiceArea(const Polygon& polygon) {
  double sum = 0.0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const Kernel::Vec2 a = polygon[i];
    const Kernel::Vec2 b = polygon[(i + 1) % polygon.size()];
    sum += a.x * b.y - a.y * b.x;
  }
  return sum;
}

}  // namespace Lumivane::Plain
