#pragma once

#include "kernel/Matrix3.h"
#include "kernel/Vec.h"

/// The way of points into a local frame that two directions span.
namespace Lumivane::Kernel {

/// What every point of one frame shares, made once. Where a transformation makes it for each
/// point, its messages are due for each point (see utils/Reports.h).
struct BackFrame {
  Matrix3 reversed;               ///< meaningless if `singular`
  bool thirdHasNoLength = false;  ///< first and second are parallel: no third direction
  bool singular = false;          ///< the determinant is exactly 0: no point can be transformed
};

/// The frame of the directions `first` and `second`; the third is the unit vector of second x
/// first.
///
/// Deliberate: the matrix of columns first, third, second is divided by its determinant and not
/// inverted. For orthonormal directions this is the frame itself. A determinant that is not a
/// number passes as one that is not 0.
inline BackFrame backFrame(Vec3 first, Vec3 second) {
  const Normalised third = normalise(cross(second, first));
  const Matrix3 columns = transposed(matrixOfRows(first, third.direction, second));
  const double d = determinant(columns);
  if (d == 0.0) return {columns, third.zeroLength, true};
  return {scaled(columns, 1.0 / d), third.zeroLength, false};
}

/// The coordinates of a point along the first, third and second direction of a frame that is not
/// singular.
inline Vec3 transformedBack(Vec3 point, const BackFrame& frame) {
  return multiply(point, frame.reversed);
}

}  // namespace Lumivane::Kernel
