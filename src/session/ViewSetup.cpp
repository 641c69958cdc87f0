#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/session/ViewSetup.h>

#include <algorithm>
#include <cmath>

namespace Lumivane::Session {
namespace {

// Lengths that are left as they are: squares and products with them stay far from the ends of both
// precisions that a shot is computed in.
constexpr double ShortestDirection = 1e-6;
constexpr double LongestDirection = 1e6;

// A direction of any length, brought to a length near 1 if it is very short or long. Multiplied by
// a power of two, which leaves the direction as it is to the bit.
Geometry::Vector3d* workableDirection(const Vector& v) {
  const double largest = std::max({std::abs(v[0]), std::abs(v[1]), std::abs(v[2])});
  const bool isWorkable = largest >= ShortestDirection && largest <= LongestDirection;
  const int exponent = isWorkable || !(largest > 0.0) ? 0 : -std::ilogb(largest);
  return new Geometry::Vector3d(std::scalbn(v[0], exponent), std::scalbn(v[1], exponent),
                                std::scalbn(v[2], exponent));
}

}  // namespace

ViewSetup::ViewSetup(const ViewSettings& settings)
    : orientation(new Geometry::Point3d(settings.eye[0], settings.eye[1], settings.eye[2]),
                  workableDirection(settings.forward), workableDirection(settings.up)) {
  switch (settings.camera) {
    case Base::ViewCameraKind::Undefined:
      break;
    case Base::ViewCameraKind::Spherical:
      theView.setCamera(&spherical);
      break;
    case Base::ViewCameraKind::Normal:
      theView.setCamera(&normal);
      break;
  }
  theView.setOrientation(&orientation);
  theView.setDisplayStyle(settings.style);
  theParameters.setPropertyNum(settings.property);
  theParameters.setScaleNum(settings.scale);
  theParameters.setD1(settings.d1);
  theParameters.setD2(settings.d2);
}

ViewSetup::~ViewSetup() = default;

Vector ViewSetup::eye() {
  const Geometry::Point3d* const point = orientation.getEyePosition();
  return {point->getX(), point->getY(), point->getZ()};
}

}  // namespace Lumivane::Session
