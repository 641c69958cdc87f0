#pragma once

#include "kernel/projections/Equirectangular.h"
#include "kernel/projections/OrthographicFisheye.h"

#include <lumivane/algorithm/ProjectionType.h>
#include <lumivane/base/View.h>
#include <lumivane/base/ViewCamera.h>
#include <lumivane/base/ViewCameraKind.h>

#include <optional>

/// The two projections of shots. Who has to distinguish them asks here, or by a switch without a
/// default, so that the compiler names every place that a third one would need.
namespace Lumivane::Algorithm {

/// What is known of the projection, for a type that acts as one.
inline const Kernel::Projection& projectionOf(ProjectionType type) {
  switch (type) {
    case ProjectionType::Radial:
      return Kernel::OrthographicFisheye;
    case ProjectionType::Square:
      break;
  }
  return Kernel::Equirectangular;
}

/// The name that tables of shots give to it, which are older than the command line's.
inline const char* tableNameOf(ProjectionType type) {
  switch (type) {
    case ProjectionType::Radial:
      return "radial";
    case ProjectionType::Square:
      break;
  }
  return "square";
}

/// The projection that a camera asks for; nothing for one that is no camera.
inline std::optional<ProjectionType> typeOf(Base::ViewCameraKind camera) {
  switch (camera) {
    case Base::ViewCameraKind::Spherical:
      return ProjectionType::Radial;
    case Base::ViewCameraKind::Normal:
      return ProjectionType::Square;
    case Base::ViewCameraKind::Undefined:
      break;
  }
  return std::nullopt;
}

/// What is drawn over a shot; without a view or a camera of a known kind the rings.
inline Kernel::PlaneGrid gridOf(Base::View* view) {
  Base::ViewCamera* const camera = view == nullptr ? nullptr : view->getCamera();
  const auto type = camera == nullptr ? std::nullopt : typeOf(camera->getKind());
  return projectionOf(type.value_or(ProjectionType::Radial)).grid;
}

}  // namespace Lumivane::Algorithm
