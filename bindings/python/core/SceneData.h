#pragma once

#include <lumivane/importers/ImportOptions.h>
#include <lumivane/importers/ImportReport.h>
#include <lumivane/importers/Importer.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/TakenShot.h>
#include <lumivane/visibility/PolygonScene.h>
#include <lumivane/visibility/SceneFile.h>
#include <lumivane/visibility/SceneIndex.h>

#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Python {

/// What a scene of Python stands on: the index that is looked at, and the scene of the session, of
/// which shots are taken. Used by any number of threads at once; the session's part is locked.
class SceneData {
 public:
  /// A scene file, a mesh or a city model, or several meshes and city models as one scene.
  /// \throws Session::Error
  static std::shared_ptr<SceneData> read(const std::vector<std::string>& paths,
                                         const Importers::ImportOptions& options);
  /// The text of a scene file, and of the table of its classes, which may be empty.
  /// \throws Session::Error
  static std::shared_ptr<SceneData> ofText(const std::string& text, const std::string& name,
                                           const std::string& classes);
  /// Plain arrays. `places` says where each outline stood in what the caller gave.
  /// \throws std::invalid_argument as `Visibility::SceneIndex`
  static std::shared_ptr<SceneData> ofArrays(Visibility::PolygonScene arrays,
                                             std::vector<int> places);

  /// A file of a scene that is ready (*.lumiscene), which stays mapped. \throws Session::Error
  static std::shared_ptr<SceneData> ofFile(const std::string& path);
  /// Writes such a file. \param contentName  is kept in it
  /// \param isWhole  with outlines and scene, if they are there; otherwise with what looks need
  /// alone \throws Session::Error
  void write(const std::string& path, const std::string& contentName, bool isWhole);
  /// What the file that the scene came from, ready, keeps as the name of its content; else empty.
  std::string contentName() const;

  const Visibility::SceneIndex& index() const { return *theIndex; }
  /// Objects, classes and labels.
  const Visibility::VisibleMap::Names& names() const { return theIndex->names(); }
  /// The outlines, in the scene's order; of a file they are copied when they are first asked for.
  const Visibility::PolygonScene& polygons() const;
  /// Where the outline of a region stood in the caller's arrays; the region's position among all
  /// of the scene if there were none; -1 for the sky.
  int placeOf(const Visibility::Label& label) const;

  /// The table of the classes of a scene of a file; empty if it has none.
  std::string classTable();

  /// Whether the scene has no colours of its own.
  bool isOfArrays() const;
  const std::vector<int>& outlinePlaces() const { return places; }
  const std::optional<Importers::ImportReport>& importReport() const { return report; }

  /// Takes a shot: of a mesh or city model with its objects in the order for the eye.
  std::unique_ptr<Session::TakenShot> take(const Session::ViewSettings& view);
  /// Calls `use(Scene3D&)` while no one else uses the session's scene.
  template <class Use>
  auto withScene(const Use& use) {
    const std::lock_guard<std::mutex> lock(mutex);
    return use(sessionScene().scene());
  }
  /// The lock under which the session's scene and its shots are used.
  std::mutex& sessionMutex() { return mutex; }

 private:
  Session::LoadedScene& sessionScene();
  Session::LoadedScene sceneOfFile() const;

  mutable Visibility::PolygonScene arrays;
  mutable std::once_flag areArraysCopied;
  std::optional<Visibility::SceneFile> file;
  std::vector<int> places;
  std::optional<Visibility::SceneIndex> theIndex;
  std::optional<Importers::ImportedModel> model;
  std::optional<Importers::ImportReport> report;
  std::optional<Session::LoadedScene> loaded;
  std::mutex mutex;
};

}  // namespace Lumivane::Python
