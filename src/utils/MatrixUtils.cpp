#include "kernel/Matrix3.h"
#include "utils/Reports.h"
#include "utils/Shapes.h"

#include <lumivane/cmd/Log.h>
#include <lumivane/utils/MatrixUtils.h>

#include <algorithm>
#include <cstddef>

// Operations on matrices as lists of rows. Sizes are checked here, with the messages that are
// promised; the arithmetic is the kernel's.
namespace Lumivane::Utils {
namespace {

using Vector = std::vector<double>;
using Matrix = std::vector<Vector>;

bool hasRowsOf3(const Matrix& m) {
  return std::all_of(m.begin(), m.end(), [](const Vector& row) { return row.size() == 3; });
}

bool is3By3(const Matrix& m) { return m.size() == 3 && hasRowsOf3(m); }

Kernel::Matrix3 toMatrix3(const Matrix& m) {
  return Kernel::matrixOfRows(toVec3(m[0]), toVec3(m[1]), toVec3(m[2]));
}

Matrix toMatrix(const Kernel::Matrix3& m) {
  Matrix result;
  for (const auto& row : m.a) result.emplace_back(row, row + 3);
  return result;
}

}  // namespace

Vector MatrixUtils::multiplyVector3OnMatrix3(Vector v, Matrix m) {
  if (v.size() != 3) {
    Cmd::logMessage("Error in multiply vector 1x3 on matrix 3x3: Vector size is not 3");
    return {};
  }
  if (m.size() != 3) {
    reportMatrixWithoutThreeRows();
    return {};
  }
  if (!hasRowsOf3(m)) {
    Cmd::logMessage(
        "Error in multiply vector 1x3 on matrix 3x3: matrix have row with not 3 columns");
    return {};
  }
  return toVector(Kernel::multiply(toVec3(v), toMatrix3(m)));
}

double MatrixUtils::getDeterminant3(Matrix m) {
  return is3By3(m) ? Kernel::determinant(toMatrix3(m)) : 0.0;
}

Matrix MatrixUtils::getMatrixOfAlgebraicComplements3(Matrix m) {
  if (m.size() != 3) {
    Cmd::logMessage("Error in get matrix of algebraic complements: row number is not 3");
    return {};
  }
  if (!hasRowsOf3(m)) {
    Cmd::logMessage("Error in get matrix of algebraic complements: one row have not 3 columns");
    return {};
  }
  return toMatrix(Kernel::algebraicComplements(toMatrix3(m)));
}

Matrix MatrixUtils::getTransposedMatrix3(Matrix m) {
  if (m.size() != 3) {
    Cmd::logMessage("Error in get transposed matrix: row number is not 3");
    return {};
  }
  if (!hasRowsOf3(m)) {
    Cmd::logMessage("Error in get transposed matrix: one row have not 3 columns");
    return {};
  }
  return toMatrix(Kernel::transposed(toMatrix3(m)));
}

Matrix MatrixUtils::getMatrixMultipliedOnScalar3(Matrix m, double s) {
  for (Vector& row : m)
    for (double& element : row) element = s * element;
  return m;
}

Vector MatrixUtils::getVectorMultipliedOnScalar(Vector v, double s) {
  for (double& element : v) element = s * element;
  return v;
}

Vector MatrixUtils::getVectorDividedOnScalar(Vector v, double s) {
  if (s == 0.0) return v;
  for (double& element : v) element = element / s;
  return v;
}

// Deliberate: m itself is divided by its determinant. Its transposed complements, which an inverse
// would take instead, have no part in the result, and a matrix with a determinant has them.
Matrix MatrixUtils::getReversedMatrix3(Matrix m) {
  const double determinant = getDeterminant3(m);
  if (determinant == 0.0) {
    reportZeroDeterminant();
    return {};
  }
  return getMatrixMultipliedOnScalar3(m, 1.0 / determinant);
}

}  // namespace Lumivane::Utils
