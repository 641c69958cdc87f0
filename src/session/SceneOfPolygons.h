#pragma once

#include <lumivane/session/ScenePolygons.h>

#include <memory>
#include <string>

namespace Lumivane::Scene {
class Scene3D;
}

namespace Lumivane::Session {

/// A scene of plain arrays. \throws Error, with `name` as its subject, for arrays that do not fit
/// each other
std::unique_ptr<Scene::Scene3D> sceneOfPolygons(const ScenePolygons& polygons,
                                                const std::string& name);

}  // namespace Lumivane::Session
