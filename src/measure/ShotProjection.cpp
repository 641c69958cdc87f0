#include "measure/ShotProjection.h"

#include <lumivane/base/View.h>
#include <lumivane/base/ViewCamera.h>
#include <lumivane/shot/Shot2d.h>

#include <stdexcept>

namespace Lumivane::Measure {

using Algorithm::ProjectionType;

ProjectionType projectionOf(const Shot::Shot2d& shot) {
  Base::View* const view = shot.getView();
  if (view == nullptr || view->getCamera() == nullptr)
    throw std::invalid_argument("the shot does not know from which camera it was taken");
  switch (view->getCamera()->getKind()) {
    case Base::ViewCameraKind::Spherical:
      return ProjectionType::Radial;
    case Base::ViewCameraKind::Normal:
      return ProjectionType::Square;
    default:
      throw std::invalid_argument("the shot's camera is neither spherical nor normal");
  }
}

}  // namespace Lumivane::Measure
