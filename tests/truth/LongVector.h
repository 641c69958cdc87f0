#pragma once

#include <lumivane/visibility/PolygonScene.h>

#include <cmath>

namespace Lumivane::Truth {

/// The arithmetic of the judge: wider than that of the engine it judges.
using Real = long double;

/// A point or direction in wide arithmetic.
struct LongVector {
  Real x = 0.0L;
  Real y = 0.0L;
  Real z = 0.0L;
};

inline LongVector wide(const Visibility::Vector& v) { return {v[0], v[1], v[2]}; }
inline Visibility::Vector narrow(const LongVector& v) {
  return {static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z)};
}
inline LongVector operator+(const LongVector& a, const LongVector& b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline LongVector operator-(const LongVector& a, const LongVector& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline LongVector operator*(const LongVector& a, Real factor) {
  return {a.x * factor, a.y * factor, a.z * factor};
}
inline Real dot(const LongVector& a, const LongVector& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline LongVector cross(const LongVector& a, const LongVector& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline Real length(const LongVector& a) { return std::sqrt(dot(a, a)); }
inline LongVector unit(const LongVector& a) { return a * (1.0L / length(a)); }
inline Real determinant(const LongVector& a, const LongVector& b, const LongVector& c) {
  return dot(cross(a, b), c);
}
/// From 0 to pi, and as good for tiny angles as for large ones.
inline Real angleBetween(const LongVector& a, const LongVector& b) {
  return std::atan2(length(cross(a, b)), dot(a, b));
}
/// A unit vector at right angles to a unit vector.
inline LongVector anyNormalTo(const LongVector& a) {
  const bool xIsSmall = std::fabs(a.x) < 0.6L;
  return unit(cross(a, xIsSmall ? LongVector{1, 0, 0} : LongVector{0, 1, 0}));
}
/// The point of the scene as the eye sees it: rounded once, which makes it the exact input.
inline LongVector fromEye(const Visibility::Vector& point, const Visibility::Vector& eye) {
  return {point[0] - eye[0], point[1] - eye[1], point[2] - eye[2]};
}

constexpr Real Pi = 3.141592653589793238462643383279502884L;

}  // namespace Lumivane::Truth
