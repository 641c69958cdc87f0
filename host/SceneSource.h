#pragma once

#include "FilePlace.h"
#include "ImportSettings.h"
#include "Wholes.h"

#include <lumivane/jzon/Node.h>
#include <lumivane/session/LoadedScene.h>

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Host {

namespace Tools {
class Model;
}

/// A scene, and what statistics report about its import: an invalid node if it was a scene file
/// that stayed where it is.
struct SourcedScene {
  Session::LoadedScene scene;
  Jzon::Node import;
  bool isSceneFile = false;
  Session::Vector eyeShift{};  ///< what an eye in the file's coordinates is moved by
  FilePlace place;             ///< where the scene's coordinates lie in the file's
  Wholes wholes;               ///< what parts of a city model belong to
};

Session::Vector moved(const Session::Vector& point, const Session::Vector& shift);

/// All files that `loadScene` reads of a path: itself first, then those that it names.
/// \throws Session::Error
std::vector<std::string> sourceFiles(const std::string& path);
/// The same, with the tables of classes that are read.
std::vector<std::string> sourceFiles(const std::string& path, const ImportSettings& settings);

/// Whether a path is read as a scene file, and not as a mesh or a city model.
bool isSceneFile(const std::string& path);

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
  const Session::Vector& eyeShift() const { return shift; }
  /// Where the scene's coordinates lie in the file's.
  const FilePlace& place() const { return filePlace; }
  /// What parts of a city model belong to.
  const Wholes& wholes() const { return theWholes; }

  /// The scene for no eye in particular, or for that of the last call of `at`.
  Session::LoadedScene& scene() { return current; }
  /// The scene for an eye, up to the next call. \throws Session::Error
  Session::LoadedScene& at(const std::array<double, 3>& eye);

 private:
  std::unique_ptr<Tools::Model> model;  // null for a scene file
  std::optional<std::array<double, 3>> currentEye;
  Session::Vector shift{};
  Session::LoadedScene current;
  FilePlace filePlace;
  Wholes theWholes;
};

}  // namespace Lumivane::Host
