#pragma once

#include <lumivane/importers/ImportOptions.h>
#include <lumivane/importers/ImportReport.h>
#include <lumivane/importers/export.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/SurfaceClasses.h>

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Scene {
class Scene3D;
}

namespace Lumivane::Importers {

/// A scene made from a file of another program.
struct ImportedScene {
  /// Named for the file, with classes: what a semantic surface of CityJSON is (`Roof`, `Wall`,
  /// `Ground` ...), else the type of its city object; the material of OBJ and glTF, else the group,
  /// node or mesh.
  Session::LoadedScene scene;
  ImportReport report;  ///< what became of the file
};

/// A file of another program, or several that are one scene, read once, of which scenes for several
/// eyes are made: the order of a scene's objects and faces depends on the eye
/// (`ImportOptions::eye`). To be used from one thread at a time.
class LUMIVANE_IMPORTERS_EXPORT ImportedModel {
 public:
  /// Reads the file; the eye of the options is not used.
  /// \throws Session::Error as `Importer::importFile`
  explicit ImportedModel(const std::string& path, const ImportOptions& options = {});
  /// Reads several files as one.
  /// \throws Session::Error as `Importer::importFiles`
  explicit ImportedModel(const std::vector<std::string>& paths, const ImportOptions& options = {});
  ImportedModel(ImportedModel&& other) noexcept;             ///< Takes all of the other.
  ImportedModel& operator=(ImportedModel&& other) noexcept;  ///< Drops its own for the other's.
  ImportedModel(const ImportedModel&) = delete;
  ImportedModel& operator=(const ImportedModel&) = delete;
  ~ImportedModel();

  /// A new scene, with the same bytes as that of `Importer::importFile` with this eye in its
  /// options. An eye that is not finite is none.
  /// \throws Session::Error if no polygon has an area
  ImportedScene sceneFor(const std::optional<std::array<double, 3>>& eye) const;

  /// What the surfaces are in all scenes made from now on, in whatever order those list them.
  ///
  /// \param classes  of the regions of the scene without an eye, as `LoadedScene::classes` has
  /// them;
  ///                 where each polygon is seen from both sides, that of its first region counts
  /// \throws Session::Error if that scene has another number of regions
  void setClasses(const Session::SurfaceClasses& classes);

 private:
  struct State;
  std::unique_ptr<State> state;
};

/// Reads meshes (OBJ, STL, PLY, glTF) and city models (CityJSON) as scenes. Has no state.
///
/// Materials become brushes, and groups, nodes and city objects become objects with their names as
/// ids. Neighbouring polygons in one plane become one face, whose inner edges are docking edges.
/// What a surface is stays known as its class (`Session::LoadedScene::classes`).
class LUMIVANE_IMPORTERS_EXPORT Importer {
 public:
  /// Whether the file is of a kind that is read here, known by the ending of its name and, for
  /// ".json", by its content, so that a scene file is not taken for a city model.
  static bool isImportable(const std::string& path);

  /// The files that reading this one reads: itself first, then the material libraries of an OBJ
  /// file or the buffers of a glTF file, as far as they are there.
  ///
  /// \throws Session::Error if the file cannot be read
  static std::vector<std::string> inputFiles(const std::string& path);

  /// Reads a file.
  ///
  /// \throws Session::Error if the file cannot be read, is of no known kind, is damaged, or holds
  ///                        no polygon; it says what is wrong and, if it is known, at which
  ///                        line, vertex or object
  static ImportedScene importFile(const std::string& path, const ImportOptions& options = {});

  /// Reads several files as one scene, such as the tiles of a city, of one format or of several.
  ///
  /// All are turned, scaled and moved alike: the report's shift is that of the whole. An object
  /// whose name stands in several files gets that of its file in front, "tile7.city.json#roof".
  /// Coordinates are taken to lie in one system; files that name none lie in that of the others. A
  /// file may be without polygons if another has some.
  ///
  /// \throws Session::Error as `importFile`, naming the file; and if a file is named twice, or two
  ///                        files name different coordinate reference systems
  static ImportedScene importFiles(const std::vector<std::string>& paths,
                                   const ImportOptions& options = {});

  /// The scene as a scene file, with all digits of its coordinates instead of 6, so that the file
  /// gives the same shots as the scene, to the bit.
  static std::string sceneText(Scene::Scene3D& scene);
};

}  // namespace Lumivane::Importers
