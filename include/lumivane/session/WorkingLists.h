#pragma once

#include <lumivane/export.h>

namespace Lumivane::Scene {
class Scene3D;
}

namespace Lumivane::Session {

/// Frees what shots have left on the objects of a scene: the polygon data, the visible and the
/// projected polygons, and the note of the region that held the camera. The objects are then as
/// before any shot. Shots that were made stay whole.
///
/// A raw `makeShot` replaces these lists without freeing them: call this between two of them. A
/// `LoadedScene` calls it by itself.
LUMIVANE_EXPORT void releaseWorkingLists(Scene::Scene3D& scene);

}  // namespace Lumivane::Session
