#include "algorithm/pipeline/TypeProjection.h"

#include <lumivane/session/ViewSettings.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <utility>

namespace Lumivane::Session {
namespace {

// Below this sine of the angle between forward and up, "right" would be rounding noise.
constexpr double LeastSine = 1e-12;

std::string text(double number) {
  std::ostringstream stream;
  stream << number;
  return stream.str();
}

std::string text(const Vector& v) { return text(v[0]) + "," + text(v[1]) + "," + text(v[2]); }

bool isFinite(const Vector& v) {
  return std::all_of(v.begin(), v.end(), [](double value) { return std::isfinite(value); });
}

bool isZero(const Vector& v) {
  return std::all_of(v.begin(), v.end(), [](double value) { return value == 0.0; });
}

// Scaled first, so that no square over- or underflows.
Vector unit(Vector v) {
  const double largest = std::max({std::abs(v[0]), std::abs(v[1]), std::abs(v[2])});
  for (double& value : v) value /= largest;
  const double length = std::hypot(v[0], v[1], v[2]);
  for (double& value : v) value /= length;
  return v;
}

bool areParallel(const Vector& a, const Vector& b) {
  const Vector u = unit(a);
  const Vector v = unit(b);
  return std::hypot(u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                    u[0] * v[1] - u[1] * v[0]) < LeastSine;
}

std::string orientationFault(const ViewSettings& settings) {
  const std::pair<const char*, const Vector*> vectors[] = {
      {"eye", &settings.eye}, {"forward", &settings.forward}, {"up", &settings.up}};
  for (const auto& [name, vector] : vectors)
    if (!isFinite(*vector)) return std::string(name) + " " + text(*vector) + " is not finite";
  if (isZero(settings.forward)) return "forward is the zero vector";
  if (isZero(settings.up)) return "up is the zero vector";
  if (areParallel(settings.forward, settings.up))
    return "forward " + text(settings.forward) + " and up " + text(settings.up) + " are parallel";
  return "";
}

std::string limitsFault(const ViewSettings& settings) {
  const std::pair<const char*, double> limits[] = {{"d1", settings.d1},
                                                   {"d2", settings.d2},
                                                   {"the maximum length", settings.maxLength},
                                                   {"the merge distance", settings.mergeDistance}};
  for (const auto& [name, value] : limits)
    if (!std::isfinite(value) || value < 0.0)
      return std::string(name) + " is " + text(value) + ", not a finite number of at least 0";
  if (settings.segments < 1)
    return "the least number of segments is " + std::to_string(settings.segments) + ", not above 0";
  const std::pair<const char*, std::int64_t> counts[] = {
      {"the limit of point references", settings.limitPoints},
      {"the limit of memory", settings.limitMemory}};
  for (const auto& [name, value] : counts)
    if (value < 0) return std::string(name) + " is " + std::to_string(value) + ", below 0";
  if (settings.threads < 0)
    return "the number of threads is " + std::to_string(settings.threads) + ", below 0";
  return "";
}

}  // namespace

Vector usualUp(const Vector& forward) {
  const Vector up{0.0, 0.0, 1.0};
  const bool isDirection = isFinite(forward) && !isZero(forward);
  return isDirection && areParallel(forward, up) ? Vector{0.0, 1.0, 0.0} : up;
}

std::string ViewSettings::fault() const {
  std::string orientation = orientationFault(*this);
  if (!orientation.empty()) return orientation;
  if (!Algorithm::typeOf(camera)) return "the camera is neither spherical nor normal";
  return limitsFault(*this);
}

}  // namespace Lumivane::Session
