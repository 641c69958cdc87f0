#pragma once

#include "check/Findings.h"

#include <optional>

namespace Lumivane::Scene {
class Scene3D;
}

namespace Lumivane::Check {

/// See SceneChecker::farCoordinates.
std::optional<Finding> findFarCoordinates(Scene::Scene3D& scene);

}  // namespace Lumivane::Check
