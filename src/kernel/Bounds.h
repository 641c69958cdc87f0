#pragma once

#include "kernel/Vec.h"

#include <limits>
#include <vector>

/// Upright rectangles of the picture. All comparisons are strict and without a tolerance, so what
/// is not a number is never taken in.
namespace Lumivane::Kernel {

/// Made empty: the largest finite double as both minima, its negative as both maxima.
struct Box {
  double xMin = std::numeric_limits<double>::max();
  double xMax = -std::numeric_limits<double>::max();
  double yMin = std::numeric_limits<double>::max();
  double yMax = -std::numeric_limits<double>::max();
};

inline bool isDefaultBox(const Box& box) {
  const Box empty;
  return box.xMax == empty.xMax && box.xMin == empty.xMin && box.yMax == empty.yMax &&
         box.yMin == empty.yMin;
}

/// Whether the boxes share a point; touching is enough. (1) Swapping them keeps the result.
inline bool boxesMeet(const Box& a, const Box& b) {
  return (a.xMax >= b.xMin) & (b.xMax >= a.xMin) & (a.yMax >= b.yMin) & (b.yMax >= a.yMin);
}

inline void take(Box& box, const Box& other) {
  if (box.xMin > other.xMin) box.xMin = other.xMin;
  if (other.xMax > box.xMax) box.xMax = other.xMax;
  if (box.yMin > other.yMin) box.yMin = other.yMin;
  if (other.yMax > box.yMax) box.yMax = other.yMax;
}

inline void take(Box& box, Vec2 point) { take(box, Box{point.x, point.x, point.y, point.y}); }

inline Box boxOf(const std::vector<Vec2>& points) {
  Box box;
  for (const Vec2 point : points) take(box, point);
  return box;
}

}  // namespace Lumivane::Kernel
