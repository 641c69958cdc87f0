#include "measure/ShotProjection.h"

#include "algorithm/pipeline/TypeProjection.h"

#include <lumivane/base/View.h>
#include <lumivane/base/ViewCamera.h>
#include <lumivane/shot/Shot2d.h>

#include <optional>
#include <stdexcept>

namespace Lumivane::Measure {

using Algorithm::ProjectionType;

ProjectionType projectionOf(const Shot::Shot2d& shot) {
  Base::View* const view = shot.getView();
  if (view == nullptr || view->getCamera() == nullptr)
    throw std::invalid_argument("the shot does not know from which camera it was taken");
  const std::optional<ProjectionType> type = Algorithm::typeOf(view->getCamera()->getKind());
  if (!type) throw std::invalid_argument("the shot's camera is neither spherical nor normal");
  return *type;
}

}  // namespace Lumivane::Measure
