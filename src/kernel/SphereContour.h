#pragma once

#include "kernel/Planar.h"
#include "kernel/Trigonometry.h"
#include "kernel/Vec.h"

#include <algorithm>
#include <cmath>

/// Solid angle and view factor of what is drawn in a picture of the hemisphere, as integrals along
/// its outline: the sum over a closed outline, run counterclockwise, is the measure of its inside.
/// Each integral may be given up to a term of the two ends, which cancels on a closed outline.
namespace Lumivane::Kernel {

/// Height of a point of the unit disc on the hemisphere above it; 0 on the rim and outside.
inline double heightOnHemisphere(Vec2 p) {
  return std::sqrt(std::max(0.0, 1.0 - p.x * p.x - p.y * p.y));
}

/// The direction, with forward as its third coordinate, to a point of the round picture.
inline Vec3 directionOfDisc(Vec2 p) { return {p.x, p.y, heightOnHemisphere(p)}; }

/// Where a direction, of any length but zero, lands in the round picture.
inline Vec2 discOfDirection(Vec3 d) {
  const double length = length3(d);
  return {d.x / length, d.y / length};
}

/// The azimuth and elevation of a direction in radians; 0 for an azimuth that it does not have.
inline Vec2 anglesOfDirection(Vec3 d) {
  return {arcTangent(d.x, d.z), arcTangent(d.y, length2({d.x, d.z}))};
}

/// The direction to a point of azimuth and elevation in radians.
inline Vec3 directionOfAngles(Vec2 p) {
  const double c = cosine(p.y);
  return {c * sine(p.x), sine(p.y), c * cosine(p.x)};
}

/// A straight line of the round picture: signed distance from the centre, which lies to the left of
/// a line with a positive one, and unit direction.
struct DiscLine {
  double distance = 0.0;
  Vec2 direction;
};

inline DiscLine discLine(Vec2 a, Vec2 b) {
  const double length = distance(a, b);
  if (length == 0.0) return {};
  const Vec2 direction = {(b.x - a.x) / length, (b.y - a.y) / length};
  return {flatCross(a, direction), direction};
}

/// Solid angle between the centre and a stretch of a line from a to b, which stands for the circle
/// in which the upright plane through the line cuts the sphere. Signed.
///
/// At the distance d from the centre, s along the line from its foot and z high on the hemisphere
/// it is the integral of (1 - z) d(angle around the centre), with the derivative d (1 - z) / (d^2 +
/// s^2) by s and z^2 = 1 - d^2 - s^2. An antiderivative is d atan(s / z) - (atan(s / d) - atan(s /
/// (d z))); the bracket stands as one angle, which no small d tears apart, and the two ends as
/// another. (1) Near the rim, where z is ill known, the derivative by z vanishes.
inline double lineSolidAngle(const DiscLine& line, Vec2 a, Vec2 b) {
  const double d = line.distance;
  const double s0 = dot(a, line.direction);
  const double s1 = dot(b, line.direction);
  const double z0 = heightOnHemisphere(a);
  const double z1 = heightOnHemisphere(b);
  const double along = arcTangent(s1 * z0 - s0 * z1, z1 * z0 + s1 * s0);
  const Vec2 from = {d * d * z0 + s0 * s0, s0 * d * (1.0 - z0)};
  const Vec2 to = {d * d * z1 + s1 * s1, s1 * d * (1.0 - z1)};
  return d * along - arcTangent(flatCross(from, to), dot(from, to));
}

/// Solid angle between the great circle's arc from a to b and forward, (0, 0, 1): the formula of A.
/// van Oosterom and J. Strackee, The Solid Angle of a Plane Triangle (1983). Signed.
inline double arcTerm(Vec3 a, Vec3 b) {
  return 2.0 * arcTangent(a.x * b.y - a.y * b.x, 1.0 + dot(a, b) + a.z + b.z);
}

/// sin(x) / x.
inline double cardinalSine(double x) {
  return std::abs(x) < 1e-4 ? 1.0 - x * x / 6.0 : sine(x) / x;
}

/// Mean of the sine of an angle that runs evenly from a to b.
inline double meanSine(double a, double b) {
  return sine(0.5 * (a + b)) * cardinalSine(0.5 * (b - a));
}

/// Solid angle between a straight line in azimuth and elevation (radians) and elevation 0: the
/// integral of -sin(elevation) d(azimuth).
inline double angleLineSolidAngle(Vec2 a, Vec2 b) { return -(b.x - a.x) * meanSine(a.y, b.y); }

/// View factor of such a line: the integral of x dy / pi over its orthographic image, with
/// x = cos(elevation) sin(azimuth) and y = sin(elevation).
inline double angleLineViewFactor(Vec2 a, Vec2 b) {
  const double sines = 0.5 * meanSine(a.x, b.x) +
                       0.25 * meanSine(a.x + 2.0 * a.y, b.x + 2.0 * b.y) +
                       0.25 * meanSine(a.x - 2.0 * a.y, b.x - 2.0 * b.y);
  return (b.y - a.y) * sines / Pi;
}

/// As angleLineSolidAngle for the great circle's arc: the spherical excess of a half triangle.
inline double angleArcSolidAngle(Vec2 a, Vec2 b) {
  const double half = 0.5 * (b.x - a.x);
  const double ta = tangent(0.5 * a.y);
  const double tb = tangent(0.5 * b.y);
  return -2.0 * arcTangent(sine(half) * (ta + tb), cosine(half) * (1.0 + ta * tb));
}

/// As angleLineViewFactor for the great circle's arc: J. H. Lambert's sum (Photometria, 1760), half
/// the angle of the arc times the third coordinate of its plane's normal, and the term of the ends.
inline double angleArcViewFactor(Vec2 a, Vec2 b) {
  const Vec3 p = directionOfAngles(a);
  const Vec3 q = directionOfAngles(b);
  const Vec3 normal = cross(p, q);
  const double sine = length3(normal);
  const double angle = arcTangent(sine, dot(p, q));
  const double stretch = sine == 0.0 ? 1.0 : angle / sine;
  return (0.5 * normal.z * stretch + 0.5 * (q.x * q.y - p.x * p.y)) / Pi;
}

}  // namespace Lumivane::Kernel
