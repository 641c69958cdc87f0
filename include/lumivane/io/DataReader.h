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

/// Reads scenes and shots from files and texts. Has no state: any instance serves.
///
/// Messages go to the console log. A value out of range in a well-formed document is an exception
/// of the value's own class; it passes through, and what was read is freed.
class LUMIVANE_EXPORT DataReader {
 public:
  /// The text of a file with its line feeds left out, so that a token split over two lines comes
  /// out joined.
  ///
  /// A file that cannot be opened ends the process: standard output is flushed, one line goes to
  /// standard error, and the exit status is 1. Hosts that want to go on test the file first.
  std::string readFileIntoString(const std::string& path);

  /// Turns a JSON5 text into plain JSON. The other operations do not call it: they read JSON.
  ///
  /// \param text  JSON5; the braces of the outermost object may be left out
  /// \return the text as JSON, as far as it could be parsed; empty after an exception inside
  std::string Json5_to_Json(std::string text);

  /// Reads a scene from JSON. Logs only on failure.
  ///
  /// \return a new scene that the caller owns, or null when the text is no JSON
  /// \throws std::out_of_range for a colour component outside 0 to 255
  /// \throws std::runtime_error for a negative pen width
  Scene::Scene3D* readSceneString(const std::string& json);

  /// Reads a scene from a file and logs it. The path is logged as a printf format of its own whose
  /// conversions meet only zeros.
  ///
  /// \return a new scene that the caller owns, or null when the file holds no JSON
  /// \throws as readSceneString; a file that cannot be opened ends the process, as said above
  Scene::Scene3D* readSceneFile(const std::string& path);

  /// Reads a shot from JSON, with failures as in readSceneString. Its scale, property and view stay
  /// null, since no file holds them.
  ///
  /// \return a new shot that the caller owns, or null when the text is no JSON
  Shot::Shot2d* readShotString(const std::string& json);

  /// Reads a shot from a file, with log and failures as in readSceneFile.
  ///
  /// \return a new shot that the caller owns, or null when the file holds no JSON
  Shot::Shot2d* readShotFile(const std::string& path);
};

}  // namespace IO
}  // namespace Lumivane
