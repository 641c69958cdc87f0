#pragma once

#include "kernel/Angle.h"
#include "kernel/Vec.h"

#include <cmath>

/// The hemisphere in front of the eye, carried onto the plane.
///
/// Camera coordinates are x along the frame's first direction (to the left of the picture), y along
/// its third (upward) and z along the forward direction, of any length. The degrees in the middle
/// of the formulas are part of them: the results are promised to the bit.
namespace Lumivane::Kernel {

/// Onto the unit disc: a direction at the angle t from forward lands sin t from the centre
/// (orthographic azimuthal projection). The eye itself lands at the top of the rim.
inline Vec2 planePointRadial(Vec3 camera) {
  const auto [x, y, z] = camera;
  double cosine = 0.0;
  double sine = 0.0;
  if (!(x == 0.0 && y == 0.0)) {
    const double h = std::sqrt(y * y + x * x);
    cosine = x / h;
    sine = y / h;
  }
  double forwardCosine = 0.0;
  if (!(x == 0.0 && y == 0.0 && z == 0.0)) {
    forwardCosine = z / std::sqrt(y * y + x * x + z * z);
  }
  const double around = toDegrees(std::acos(cosine));
  const double phi = toRadians(sine >= 0.0 ? around : 360.0 - around);
  const double theta = toRadians(toDegrees(std::acos(forwardCosine)));
  return {-std::cos(phi) * std::sin(theta), std::sin(theta) * std::sin(phi)};
}

/// Onto the square from -1 to 1: azimuth and elevation, 90 degrees to 1. What lies behind the eye
/// is clamped to the left and right sides.
///
/// Deliberate: a point exactly in the plane of the third and the forward direction has the azimuth
/// 90, so that it lands on the left side of the square and not on its centre line.
inline Vec2 planePointSquare(Vec3 camera) {
  const auto [x, y, z] = camera;
  double azimuthCosine = 1.0;
  double azimuthSine = 0.0;
  if (!(x == 0.0 && z == 0.0)) {
    const double h = std::sqrt(z * z + x * x);
    azimuthCosine = z / h;
    azimuthSine = x / h;
  }
  double elevationCosine = 1.0;
  double elevationSine = 0.0;
  if (!(x == 0.0 && y == 0.0 && z == 0.0)) {
    const double g = std::sqrt(y * y + x * x + z * z);
    elevationCosine = std::sqrt(z * z + x * x) / g;
    elevationSine = y / g;
  }

  double azimuth = 90.0;
  if (azimuthSine != 0.0) {
    azimuth = toDegrees(std::acos(azimuthCosine));
    if (azimuthSine < 0.0) azimuth = -azimuth;
  }
  double elevation = toDegrees(std::acos(elevationCosine));
  if (elevationSine < 0.0) elevation = -elevation;

  if (azimuth < -90.0) azimuth = -90.0;
  if (azimuth > 90.0) azimuth = 90.0;
  return {-azimuth / 90.0, elevation / 90.0};
}

}  // namespace Lumivane::Kernel
