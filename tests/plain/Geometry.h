#pragma once

#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

/// The vector arithmetic once more, term by term on plain containers, for comparison.
namespace Lumivane::Plain {

using Vector = std::vector<double>;
using Matrix = std::vector<Vector>;

inline Vector cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline double dot(const Vector& a, const Vector& b) {
  double sum = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) sum = sum + a[i] * b[i];
  return sum;
}

inline double length(const Vector& v) {
  double sum = v[0] * v[0];
  for (std::size_t i = 1; i < v.size(); ++i) sum = sum + v[i] * v[i];
  return std::sqrt(sum);
}

/// Appends the message to `messages` where the length is 0.
inline Vector normalised(const Vector& v, std::string& messages) {
  const double l = std::sqrt(v[1] * v[1] + v[0] * v[0] + v[2] * v[2]);
  if (l != 0.0) return {v[0] / l, v[1] / l, v[2] / l};
  messages += "Zero-length vector cannot be normalized\n";
  return v;
}

inline Vector difference(const Vector& to, const Vector& from) {
  Vector result;
  for (std::size_t i = 0; i < to.size(); ++i) result.push_back(to[i] - from[i]);
  return result;
}

inline Vector normal(const Matrix& polygon, std::string& messages) {
  const Vector u = difference(polygon[1], polygon[0]);
  const Vector v = difference(polygon[2], polygon[1]);
  return normalised(cross(u, v), messages);
}

inline Vector normalReversed(const Matrix& polygon, std::string& messages) {
  const Vector u = difference(polygon[1], polygon[2]);
  const Vector v = difference(polygon[0], polygon[1]);
  return normalised(cross(u, v), messages);
}

inline Vector intersection(const Vector& n, const Vector& p, const Vector& l, const Vector& d) {
  const double numerator = (p[1] - l[1]) * n[1] + (p[0] - l[0]) * n[0] + (p[2] - l[2]) * n[2];
  const double denominator = d[1] * n[1] + d[0] * n[0] + d[2] * n[2];
  const double t = numerator / denominator;
  return {t * d[0] + l[0], t * d[1] + l[1], t * d[2] + l[2]};
}

inline double determinant(const Matrix& a) {
  double sum = a[1][1] * a[0][0] * a[2][2];
  sum = sum + a[1][2] * a[0][1] * a[2][0];
  sum = sum + a[0][2] * a[1][0] * a[2][1];
  sum = sum - a[1][2] * a[0][0] * a[2][1];
  sum = sum - a[0][1] * a[1][0] * a[2][2];
  return sum - a[0][2] * a[1][1] * a[2][0];
}

/// A row vector times a matrix.
inline Vector multiplied(const Vector& v, const Matrix& a) {
  Vector result(3, 0.0);
  for (std::size_t column = 0; column < 3; ++column)
    for (std::size_t row = 0; row < 3; ++row)
      result[column] = result[column] + a[row][column] * v[row];
  return result;
}

/// A point in the frame of two directions; empty, with messages, for a singular one.
inline Vector transformedBack(const Vector& point, const Vector& first, const Vector& second,
                              std::string& messages) {
  const Vector third = normalised(cross(second, first), messages);
  Matrix a(3, Vector(3));
  for (std::size_t i = 0; i < 3; ++i) a[i] = {first[i], third[i], second[i]};
  const double d = determinant(a);
  if (d == 0.0) {
    messages += "Error in get reverse matrix: determinant is 0";
    messages += "Error in multiply vector 1x3 on matrix 3x3: matrix row number is not 3";
    return {};
  }
  for (Vector& row : a)
    for (double& element : row) element = 1.0 / d * element;
  return multiplied(point, a);
}

inline double angleInDegrees(const Vector& a, const Vector& b) {
  const double dotProduct = a[0] * b[0] + 0.0 + a[1] * b[1] + a[2] * b[2];
  const double la = std::sqrt(a[0] * a[0] + 0.0 + a[1] * a[1] + a[2] * a[2]);
  const double lb = std::sqrt(b[0] * b[0] + 0.0 + b[1] * b[1] + b[2] * b[2]);
  if (la == 0.0 || lb == 0.0) return 0.0;
  double c = dotProduct / (lb * la);
  if (std::fabs(c) > 1.0) c = c > 0.0 ? 1.0 : -1.0;
  return std::acos(c) * 57.29577951308232;
}

}  // namespace Lumivane::Plain
