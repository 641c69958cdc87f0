#include <lumivane/algorithm/ShotCreator.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/utils/ProgressbarUtils.h>

namespace Lumivane::Scene {

Shot::Shot2d* Scene3D::makeShot(Base::View* view, Algorithm::ShotParameters* parameters) {
  Utils::ProgressbarUtils::getInstance()->reset();
  Algorithm::ShotCreator creator;
  return creator.makeShot(this, view, parameters);
}

}  // namespace Lumivane::Scene
