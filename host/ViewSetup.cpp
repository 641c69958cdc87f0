#include "ViewSetup.h"

#include "Options.h"

#include <lumivane/base/ViewDisplayStyle.h>
#include <lumivane/cmd/CmdManager.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Vector3d.h>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace Lumivane::Host {
namespace {

// Below this sine of the angle between forward and up, "right" would be rounding noise.
constexpr double LeastSine = 1e-12;

std::string text(const Vector& v) {
  std::ostringstream stream;
  stream << v[0] << "," << v[1] << "," << v[2];
  return stream.str();
}

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

Base::ViewDisplayStyle displayStyle(const std::string& name) {
  if (name == "outline") return Base::ViewDisplayStyle::Outline;
  if (name == "half") return Base::ViewDisplayStyle::HalfTransparent;
  return Base::ViewDisplayStyle::Filled;
}

}  // namespace

ViewSetup::ViewSetup(const ViewOptions& options)
    : orientation(
          new Geometry::Point3d(options.eye[0], options.eye[1], options.eye[2]),
          new Geometry::Vector3d(options.forward[0], options.forward[1], options.forward[2]),
          new Geometry::Vector3d(options.up[0], options.up[1], options.up[2])) {
  if (options.camera == "normal")
    theView.setCamera(&normal);
  else
    theView.setCamera(&spherical);
  theView.setOrientation(&orientation);
  theView.setDisplayStyle(displayStyle(options.style));
  theParameters.setPropertyNum(options.property);
  theParameters.setScaleNum(options.scale);
  theParameters.setD1(options.d1);
  theParameters.setD2(options.d2);
}

std::string viewFault(const ViewOptions& options) {
  const std::pair<const char*, const Vector*> vectors[] = {
      {"eye", &options.eye}, {"forward", &options.forward}, {"up", &options.up}};
  for (const auto& [name, vector] : vectors)
    if (!isFinite(*vector)) return std::string(name) + " " + text(*vector) + " is not finite";
  if (isZero(options.forward)) return "forward is the zero vector";
  if (isZero(options.up)) return "up is the zero vector";
  if (areParallel(options.forward, options.up))
    return "forward " + text(options.forward) + " and up " + text(options.up) + " are parallel";
  return "";
}

void setSplitting(const ViewOptions& options) {
  Cmd::CmdManager::minSegmentsNumber = options.segments;
  Cmd::CmdManager::maxSegmentsLength = options.maxLength;
}

}  // namespace Lumivane::Host
