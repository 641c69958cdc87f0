// On a small circle around the pole the distance from a plane is A + B cos(H - H0): its extremes,
// at H0 and half a turn on, part the roots. The path is all but such a circle. So the extremes are
// corrected on the path itself, where the derivative vanishes, and between two of them a root is
// bracketed or is not there.
#include "measure/SunCrossings.h"

#include "kernel/Planar.h"
#include "kernel/Trigonometry.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Lumivane::Measure {
namespace {

using Kernel::dot;
using Kernel::Pi;
using Kernel::Vec3;

constexpr double Degree = Pi / 180.0;
constexpr double TurnsPerSecond = 1.0 / 86400.0;  // of the sun, to a thousandth
constexpr double Finest = 1e-4;                   // seconds that a root is found to

// What the path may be off a small circle with its middle declination: half a day's change of that,
// the equation of time and the parallax.
constexpr double Reserve = 0.02;

// Up to which cosine of the hour angle between them roots are clearly apart from extremes.
double farRatio(const SunCrossings::Plane& plane) {
  return 1.0 - 4.0 * Reserve * (1.0 + std::abs(plane.ratio));
}

}  // namespace

SunCrossings::SunCrossings(const SunPath& thePath) : path(thePath) {
  const Visibility::Vector n = path.north();
  const Vec3 north = {n[0], n[1], n[2]};
  const Vec3 up = {0.0, 0.0, 1.0};
  const double s = Kernel::sine(path.place().latitude * Degree);
  const double c = Kernel::cosine(path.place().latitude * Degree);
  pole = c * north + s * up;
  meridian = c * up - s * north;
  west = Kernel::cross(up, north);
}

Vec3 SunCrossings::direction(double moment) const {
  const Visibility::Vector d = path.direction(moment);
  return {d[0], d[1], d[2]};
}

SunCrossings::Span SunCrossings::span(double from, double to) const {
  Span result;
  result.from = from;
  result.to = to;
  const SunPosition middle = path.position(0.5 * (from + to));
  result.hourAngle = middle.hourAngle;
  result.tangent = Kernel::tangent(middle.declination);
  result.lowestSine = Kernel::sine(middle.declination) - Reserve;
  result.highestSine = Kernel::sine(middle.declination) + Reserve;
  return result;
}

SunCrossings::Plane SunCrossings::plane(Vec3 normal) const {
  const double toMeridian = dot(normal, meridian);
  const double toWest = dot(normal, west);
  Plane result;
  result.normal = normal;
  result.extreme = Kernel::arcTangent(toWest, toMeridian);
  result.ratio = dot(normal, pole) / std::hypot(toMeridian, toWest);
  return result;
}

double SunCrossings::momentOf(const Span& span, double hourAngle) const {
  return 0.5 * (span.from + span.to) + (hourAngle - span.hourAngle) / (2.0 * Pi * TurnsPerSecond);
}

// Where the derivative by time vanishes: it does so all but linearly.
double SunCrossings::extremeNear(Vec3 normal, double moment) const {
  constexpr double Step = 30.0;
  const auto slope = [&](double at) {
    return dot(normal, direction(at + Step)) - dot(normal, direction(at - Step));
  };
  double a = moment - 120.0;
  double b = moment + 120.0;
  double slopeA = slope(a);
  double slopeB = slope(b);
  for (int i = 0; i < 3 && slopeA != slopeB; ++i) {
    const double next = b - slopeB * (b - a) / (slopeB - slopeA);
    if (!(std::abs(next - moment) < 3600.0)) break;
    a = b;
    slopeA = slopeB;
    b = next;
    slopeB = slope(b);
  }
  return b;
}

// Regula falsi after M. Dowell and P. Jarratt (Illinois), whose steps shrink both ends.
double SunCrossings::root(Vec3 normal, double level, double from, double valueFrom, double to,
                          double valueTo) const {
  for (int i = 0; i < 100 && to - from > Finest; ++i) {
    double at = (from * valueTo - to * valueFrom) / (valueTo - valueFrom);
    // A step to the very end makes no progress.
    const double inner = std::min(0.25 * Finest, 0.25 * (to - from));
    at = std::clamp(at, from + inner, to - inner);
    const double value = dot(normal, direction(at)) - level;
    if ((value < 0.0) == (valueTo < 0.0)) {
      to = at;
      valueTo = value;
      valueFrom *= 0.5;
    } else {
      from = at;
      valueFrom = value;
      valueTo *= 0.5;
    }
  }
  return 0.5 * (from + to);
}

