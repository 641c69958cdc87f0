#pragma once

#include <lumivane/visibility/PolygonScene.h>

namespace Lumivane::Scene {
class Scene3D;
}

namespace Lumivane::Visibility {

/// Larger coordinates are refused: squares of them, and their places in single precision, are
/// beyond what is computed with.
constexpr double LargestCoordinate = 1e30;

/// All regions of a scene as plain arrays. What has no points, a null region included, is an
/// outline without corners, so that labels and regions match.
/// \throws std::invalid_argument that names object and region for a point that is not there, or
///         has a coordinate that is not finite or beyond `LargestCoordinate`
PolygonScene polygonsOf(const Scene::Scene3D& scene);

/// Looks whether plain arrays fit each other. \throws std::invalid_argument that says which do not
void checkArrays(const PolygonScene& scene);

/// How many outlines plain arrays hold.
inline std::size_t outlineCount(const PolygonScene& scene) {
  return scene.offsets.empty() ? 0 : scene.offsets.size() - 1;
}

}  // namespace Lumivane::Visibility
