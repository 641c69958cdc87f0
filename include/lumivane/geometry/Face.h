#pragma once

#include <lumivane/export.h>
#include <lumivane/geometry/Part.h>

#include <vector>

namespace Lumivane::Scene {
class Object;
class Scene3D;
}  // namespace Lumivane::Scene

namespace Lumivane::Geometry {
class Point3d;
class Vector3d;

/// The regions of one plane surface of a scene object, with its normal.
///
/// Owns the normal besides what a Part owns. Copies share both: of two copies, destroy one.
class LUMIVANE_EXPORT Face : public Part {
 public:
  Face();                                  ///< No regions; the normal (0, 0, 1).
  Face(const Face&) = default;             ///< Shares the regions and the normal.
  Face& operator=(const Face&) = default;  ///< Shares them; frees nothing.
  ~Face();                                 ///< Deletes the normal and the regions.

  Vector3d* getNormal() const { return normal; }  ///< Still the face's.
  /// Takes over the normal; the old one is not freed.
  void setNormal(Vector3d* newNormal) { normal = newNormal; }

  /// What a Part writes, then "Normal" as `[x, y, z]` unless it is null.
  Jzon::Node serialize() override;
  /// Reads what a Part reads. A "Normal", whatever it holds, gives a new vector, zero where nothing
  /// can be read; the old one is not freed.
  Base::BaseLibClass* deserialize(Jzon::Node node) override;

  /// Makes a face from a plane outline: triangulates it, holes included, and writes every triangle
  /// into the scene as a pair of regions, one for each side of the surface, on fresh points. Edges
  /// that only the triangulation made become docking edges. The normal stays (0, 0, 1).
  ///
  /// \param scene        the scene that owns `object`; its points grow
  /// \param object       gets the face and the regions
  /// \param loops        one closed contour each, in scene units, its first point repeated or not;
  ///                     a contour wound opposite to the one around it is a hole. An outline that
  ///                     cannot be filled, for one with a coordinate that is not finite or beyond
  ///                     float, gives a face with fewer regions or none
  /// \param brushNumber  stored in every region
  /// \return the new face, never null, owned by the object's faces
  /// \throws std::invalid_argument if `scene` or `object` is null
  static Face* makeFromLoops(Scene::Scene3D* scene, Scene::Object* object,
                             std::vector<std::vector<Point3d>> loops, int brushNumber);

 private:
  Vector3d* normal;
};

}  // namespace Lumivane::Geometry
