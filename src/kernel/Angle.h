#pragma once

#include "kernel/Planar.h"
#include "kernel/Vec.h"

#include <cmath>

/// Angles, and the rounding that goes with them.
namespace Lumivane::Kernel {

inline constexpr double DegreesPerRadian = 57.29577951308232;

inline double toDegrees(double radians) { return radians * DegreesPerRadian; }
inline double toRadians(double degrees) { return degrees * Pi / 180.0; }

/// `value` rounded to 1 to 6 decimals, halves away from zero; more digits count as 6, and with 0
/// or fewer the value comes back as it is.
inline double roundD(double value, int digits) {
  constexpr double scales[] = {10.0, 100.0, 1000.0, 10000.0, 100000.0, 1000000.0};
  if (digits <= 0) return value;
  const double scale = scales[digits > 6 ? 5 : digits - 1];
  return std::round(scale * value) / scale;
}

/// The angle between two directions of any length, in degrees from 0 to 180, not rounded; 0 if
/// either has length 0.
///
/// acos of the normalised dot product. Near 0 and 180 degrees it is off by up to 2e-6 degree (why:
/// Kahan, "Miscalculating Area and Angles of a Needle-like Triangle"); thresholds here are coarser.
/// (1) Swapping a and b keeps every bit.
inline double angleDegrees(Vec3 a, Vec3 b) {
  const double dotProduct = a.x * b.x + 0.0 + a.y * b.y + a.z * b.z;
  const double lengthA = std::sqrt(a.x * a.x + 0.0 + a.y * a.y + a.z * a.z);
  const double lengthB = std::sqrt(b.x * b.x + 0.0 + b.y * b.y + b.z * b.z);
  if (lengthA == 0.0 || lengthB == 0.0) return 0.0;

  double cosine = dotProduct / (lengthB * lengthA);
  if (std::abs(cosine) > 1.0) cosine = cosine > 0.0 ? 1.0 : -1.0;  // rounding can pass 1
  return std::acos(cosine) * DegreesPerRadian;
}

}  // namespace Lumivane::Kernel
