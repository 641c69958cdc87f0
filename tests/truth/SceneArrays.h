#pragma once

#include <lumivane/visibility/PolygonScene.h>

namespace Lumivane::Scene {
class Scene3D;
}

namespace Lumivane::Truth {

/// The regions of a scene as plain arrays, in its order.
Visibility::PolygonScene arraysOf(const Scene::Scene3D& scene);

}  // namespace Lumivane::Truth
