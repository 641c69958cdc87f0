#pragma once

#include "FilePlace.h"
#include "ImportSettings.h"
#include "Wholes.h"

#include <lumivane/jzon/Node.h>
#include <lumivane/session/LoadedScene.h>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Check {
class InsideTest;
}
namespace Lumivane::Visibility {
class SceneFile;
}

namespace Lumivane::Host {

namespace Tools {
class Model;
}

/// A scene that is made when it is first asked for.
class LazyScene {
 public:
  explicit LazyScene(Session::LoadedScene scene) : made(std::move(scene)) {}
  explicit LazyScene(std::function<Session::LoadedScene()> how) : make(std::move(how)) {}

  /// \throws Session::Error if it cannot be made
  Session::LoadedScene& get() {
    if (!made) made.emplace(make());
    return *made;
  }

 private:
  std::function<Session::LoadedScene()> make;
  std::optional<Session::LoadedScene> made;
};

/// A scene, and what statistics report about its import: an invalid node if it was a scene file
/// that stayed where it is.
struct SourcedScene {
  std::shared_ptr<LazyScene> lazy;
  Jzon::Node import;
  bool isSceneFile = false;
  Session::Vector eyeShift{};  ///< what an eye in the file's coordinates is moved by
  FilePlace place;             ///< where the scene's coordinates lie in the file's
  Wholes wholes;               ///< what parts of a city model belong to
  /// The scene made ready for looking, if it came so (*.lumiscene): then looks need nothing else.
  std::shared_ptr<const Visibility::SceneFile> ready;

  /// \throws Session::Error if the scene came ready, but without the scene itself
  Session::LoadedScene& scene() const { return lazy->get(); }
};

/// Whether eyes are inside bodies of a scene. \throws Session::Error
std::unique_ptr<const Check::InsideTest> insideTestOf(const SourcedScene& source);

Session::Vector moved(const Session::Vector& point, const Session::Vector& shift);

/// All files that `loadScene` reads of a path: itself first, then those that it names, the other
/// files of the scene with theirs, and the tables of classes.
/// \throws Session::Error
std::vector<std::string> sourceFiles(const std::string& path, const ImportSettings& settings);

/// Whether a path is read as a scene file, and not as a mesh or a city model.
bool isSceneFile(const std::string& path);

/// For a scene file. \throws ArgumentError that names an option that only models take
void refuseModelOptions(const std::string& path, const ImportSettings& settings);

/// Reads a scene file; where the program is built with importers, also a mesh or a city model,
/// printing on standard output what became of it.
///
/// With `ImportSettings::center` the middle of a scene file comes to x = y = 0 too, and its lowest
/// point to z = 0, to within half a unit: by whole units, so that coordinates keep their decimals.
/// The eye of a scene file is given in the file's coordinates and moves with it.
///
/// Classes come from the importer, or from the table beside a scene file if they are asked for;
/// then from the table that the settings name.
/// \throws Session::Error
SourcedScene loadScene(const std::string& path, const ImportSettings& settings);

/// The names of the classes of its surfaces. \throws Session::Error
const std::vector<std::string>& classNames(const SourcedScene& source);

/// The names of the classes of a scene, without a word on what became of a mesh or city model.
/// \throws Session::Error
std::vector<std::string> classNamesOf(const std::string& path, const ImportSettings& settings);

/// One scene for many eyes: a scene file as it is, a mesh or city model with its objects and faces
/// in the order for the eye, as `loadScene` with that eye in its settings. Reads the file once.
class SceneForEyes {
 public:
  /// Prints on standard output what became of a mesh or city model.
  /// \throws Session::Error
  SceneForEyes(const std::string& path, const ImportSettings& settings);
  SceneForEyes(const SceneForEyes&) = delete;
  SceneForEyes& operator=(const SceneForEyes&) = delete;
  ~SceneForEyes();

  /// What an eye is moved by before a shot is taken from it.
  const Session::Vector& eyeShift() const { return current.eyeShift; }
  /// Where the scene's coordinates lie in the file's.
  const FilePlace& place() const { return current.place; }

  /// The scene for no eye in particular, or for that of the last call of `at`.
  /// \throws Session::Error if the scene came ready, but without the scene itself
  Session::LoadedScene& scene() { return current.scene(); }
  /// The same with all that looks need.
  const SourcedScene& source() const { return current; }
  /// The names of the classes of its surfaces.
  const std::vector<std::string>& classNames() { return Host::classNames(current); }
  /// The scene for an eye, up to the next call. \throws Session::Error
  Session::LoadedScene& at(const std::array<double, 3>& eye);

 private:
  std::shared_ptr<Tools::Model> model;  // null for a scene file
  std::optional<std::array<double, 3>> currentEye;
  SourcedScene current;
};

}  // namespace Lumivane::Host
