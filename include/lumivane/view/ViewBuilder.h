#pragma once

#include <lumivane/export.h>

#include <vtkActorCollection.h>
#include <vtkSmartPointer.h>

namespace Lumivane::Scene {
class Scene3D;
}
namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::View {

/// Turns a scene or a shot into VTK actors: one for all polygons of a brush, one for all lines of a
/// pen. Only regions are drawn.
class LUMIVANE_EXPORT ViewBuilder {
 public:
  /// The actors of a scene, object by object: the polygons by ascending brush number, then the
  /// object's outlines with the object's pen.
  ///
  /// \param scene  not null, and unchanged; without points or objects it gives no actor
  /// \return a new collection that owns its actors. A null list of brushes or pens means opaque
  ///         black and the width 1
  /// \throws std::out_of_range "invalid vector subscript" for a brush or pen number beyond its
  /// list,
  ///         as soon as its actor is reached
  static vtkSmartPointer<vtkActorCollection> createSceneView(Scene::Scene3D* scene);

  /// The actors of a shot: all polygons by ascending brush number, then all outlines by ascending
  /// pen number. The drawing order lies in z: region n stands n drawing layers of 0.1 up.
  ///
  /// The display style of the shot's view decides about the polygons: with 1 there are none, with
  /// 2 their opacity is halved. A shot without a view is drawn filled.
  ///
  /// \param shot  not null, and unchanged; without points or regions it gives no actor
  /// \return as in createSceneView
  /// \throws std::out_of_range as in createSceneView
  static vtkSmartPointer<vtkActorCollection> createShotView(Shot::Shot2d* shot);
};

}  // namespace Lumivane::View
