#pragma once

#include <lumivane/export.h>

#include <vector>

namespace Lumivane::Utils {

/// Arithmetic of 3 by 3 matrices and of vectors on plain containers. A matrix is a list of rows;
/// a vector stands on its left, as a row.
///
/// No operation throws for the shape of its arguments: where one is wrong, a message goes to the
/// console log (without a line end) and the result is empty.
class LUMIVANE_EXPORT MatrixUtils {
 public:
  /// The product of a row vector and a matrix.
  ///
  /// \param v  3 elements
  /// \param m  3 rows of 3
  /// \return 3 elements; empty, with a message, on a wrong shape
  static std::vector<double> multiplyVector3OnMatrix3(std::vector<double> v,
                                                      std::vector<std::vector<double>> m);

  /// \return the determinant of a matrix of 3 rows of 3; 0.0 on a wrong shape, without a message
  static double getDeterminant3(std::vector<std::vector<double>> m);

  /// The matrix of algebraic complements, but for one element: that of row 0, column 1 is
  /// -(m22 * m10 - m20 - m12), with a subtraction where a product would be.
  ///
  /// \return 3 rows of 3; empty, with a message, unless m has 3 rows of 3
  static std::vector<std::vector<double>> getMatrixOfAlgebraicComplements3(
      std::vector<std::vector<double>> m);

  /// \return m with rows and columns exchanged; empty, with a message, unless m has 3 rows of 3
  static std::vector<std::vector<double>> getTransposedMatrix3(std::vector<std::vector<double>> m);

  /// \return each element times s; any shape is taken and kept
  static std::vector<std::vector<double>> getMatrixMultipliedOnScalar3(
      std::vector<std::vector<double>> m, double s);

  /// \return each element times s; any size is taken
  static std::vector<double> getVectorMultipliedOnScalar(std::vector<double> v, double s);

  /// \return each element divided by s; v unchanged if s is exactly 0.0. Any size is taken
  static std::vector<double> getVectorDividedOnScalar(std::vector<double> v, double s);

  /// A matrix divided by its determinant. In spite of the name this is not the inverse, except for
  /// special matrices such as the identity; for a rotation it is the rotation itself.
  ///
  /// \return 3 rows of 3; empty, with a message, if the determinant is exactly 0.0, as it is for a
  ///         wrong shape
  static std::vector<std::vector<double>> getReversedMatrix3(std::vector<std::vector<double>> m);
};

}  // namespace Lumivane::Utils
