#pragma once

#include "kernel/Vec.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

/// The plane of a whole outline, which need not be quite flat nor simple.
namespace Lumivane::Kernel {

struct OutlinePlane {
  /// Unit vector to the side from which the corners run counter-clockwise; zero if there is none.
  Vec3 normal;
  Vec3 mean;          ///< the mean of the corners
  double size = 0.0;  ///< the greatest distance between two corners

  bool exists() const { return normal != Vec3{}; }
};

/// The mean of some points, \pre at least one, summed up from the first so that it does not lose
/// digits far from the origin.
inline Vec3 meanOf(const Vec3* points, std::size_t count) {
  Vec3 sum;
  for (std::size_t i = 1; i < count; ++i) sum = sum + (points[i] - points[0]);
  const double n = static_cast<double>(count);
  return points[0] + Vec3{sum.x / n, sum.y / n, sum.z / n};
}

/// The power of two that brings the greatest of the points' distances from their mean, along an
/// axis, between 1 and 2; 0 if all are at one place.
inline double scaleOf(const Vec3* points, std::size_t count, Vec3 mean) {
  double greatest = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    const Vec3 p = points[i] - mean;
    greatest = std::max({greatest, std::abs(p.x), std::abs(p.y), std::abs(p.z)});
  }
  return greatest == 0.0 ? 0.0 : std::ldexp(1.0, -std::ilogb(greatest));
}

/// The greatest distance between two of some points, times `scale`: of more than 64 points to a
/// part in a thousand. It does not change with the axes. `mean` is that of the points.
inline double scaledDiameter(const Vec3* points, std::size_t count, Vec3 mean, double scale) {
  constexpr std::size_t FewPoints = 64;
  constexpr double Accuracy = 1e-3;
  double best = 0.0;  // squared
  if (count <= FewPoints) {
    for (std::size_t i = 0; i < count; ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        const Vec3 between = scale * (points[i] - points[j]);
        best = std::max(best, dot(between, between));
      }
    }
    return std::sqrt(best);
  }
  // From the farthest point inwards: two are no farther apart than the sum of their distances from
  // the mean.
  std::vector<std::pair<double, std::size_t>> order;
  for (std::size_t i = 0; i < count; ++i)
    order.emplace_back(length3(scale * (points[i] - mean)), i);
  std::sort(order.rbegin(), order.rend());
  for (std::size_t i = 0; i < count; ++i) {
    if (2.0 * order[i].first <= best * (1.0 + Accuracy)) break;
    for (std::size_t j = i + 1; j < count; ++j) {
      if (order[i].first + order[j].first <= best * (1.0 + Accuracy)) break;
      const Vec3 between = points[order[i].second] - points[order[j].second];
      best = std::max(best, length3(scale * between));
    }
  }
  return best;
}

/// Twice the vector area of an outline, times the square of `scale`, as if it had been worked out
/// with twice the digits (T. Ogita, S. M. Rump and S. Oishi, Accurate Sum and Dot Product, 2005):
/// of slivers the products that cancel are larger by far than what is left.
inline Vec3 vectorAreaOf(const Vec3* points, std::size_t count, double scale) {
  double sums[3] = {};
  double rests[3] = {};
  const auto add = [&](int axis, double a, double b) {
    const double product = a * b;
    const double lostOfProduct = std::fma(a, b, -product);
    const double next = sums[axis] + product;
    const double fromProduct = next - sums[axis];
    rests[axis] += (sums[axis] - (next - fromProduct)) + (product - fromProduct) + lostOfProduct;
    sums[axis] = next;
  };
  Vec3 p = scale * points[count - 1];
  for (std::size_t i = 0; i < count; ++i) {
    const Vec3 q = scale * points[i];
    add(0, p.y, q.z);
    add(0, -p.z, q.y);
    add(1, p.z, q.x);
    add(1, -p.x, q.z);
    add(2, p.x, q.y);
    add(2, -p.y, q.x);
    p = q;
  }
  return {sums[0] + rests[0], sums[1] + rests[1], sums[2] + rests[2]};
}

/// Newell's normal through the mean of the corners (I. Sutherland, R. Sproull, R. Schumacker, A
/// Characterization of Ten Hidden-Surface Algorithms, 1974). Corners count from their mean, and
/// lengths in powers of two of the size, so that neither place nor unit matters.
///
/// There is no normal where each component of the vector area is no more than what rounding may
/// leave of nothing: outlines without area and symmetric bow-ties.
inline OutlinePlane outlinePlane(const Vec3* points, std::size_t count) {
  OutlinePlane plane;
  if (count == 0) return plane;
  plane.mean = meanOf(points, count);
  const double scale = scaleOf(points, count, plane.mean);
  if (count < 3 || scale == 0.0) return plane;
  plane.size = scaledDiameter(points, count, plane.mean, scale) / scale;
  Vec3 area;
  Vec3 terms;  // of the products' absolute values
  Vec3 p = scale * (points[count - 1] - plane.mean);
  for (std::size_t i = 0; i < count; ++i) {
    const Vec3 q = scale * (points[i] - plane.mean);
    area = area + cross(p, q);
    terms = terms + Vec3{std::abs(p.y * q.z) + std::abs(p.z * q.y),
                         std::abs(p.z * q.x) + std::abs(p.x * q.z),
                         std::abs(p.x * q.y) + std::abs(p.y * q.x)};
    p = q;
  }
  constexpr double Unit = 1.1102230246251565e-16;  // half a last digit
  const double noise = (static_cast<double>(count) + 8.0) * Unit;
  const bool isArea = std::abs(area.x) > noise * terms.x || std::abs(area.y) > noise * terms.y ||
                      std::abs(area.z) > noise * terms.z;
  if (!isArea) return plane;
  constexpr double Thin = 1e-3;
  // Not so far from the origin that the doubled digits are lost in the place.
  const double place = scale * length3(plane.mean);
  const bool isNear = 1e-16 * place * place < length3(terms);
  if (isNear && length3(area) < Thin * length3(terms)) area = vectorAreaOf(points, count, scale);
  plane.normal = normalise(area).direction;
  return plane;
}

}  // namespace Lumivane::Kernel
