#pragma once

#include "kernel/Vec.h"

/// Signs of sums of products of doubles, never wrong.
///
/// How: first in plain doubles, with a proven bound on their error; where that cannot decide, in
/// expansions, sums of doubles that do not overlap (J. R. Shewchuk, Adaptive Precision
/// Floating-Point Arithmetic and Fast Robust Geometric Predicates, 1997); and where numbers are so
/// large or small that an expansion might leave the range of a double, in whole numbers of any
/// length.
///
/// Properties, for all finite doubles, denormal ones included:
///   E1  the sign is that of the exact value of the formula: no rounding, overflow or underflow
///   E2  so it changes with the order of two arguments as the formula does, to the last case:
///       orientation(a, b, c) == orientation(b, c, a) == -orientation(b, a, c)
///   E3  it is the same for arguments multiplied by positive powers of two
///   E4  it is the same on every machine and with every compiler that keeps to IEEE doubles
namespace Lumivane::Kernel {

/// The sign of a[0] b[0] + ... + a[count - 1] b[count - 1]: -1, 0 or 1.
/// \pre all numbers are finite, and 0 <= count <= 8
int signOfSumOfProducts(const double* a, const double* b, int count);

/// The sign of det(a, b, c): 1 if the three directions turn counter-clockwise as seen from the
/// side to which they point, that is if c lies on the side of the plane of a and b to which
/// cross(a, b) points. \pre all numbers are finite
int orientation(Vec3 a, Vec3 b, Vec3 c);

/// The sign of the inner product. \pre all numbers are finite
inline int signOfDot(Vec3 a, Vec3 b) {
  const double x[3] = {a.x, a.y, a.z};
  const double y[3] = {b.x, b.y, b.z};
  return signOfSumOfProducts(x, y, 3);
}

/// The sign of (a - b).d, the difference not rounded. \pre all numbers are finite
inline int signOfDifferenceDot(Vec3 a, Vec3 b, Vec3 d) {
  const double x[6] = {a.x, a.y, a.z, -b.x, -b.y, -b.z};
  const double y[6] = {d.x, d.y, d.z, d.x, d.y, d.z};
  return signOfSumOfProducts(x, y, 6);
}

}  // namespace Lumivane::Kernel
