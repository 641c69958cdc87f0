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

  /// The determinant of a matrix.
  ///
  /// \param m  3 rows of 3
  /// \return 0.0 on a wrong shape, without a message
  static double getDeterminant3(std::vector<std::vector<double>> m);

  /// The matrix of algebraic complements, but for one element: that of row 0, column 1 is
  /// -(m22 * m10 - m20 - m12), with a subtraction where a product would be.
  ///
  /// \param m  3 rows of 3
  /// \return 3 rows of 3; empty, with a message, on a wrong shape
  static std::vector<std::vector<double>> getMatrixOfAlgebraicComplements3(
      std::vector<std::vector<double>> m);

  /// The matrix with rows and columns exchanged.
  ///
  /// \param m  3 rows of 3
  /// \return 3 rows of 3; empty, with a message, on a wrong shape
  static std::vector<std::vector<double>> getTransposedMatrix3(std::vector<std::vector<double>> m);

  /// Each element times s, in spite of the name for a matrix of any shape, which is kept.
  static std::vector<std::vector<double>> getMatrixMultipliedOnScalar3(
      std::vector<std::vector<double>> m, double s);

  /// Each element times s, for a vector of any size.
  static std::vector<double> getVectorMultipliedOnScalar(std::vector<double> v, double s);

  /// Each element divided by s, for a vector of any size; the vector unchanged, without a message,
  /// if s is exactly 0.0.
  static std::vector<double> getVectorDividedOnScalar(std::vector<double> v, double s);

  /// A matrix divided by its determinant. In spite of the name this is not the inverse, except for
  /// special matrices such as the identity; for a rotation it is the rotation itself.
  ///
  /// \return 3 rows of 3; empty, with a message, if the determinant is exactly 0.0, as it is for a
  ///         wrong shape
  static std::vector<std::vector<double>> getReversedMatrix3(std::vector<std::vector<double>> m);
};

}  // namespace Lumivane::Utils
