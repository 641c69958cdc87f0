#pragma once

#include "kernel/Vec.h"

#include <algorithm>
#include <cmath>

/// Vectors from the eye to points of the scene, and edges that pass so close by the eye that their
/// ends lie in all but opposite directions.
namespace Lumivane::Visibility {

/// The same direction, of a length whose third powers are within the range of a double.
inline Kernel::Vec3 inRange(Kernel::Vec3 v) {
  const double greatest = std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)});
  if ((greatest > 0x1p-300 && greatest < 0x1p300) || greatest == 0.0) return v;
  const int scale = -std::ilogb(greatest);
  return {std::scalbn(v.x, scale), std::scalbn(v.y, scale), std::scalbn(v.z, scale)};
}

inline bool isWide(Kernel::Vec3 a, Kernel::Vec3 b, double cosine) {
  return cosine < 0.0 && cosine * cosine > 0.93 * (Kernel::dot(a, a) * Kernel::dot(b, b));
}

/// Whether the ends of an edge, as vectors from the eye, are more than about 165 degrees apart. The
/// two do not say well which way the edge goes round the eye.
inline bool isWide(Kernel::Vec3 a, Kernel::Vec3 b) {
  const double cosine = Kernel::dot(a, b);
  if (cosine >= 0x1p-500) return false;
  if (cosine > -0x1p-500 || cosine < -0x1p500) {
    const Kernel::Vec3 p = inRange(a);
    const Kernel::Vec3 q = inRange(b);
    return isWide(p, q, Kernel::dot(p, q));
  }
  return isWide(a, b, cosine);
}

/// a b - c d, off by two units of its last place at most (W. Kahan; C.-P. Jeannerod, N. Louvet and
/// J.-M. Muller, Further Analysis of Kahan's Algorithm for the Accurate Computation of 2x2
/// Determinants, 2013).
inline double differenceOfProducts(double a, double b, double c, double d) {
  const double product = c * d;
  const double lost = std::fma(-c, d, product);
  return std::fma(a, b, -product) + lost;
}

/// a x b, each coordinate off by two units of its last place at most, however small the angle is.
inline Kernel::Vec3 exactCross(Kernel::Vec3 a, Kernel::Vec3 b) {
  return {differenceOfProducts(a.y, b.z, a.z, b.y), differenceOfProducts(a.z, b.x, a.x, b.z),
          differenceOfProducts(a.x, b.y, a.y, b.x)};
}

/// The direction, not of unit length, of the point of a wide edge that is nearest to the eye; zero
/// if the edge runs through the eye. It is as exact as doubles are, however near the eye.
inline Kernel::Vec3 nearestOfWide(Kernel::Vec3 a, Kernel::Vec3 b) {
  const Kernel::Vec3 p = inRange(a);
  const Kernel::Vec3 q = inRange(b);
  return inRange(Kernel::cross(inRange(b - a), inRange(exactCross(p, q))));
}

/// Whether an edge runs through the eye.
inline bool isOnWide(Kernel::Vec3 a, Kernel::Vec3 b) {
  return isWide(a, b) && nearestOfWide(a, b) == Kernel::Vec3{};
}

}  // namespace Lumivane::Visibility
