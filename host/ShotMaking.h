#pragma once

#include <string>

namespace Lumivane::Scene {
class Scene3D;
}
namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::Host {

struct ViewOptions;
class ViewSetup;

/// Makes the shot, with a progress bar on a terminal. It refers to the setup's view and shares
/// lists with the scene, so all three stay as long as it is used.
/// \throws HostError that names the scene's file and says why no shot could be made
Shot::Shot2d* makeShot(const std::string& sceneFile, Scene::Scene3D& scene,
                       const ViewOptions& options, ViewSetup& setup);

}  // namespace Lumivane::Host
