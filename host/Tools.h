#pragma once

#include "AuditedShot.h"
#include "Command.h"
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

namespace CLI {
class App;
}
namespace Lumivane::Check {
class InsideTest;
}
namespace Lumivane::Session {
class TakenShot;
}
namespace Lumivane::Visibility {
class SceneFile;
}

namespace Lumivane::Host {

struct BatchOptions;
struct GridOptions;
struct Seconds;
struct ShotOptions;
class ShotShares;

/// What the program does by means of the components beside the core. Tools.cpp is compiled where
/// they are built, NoTools.cpp where they are not; nothing else asks whether they are.
namespace Tools {

/// The argument SCENE, of one or more files, and how files that are no scenes are imported.
void addScene(CLI::App& command, std::string& scene, ImportSettings& import);
/// The same for a command with other arguments behind SCENE: further files are an option.
void addSceneBeforeOthers(CLI::App& command, std::string& scene, ImportSettings& import);
/// What `shot` measures and draws without a display.
void addShotOptions(CLI::App& command, ShotOptions& options);
/// What the scene of a single shot has besides.
void addShotSceneOptions(CLI::App& command, ShotOptions& options);
/// What views of a batch have besides.
void addBatchedShotOptions(CLI::App& command, ShotOptions& options);
/// What the batch as a whole has besides, and does not have.
void addBatchOptions(CLI::App& command, BatchOptions& options);
/// What `grid` measures.
void addGridOptions(CLI::App& command, GridOptions& options);
/// The commands that need components.
std::vector<Command> commands();

void writeVisible(const ShotOptions& options, const Session::LoadedScene& scene, ShotShares& shares,
                  Seconds& seconds);
void writeVectorPictures(const ShotOptions& options, Session::LoadedScene& scene,
                         const Session::TakenShot& shot, ShotShares& shares,
                         const AuditedShot& audited, Seconds& seconds);
/// Compares the picture with what is seen, if that is asked for, and prints a warning if much of it
/// is wrong. Where it is wrong is found out for a page.
AuditedShot audit(const ShotOptions& options, const Session::TakenShot& shot,
                  const Session::LoadedScene& scene, Seconds& seconds);

/// All files that are read of a path: itself first, then those that it names.
std::vector<std::string> sourceFiles(const std::string& path);
/// Whether a path is read as a mesh or a city model, or as a scene made ready.
bool isImportable(const std::string& path);

/// A mesh or city model, or a scene made ready for looking, read once for many eyes.
class Model {
 public:
  virtual ~Model() = default;
  /// Its scene, objects and faces in the order for the eye if there is one.
  virtual Session::LoadedScene scene(const std::optional<std::array<double, 3>>& eye) = 0;
  /// What became of it in the scene made last, as lines and for statistics.
  virtual std::string reportText() const = 0;
  virtual Jzon::Node reportNode() const = 0;
  /// Where the coordinates of that scene lie in the file's.
  virtual FilePlace place() const = 0;
  /// What its parts belong to.
  virtual Wholes wholes() const = 0;
  /// The file that it is, if it came ready for looking; null for others.
  virtual std::shared_ptr<const Visibility::SceneFile> ready() const { return nullptr; }

 protected:
  Model() = default;
  Model(const Model&) = delete;
  Model& operator=(const Model&) = delete;
};
/// What looks from a scene that came ready need to know.
std::unique_ptr<const Check::InsideTest> insideTestOf(const Visibility::SceneFile& file);
const std::vector<std::string>& classNamesOf(const Visibility::SceneFile& file);
/// Null for what is no mesh and no city model. \throws Session::Error
std::unique_ptr<Model> modelOf(const std::string& path, const ImportSettings& settings);

}  // namespace Tools
}  // namespace Lumivane::Host
