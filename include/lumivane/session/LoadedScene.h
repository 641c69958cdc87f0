#pragma once

#include <lumivane/export.h>
#include <lumivane/session/Error.h>
#include <lumivane/session/Progress.h>
#include <lumivane/session/ScenePolygons.h>
#include <lumivane/session/SurfaceClasses.h>
#include <lumivane/session/TakenShot.h>
#include <lumivane/session/ViewSettings.h>

#include <memory>
#include <string>

namespace Lumivane::Scene {
class Scene3D;
}

namespace Lumivane::Session {

/// A scene to take shots of, with all that it owns.
///
/// The shots taken keep what they share with it alive, so scene and shots may go in any order. A
/// moved-from scene may only be destroyed or assigned to.
///
/// Threads: use a scene, its shots and the raw classes from one thread at a time. It need not be
/// the same thread all the time. Different scenes may be taken shots of in different threads at the
/// same time: takes with equal `ViewSettings::segments`, `maxLength` and `mergeDistance` work side
/// by side, others wait for each other.
class LUMIVANE_EXPORT LoadedScene {
 public:
  /// Reads a scene file. \throws Error if it cannot be read, is no JSON or holds a value out of
  /// range, and says which
  static LoadedScene fromFile(const std::string& path);
  /// Reads the text of a scene file; `name` stands in errors. \throws Error
  static LoadedScene fromText(const std::string& text, const std::string& name);
  /// Takes over a scene that the caller has built on the heap and now forgets; `name` stands in
  /// errors. \throws Error if it is null
  static LoadedScene adopt(Scene::Scene3D* scene, const std::string& name);

  /// Makes a scene of plain arrays, which are copied; `name` stands in errors. Object, face and
  /// region numbers of its shots follow from the order of the polygons, see `ScenePolygons`.
  /// \throws Error that names the array and the position in it, and the polygon concerned, if the
  ///         arrays do not fit each other, a polygon has fewer than three corners or a coordinate
  ///         is not finite
  static LoadedScene fromPolygons(const ScenePolygons& polygons, const std::string& name);

  LoadedScene(LoadedScene&&) noexcept;             ///< Takes all of the other.
  LoadedScene& operator=(LoadedScene&&) noexcept;  ///< Drops its own for all of the other.
  LoadedScene(const LoadedScene&) = delete;
  LoadedScene& operator=(const LoadedScene&) = delete;
  ~LoadedScene();

  /// The raw scene, still owned here. As long as a shot of it lives, its brushes, pens, scales and
  /// properties must not be deleted.
  Scene::Scene3D& scene() const;
  /// The file's path, or the name given.
  const std::string& name() const;

  /// What the regions are; nothing for a scene without classes. A scene file holds none: they
  /// come from the importer of a mesh or city model, from a table (`readClasses`) or from the host.
  const SurfaceClasses& classes() const;
  /// Replaces them. A host that adds or removes regions afterwards sets them anew.
  /// \throws Error if there is not one number for each region, a number points at no name, or a
  ///         name is empty or there twice
  void setClasses(SurfaceClasses classes);

  /// Takes a shot. Each is as of a scene never looked at before: what earlier shots have left on
  /// the objects is freed first. What this one leaves there (the raw working lists, e.g.
  /// `Scene::Object::getRegionsProjectedPolygons`) stays to be looked at up to the next take, to
  /// `releaseWorkingLists` or to the end of scene and shots.
  ///
  /// The splitting settings of `Cmd::CmdManager` and `Geometry::Point2d::Precision` are set for the
  /// take and restored after it; takes that want others wait. The library prints lines to standard
  /// output meanwhile, unless the host gives them another place by `Cmd::MessageScope`. If faces
  /// overlap in a cycle, the library also writes the report "log_sort.txt" into the working
  /// directory; `TakenShot::hasCycle` says the same as a value.
  ///
  /// \param progress  is called with how far the shot has come; may be empty
  /// \throws Error that names the object and region with an error of the scene, which is looked for
  ///         before any work (see `ViewSettings::checkScene`), or says what else is wrong with view
  ///         or scene; the scene stays usable
  /// \throws std::bad_alloc if memory ends; the scene stays usable
  TakenShot take(const ViewSettings& view, const Progress& progress = {});

  /// Frees what the last shot has left on the objects, before the next one would.
  void releaseWorkingLists();

 private:
  friend class TakenShot;
  struct State;

  explicit LoadedScene(std::shared_ptr<State> newState);

  std::shared_ptr<State> state;
};

}  // namespace Lumivane::Session
