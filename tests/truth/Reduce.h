#pragma once

#include <lumivane/visibility/PolygonScene.h>

#include <functional>
#include <string>

namespace Lumivane::Truth {

/// A part of the scene, as small as dropping outlines makes it, that is still `bad`.
Visibility::PolygonScene reduced(Visibility::PolygonScene scene,
                                 const std::function<bool(const Visibility::PolygonScene&)>& bad);

/// The text of a scene file, with all digits.
std::string sceneFileText(const Visibility::PolygonScene& scene);

}  // namespace Lumivane::Truth
