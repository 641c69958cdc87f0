#pragma once

#include <cmath>

/// Vectors of fixed size and the arithmetic on them. The order of the terms is part of every
/// formula here: results are equal to the bit to those of the operations on plain containers.
namespace Lumivane::Kernel {

struct Vec2 {
  double x = 0.0;
  double y = 0.0;
};

struct Vec3 {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

inline bool operator==(Vec2 a, Vec2 b) { return a.x == b.x && a.y == b.y; }
inline bool operator!=(Vec2 a, Vec2 b) { return !(a == b); }
inline bool operator==(Vec3 a, Vec3 b) { return a.x == b.x && a.y == b.y && a.z == b.z; }
inline bool operator!=(Vec3 a, Vec3 b) { return !(a == b); }

inline Vec2 operator+(Vec2 a, Vec2 b) { return {a.x + b.x, a.y + b.y}; }
inline Vec2 operator-(Vec2 a, Vec2 b) { return {a.x - b.x, a.y - b.y}; }
inline Vec2 operator*(double s, Vec2 v) { return {s * v.x, s * v.y}; }

inline Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 operator-(Vec3 v) { return {-v.x, -v.y, -v.z}; }
inline Vec3 operator*(double s, Vec3 v) { return {s * v.x, s * v.y, s * v.z}; }

/// v divided by s; v itself if s is exactly 0.
inline Vec3 dividedOrSame(Vec3 v, double s) {
  return s == 0.0 ? v : Vec3{v.x / s, v.y / s, v.z / s};
}

inline Vec3 cross(Vec3 a, Vec3 b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// The sum starts from 0.0, so it is never -0.
inline double dot(Vec3 a, Vec3 b) { return 0.0 + a.x * b.x + a.y * b.y + a.z * b.z; }
inline double dot(Vec2 a, Vec2 b) { return 0.0 + a.x * b.x + a.y * b.y; }

inline double length2(Vec2 v) { return std::sqrt(v.x * v.x + v.y * v.y); }

/// The length as lengths are asked for: squares in the order x, y, z.
inline double length3(Vec3 v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }

/// The length that a vector is normalised by: squares in the order y, x, z.
inline double normalisingLength3(Vec3 v) { return std::sqrt(v.y * v.y + v.x * v.x + v.z * v.z); }

inline double distance(Vec2 a, Vec2 b) { return length2(b - a); }
inline double distance(Vec3 a, Vec3 b) { return length3(b - a); }

/// A vector of length 1, or the vector itself where its length is exactly 0: then a message is
/// due (see utils/Reports.h).
struct Normalised {
  Vec3 direction;
  bool zeroLength = false;
};

inline Normalised normalise(Vec3 v) {
  const double length = normalisingLength3(v);
  if (length == 0.0) return {v, true};
  return {{v.x / length, v.y / length, v.z / length}, false};
}

}  // namespace Lumivane::Kernel
