#pragma once

#include <lumivane/export.h>

#include <string>

namespace Lumivane::Scene {
class Scene3D;
}
namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::Session {

struct ViewSettings;

/// The library reports a wrong number in a document by an exception that does not say where. These
/// look for the first number that points at nothing, and name the object and region concerned.
/// Empty if there is none.
LUMIVANE_EXPORT std::string sceneFault(Scene::Scene3D& scene, const ViewSettings& view);

/// The errors of a scene, as `Check::SceneChecker::errors` finds them: the first, and how many more
/// there are. Empty if there are none.
LUMIVANE_EXPORT std::string sceneErrors(Scene::Scene3D& scene);

/// The same as the first for a scene that is to be drawn: its points, brushes and pens, as far as
/// drawing reads them. A region of one point, and an object without outlines, need none.
LUMIVANE_EXPORT std::string sceneDrawingFault(Scene::Scene3D& scene);

/// The same for the brushes and pens of a shot that is to be drawn.
LUMIVANE_EXPORT std::string shotFault(Shot::Shot2d& shot);

/// The same for a shot file that is to be shown: its points as well.
LUMIVANE_EXPORT std::string shotPointsFault(Shot::Shot2d& shot);

}  // namespace Lumivane::Session
