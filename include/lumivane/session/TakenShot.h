#pragma once

#include <lumivane/export.h>
#include <lumivane/session/ShotPolygons.h>
#include <lumivane/session/ViewSettings.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Lumivane::Base {
class View;
}
namespace Lumivane::Scene {
class Scene3D;
}
namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::Session {

/// Names a face of a scene.
struct FaceNumber {
  int object = 0;  ///< from 1 in the scene's objects
  int face = 0;    ///< from 1 in the object's faces

  /// Whether both numbers are equal.
  friend bool operator==(const FaceNumber& a, const FaceNumber& b) {
    return a.object == b.object && a.face == b.face;
  }
};

/// A shot taken by `LoadedScene::take`, with all that it refers to.
///
/// It keeps its scene's lists alive, so that it may outlive the `LoadedScene`, and has a view of
/// its own. Several shots of one scene may be alive at a time. A moved-from shot may only be
/// destroyed or assigned to.
class LUMIVANE_EXPORT TakenShot {
 public:
  TakenShot(TakenShot&&) noexcept;             ///< Takes all of the other.
  TakenShot& operator=(TakenShot&&) noexcept;  ///< Drops its own for all of the other.
  TakenShot(const TakenShot&) = delete;
  TakenShot& operator=(const TakenShot&) = delete;
  /// Frees the shot, but not the lists that it shares with its scene.
  ~TakenShot();

  /// The raw shot, still owned here. It shares brushes, pens, scale and property with the scene:
  /// do not delete them; a list set in place of one of them is the shot's own and goes with it.
  Shot::Shot2d& shot() const;
  /// The view that the shot refers to, still owned here.
  Base::View& view() const;
  /// Where the shot was really taken from: an eye on a polygon is moved off it.
  Vector eye() const;
  /// How far the eye was moved for that, in scene units: zero if it stands where it was asked for.
  Vector eyeOffset() const;
  /// The scene that the shot was taken of, with what its last shot has left on its objects.
  Scene::Scene3D& scene() const;

  /// Whether the shot was taken from inside a body, as `Check::InsideTest` finds it: what is
  /// visible then is of no use, for the body itself is seen from behind and not drawn.
  bool isInside() const;
  /// How many faces lay in the picture wholly behind others, so that the shot is without them.
  std::size_t hiddenFaces() const;

  /// Whether faces overlap in a cycle, each hiding part of the next one, so that no drawing order
  /// is right for all of them. The library has printed its message then.
  bool hasCycle() const;
  /// The faces that overlap in cycles, and those between two cycles, in the order of the scene;
  /// none if `hasCycle` is false. They are drawn in that order, so that some hide what they should
  /// not.
  const std::vector<FaceNumber>& cycle() const;

  /// The polygons with their labels and colours as values, in drawing order. \throws Error if the
  /// raw shot was changed so that a number points at nothing
  ShotPolygons polygons() const;

  /// The text of the shot's file.
  std::string text() const;
  /// Writes the shot's file, whole or not at all. \throws Error
  void write(const std::string& path) const;

 private:
  friend class LoadedScene;
  struct State;

  explicit TakenShot(std::unique_ptr<State> newState);

  std::unique_ptr<State> state;
};

}  // namespace Lumivane::Session
