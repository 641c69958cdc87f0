#pragma once

#include <lumivane/visibility/PolygonScene.h>

namespace Lumivane::Visibility {

/// Larger coordinates are refused: squares of them, and their places in single precision, are
/// beyond what is computed with.
constexpr double LargestCoordinate = 1e30;

/// Looks whether plain arrays fit each other. \throws std::invalid_argument that says which do not
void checkArrays(const PolygonScene& scene);

/// How many outlines plain arrays hold.
inline std::size_t outlineCount(const PolygonScene& scene) {
  return scene.offsets.empty() ? 0 : scene.offsets.size() - 1;
}

}  // namespace Lumivane::Visibility
