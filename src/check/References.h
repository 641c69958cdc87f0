#pragma once

#include "check/Findings.h"

namespace Lumivane::Geometry {
class Point3d;
class Region;
}  // namespace Lumivane::Geometry
namespace Lumivane::Scene {
class Object;
class Scene3D;
}  // namespace Lumivane::Scene

namespace Lumivane::Check {

/// What an object's numbers point at: the points, and how many there are of all else.
struct Counts {
  explicit Counts(Scene::Scene3D& scene);

  const std::vector<Geometry::Point3d*>* pointList;  ///< the scene's; never null
  size_t points, brushes, pens, objects;
  bool hasBrushes, hasPens;  ///< without these lists, defaults are drawn
};

/// What makes every shot of an object fail or be wrong: numbers of its regions that point at
/// nothing, and corners that are not finite.
void findErrors(Scene::Object& object, const Counts& counts, Findings& findings);

/// Numbers that point at nothing where a shot does not need them, and lists that contradict each
/// other.
void findLooseNumbers(Scene::Object& object, const Counts& counts, Findings& findings);

/// Two objects of one id. The depth sort takes the first object of an id for all of them, so a
/// later one that can be seen is an error: a shot compares the wrong polygons, or fails at a region
/// that only the later one has.
///
/// \param least  what is reported: all, or errors only
void findDoubleIds(Scene::Scene3D& scene, Severity least, Findings& findings);

}  // namespace Lumivane::Check
