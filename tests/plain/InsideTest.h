#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

/// Whether a point is inside a body, found by all polygons.
namespace Lumivane::Plain {

using Triple = std::array<double, 3>;

struct OnePolygon {
  std::vector<Triple> corners;
  int object = 0;  ///< from 1
};

inline Triple minus(const Triple& a, const Triple& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

inline double product(const Triple& a, const Triple& b) {
  return 0.0 + a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

inline Triple normalOf(const std::vector<Triple>& corners) {
  Triple sum{};
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const Triple a = minus(corners[i], corners[0]);
    const Triple b = minus(corners[(i + 1) % corners.size()], corners[0]);
    sum[0] = sum[0] + (a[1] * b[2] - a[2] * b[1]);
    sum[1] = sum[1] + (a[2] * b[0] - a[0] * b[2]);
    sum[2] = sum[2] + (a[0] * b[1] - a[1] * b[0]);
  }
  return sum;
}

inline Triple middleOf(const std::vector<Triple>& corners) {
  Triple mean{};
  const double share = 1.0 / static_cast<double>(corners.size());
  for (const Triple& corner : corners) {
    const Triple moved = minus(corner, corners[0]);
    for (std::size_t axis = 0; axis < 3; ++axis) mean[axis] = mean[axis] + share * moved[axis];
  }
  for (std::size_t axis = 0; axis < 3; ++axis) mean[axis] = mean[axis] + corners[0][axis];
  return mean;
}

inline bool isWithin(const std::vector<Triple>& corners, const Triple& at, std::size_t x,
                     std::size_t y) {
  bool isInside = false;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const Triple& a = corners[i];
    const Triple& b = corners[(i + 1) % corners.size()];
    if ((a[y] <= at[y]) == (b[y] <= at[y])) continue;
    if (a[x] + (b[x] - a[x]) * ((at[y] - a[y]) / (b[y] - a[y])) > at[x]) isInside = !isInside;
  }
  return isInside;
}

inline double distanceAlong(const std::vector<Triple>& corners, const Triple& normal,
                            const Triple& from, const Triple& direction) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double slope = product(normal, direction);
  if (slope == 0.0) return infinity;
  const double distance = product(normal, minus(middleOf(corners), from)) / slope;
  if (!(distance > 0.0)) return infinity;
  const double x = std::abs(normal[0]);
  const double y = std::abs(normal[1]);
  const double z = std::abs(normal[2]);
  const std::size_t out = x >= y && x >= z ? 0 : (y >= z ? 1 : 2);
  const Triple at = {from[0] + distance * direction[0], from[1] + distance * direction[1],
                     from[2] + distance * direction[2]};
  return isWithin(corners, at, out == 0 ? 1 : 0, out == 2 ? 1 : 2) ? distance : infinity;
}

struct First {
  bool isBack = false;
  int object = 0;
};

inline bool isOver(const std::vector<Triple>& corners, const Triple& from) {
  std::size_t higher = 0;
  std::size_t left = 0;
  std::size_t right = 0;
  std::size_t front = 0;
  std::size_t behind = 0;
  for (const Triple& corner : corners) {
    higher += corner[2] > from[2] ? 1 : 0;
    left += corner[0] <= from[0] ? 1 : 0;
    right += corner[0] >= from[0] ? 1 : 0;
    front += corner[1] <= from[1] ? 1 : 0;
    behind += corner[1] >= from[1] ? 1 : 0;
  }
  return higher * left * right * front * behind > 0;
}

/// Among the polygons of one object, or of all for 0.
inline First firstAlong(const std::vector<OnePolygon>& polygons, const Triple& from,
                        const Triple& direction, int object) {
  const bool isUp = direction == Triple{0.0, 0.0, 1.0};
  double front = std::numeric_limits<double>::infinity();
  double back = front;
  First first;
  for (const OnePolygon& polygon : polygons) {
    if (polygon.corners.size() < 3 || (object != 0 && polygon.object != object)) continue;
    if (isUp && !isOver(polygon.corners, from)) continue;
    const Triple normal = normalOf(polygon.corners);
    const double distance = distanceAlong(polygon.corners, normal, from, direction);
    if (product(normal, direction) > 0.0) {
      front = std::min(front, distance);
    } else if (distance < back) {
      back = distance;
      first.object = polygon.object;
    }
  }
  first.isBack = back < front && front - back > 1e-9 * back;
  return first;
}

inline bool isEnclosed(const std::vector<OnePolygon>& polygons, const Triple& from, int object) {
  int backs = 1;
  for (int i = 0; i < 13; ++i) {
    const double z = 1.0 - (2.0 * i + 1.0) / 13;
    const double width = std::sqrt(1.0 - z * z);
    const double turn = 2.399963229728653 * i + 0.1;
    const Triple direction = {width * std::cos(turn), width * std::sin(turn), z};
    backs += firstAlong(polygons, from, direction, object).isBack ? 1 : 0;
  }
  return 2 * backs > 14;
}

inline bool isInsideBody(const std::vector<OnePolygon>& polygons, const Triple& point) {
  const First above = firstAlong(polygons, point, {0.0, 0.0, 1.0}, 0);
  return above.isBack &&
         (isEnclosed(polygons, point, 0) || isEnclosed(polygons, point, above.object));
}

}  // namespace Lumivane::Plain
