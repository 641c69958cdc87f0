#pragma once

#include <lumivane/export.h>

#include <string>

namespace Lumivane {

namespace Scene {
class Scene3D;
}
namespace Shot {
class Shot2d;
}

namespace IO {

/// Writes scenes and shots as JSON: one key a line, arrays on one line, no indentation, numbers
/// with 6 significant digits, no line end behind the last brace. Has no state.
class LUMIVANE_EXPORT DataWriter {
 public:
  /// \param scene  must not be null; stays the caller's
  /// \return the scene as JSON; logs nothing
  std::string writeSceneString(Scene::Scene3D* scene);

  /// Writes a scene to a file, replacing what was there, and logs it. A file that cannot be opened
  /// or written is not reported.
  ///
  /// \param scene  must not be null; stays the caller's
  void writeSceneFile(Scene::Scene3D* scene, const std::string& path);

  /// \param shot  must not be null; stays the caller's
  /// \return the shot as JSON; logs nothing
  std::string writeShotString(Shot::Shot2d* shot);

  /// Writes a shot to a file, as writeSceneFile does a scene.
  ///
  /// \param shot  must not be null; stays the caller's
  void writeShotFile(Shot::Shot2d* shot, const std::string& path);
};

}  // namespace IO
}  // namespace Lumivane
