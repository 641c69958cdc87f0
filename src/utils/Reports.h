#pragma once

#include "kernel/Frame.h"
#include "kernel/Vec.h"
#include "utils/Shapes.h"

#include <lumivane/cmd/Log.h>

/// The messages of the maths layer that loops over kernels owe as well: the public operations and
/// the loops print them through these helpers, with the same text and equally often.
namespace Lumivane::Utils {

inline void reportZeroLengthVector() {
  Cmd::logMessage("Zero-length vector cannot be normalized\n");
}

/// The unit vector, with its message if it has none; that is what getNormalizedVector3D,
/// getPolygonNormal3D and getPolygonNormalReversed3D do.
inline Kernel::Vec3 reported(const Kernel::Normalised& vector) {
  if (vector.zeroLength) reportZeroLengthVector();
  return vector.direction;
}

inline void reportZeroDeterminant() {
  Cmd::logMessage("Error in get reverse matrix: determinant is 0");
}

inline void reportMatrixWithoutThreeRows() {
  Cmd::logMessage("Error in multiply vector 1x3 on matrix 3x3: matrix row number is not 3");
}

/// One point into the frame, with all messages that getPointTransformedBack3D prints for it.
///
/// \throws std::out_of_range "invalid vector subscript" after the messages of a singular frame,
///         where the public operation returns an empty vector and its user then reads from it
inline Kernel::Vec3 reportedTransformedBack(Kernel::Vec3 point, const Kernel::BackFrame& frame) {
  if (frame.thirdHasNoLength) reportZeroLengthVector();
  if (!frame.singular) return Kernel::transformedBack(point, frame);
  reportZeroDeterminant();
  reportMatrixWithoutThreeRows();
  throwInvalidSubscript();
}

}  // namespace Lumivane::Utils