void SunCrossings::addRoots(const Span& span, const Plane& plane, double level,
                            std::vector<double>& moments) const {
  std::vector<double> ends(1, span.from);
  const double firstAngle = span.hourAngle + (span.from - span.to) * Pi * TurnsPerSecond;
  const double half = std::ceil((firstAngle - plane.extreme) / Pi - 0.1);
  // Far from the roots an extreme parts them wherever it is exactly.
  const bool isFar = level == 0.0 && std::abs(span.tangent * plane.ratio) < farRatio(plane);
  for (int k = 0; k < 4; ++k) {
    const double moment = momentOf(span, plane.extreme + (half + k) * Pi);
    if (moment > span.to + 3600.0) break;
    const double extreme = isFar ? moment : extremeNear(plane.normal, moment);
    if (extreme > ends.back() && extreme < span.to) ends.push_back(extreme);
  }
  ends.push_back(span.to);
  double from = ends[0];
  double valueFrom = dot(plane.normal, direction(from)) - level;
  for (size_t i = 1; i < ends.size(); ++i) {
    const double value = dot(plane.normal, direction(ends[i])) - level;
    if ((value < 0.0) != (valueFrom < 0.0))
      moments.push_back(root(plane.normal, level, from, valueFrom, ends[i], value));
    from = ends[i];
    valueFrom = value;
  }
}

std::pair<double, double> SunCrossings::declinations(Vec3 a, Vec3 b) const {
  const double sineA = dot(pole, a);
  const double sineB = dot(pole, b);
  double low = std::min(sineA, sineB);
  double high = std::max(sineA, sineB);
  // The circle's own extreme, if it lies on the arc.
  const Vec3 normal = Kernel::cross(a, b);
  const double square = dot(normal, normal);
  if (square > 0.0) {
    const Vec3 nearest = pole - (dot(pole, normal) / square) * normal;
    const double length = Kernel::length3(nearest);
    const auto isOnArc = [&](Vec3 p) {
      return dot(Kernel::cross(normal, a), p) >= 0.0 && dot(Kernel::cross(b, normal), p) >= 0.0;
    };
    if (isOnArc(nearest)) high = std::max(high, length);
    if (isOnArc(-nearest)) low = std::min(low, -length);
  }
  return {low, high};
}

bool SunCrossings::mayMeet(const Span& span, const Plane& plane, Vec3 a, Vec3 b) const {
  const double c = -span.tangent * plane.ratio;
  if (!std::isfinite(c)) return true;
  // Within the reserve: whether there is a root hangs on the path itself.
  if (std::abs(c) > farRatio(plane))
    return std::abs(c) < 1.0 + 4.0 * Reserve * (1.0 + std::abs(plane.ratio));
  const double angle = Kernel::arcTangent(std::sqrt(1.0 - c * c), c);
  // How far a root may be along the circle from where it is thought: the flatter they meet, the
  // further.
  const double slack = 4.0 * Reserve * (1.0 + std::abs(plane.ratio)) / std::sqrt(1.0 - c * c);
  if (slack > 0.5) return true;
  const double across = 1.0 / std::sqrt(1.0 + span.tangent * span.tangent);
  const Vec3 normal = (1.0 / Kernel::length3(plane.normal)) * plane.normal;
  const Vec3 besideA = Kernel::cross(normal, a);
  const Vec3 besideB = Kernel::cross(b, normal);
  for (const double sign : {-1.0, 1.0}) {
    const double h = plane.extreme + sign * angle;
    const Vec3 at = across * (Kernel::cosine(h) * meridian + Kernel::sine(h) * west) +
                    (across * span.tangent) * pole;
    if (dot(besideA, at) >= -slack && dot(besideB, at) >= -slack) return true;
  }
  return false;
}

}  // namespace Lumivane::Measure
