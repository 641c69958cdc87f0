#pragma once

#include "algorithm/pipeline/ShotBuilder.h"

#include <lumivane/algorithm/ProjectionType.h>

namespace Lumivane::Base {
class Camera;
}

namespace Lumivane::Algorithm {

/// The shot of an eye inside an object: one region that fills the picture, in the one face of that
/// object. Only a host that sets `ShotCreator::cameraObject` gets one.
///
/// \param camera  whose interior colour fills the picture; null for the default colour
UnfinishedShot buildInteriorShot(Base::View* view, Scene::Objects* objects,
                                 const Scene::Object* cameraObject, Base::Camera* camera,
                                 ProjectionType type);

}  // namespace Lumivane::Algorithm
