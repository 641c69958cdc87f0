#pragma once

#include "kernel/Vec.h"

#include <cstddef>

/// Matrices of 3 by 3. Vectors stand on the left of a matrix, as rows.
namespace Lumivane::Kernel {

struct Matrix3 {
  double a[3][3] = {};  ///< rows of columns
};

inline Matrix3 matrixOfRows(Vec3 row0, Vec3 row1, Vec3 row2) {
  return {{{row0.x, row0.y, row0.z}, {row1.x, row1.y, row1.z}, {row2.x, row2.y, row2.z}}};
}

inline Vec3 multiply(Vec3 v, const Matrix3& m) {
  const auto& a = m.a;
  return {0.0 + a[0][0] * v.x + a[1][0] * v.y + a[2][0] * v.z,
          0.0 + a[0][1] * v.x + a[1][1] * v.y + a[2][1] * v.z,
          0.0 + a[0][2] * v.x + a[1][2] * v.y + a[2][2] * v.z};
}

inline double determinant(const Matrix3& m) {
  const auto& a = m.a;
  return a[1][1] * a[0][0] * a[2][2] + a[1][2] * a[0][1] * a[2][0] + a[0][2] * a[1][0] * a[2][1] -
         a[1][2] * a[0][0] * a[2][1] - a[0][1] * a[1][0] * a[2][2] - a[0][2] * a[1][1] * a[2][0];
}

inline Matrix3 transposed(const Matrix3& m) {
  Matrix3 result;
  for (std::size_t row = 0; row < 3; ++row)
    for (std::size_t column = 0; column < 3; ++column) result.a[row][column] = m.a[column][row];
  return result;
}

inline Matrix3 scaled(const Matrix3& m, double s) {
  Matrix3 result;
  for (std::size_t row = 0; row < 3; ++row)
    for (std::size_t column = 0; column < 3; ++column) result.a[row][column] = s * m.a[row][column];
  return result;
}

inline Matrix3 algebraicComplements(const Matrix3& m) {
  const auto& a = m.a;
  Matrix3 result;
  auto& c = result.a;
  c[0][0] = a[2][2] * a[1][1] - a[1][2] * a[2][1];
  // Deliberate: two subtractions, where the other elements subtract a product.
  c[0][1] = -(a[2][2] * a[1][0] - a[2][0] - a[1][2]);
  c[0][2] = a[2][1] * a[1][0] - a[1][1] * a[2][0];
  c[1][0] = -(a[2][2] * a[0][1] - a[0][2] * a[2][1]);
  c[1][1] = a[2][2] * a[0][0] - a[0][2] * a[2][0];
  c[1][2] = -(a[2][1] * a[0][0] - a[0][1] * a[2][0]);
  c[2][0] = a[1][2] * a[0][1] - a[0][2] * a[1][1];
  c[2][1] = -(a[1][2] * a[0][0] - a[0][2] * a[1][0]);
  c[2][2] = a[1][1] * a[0][0] - a[0][1] * a[1][0];
  return result;
}

}  // namespace Lumivane::Kernel
