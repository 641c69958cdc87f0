#pragma once

#include "check/Findings.h"

namespace Lumivane::Geometry {
class Region;
}
namespace Lumivane::Scene {
class Object;
class Scene3D;
}  // namespace Lumivane::Scene

namespace Lumivane::Check {

/// How many there are of what an object's numbers point at.
struct Counts {
  explicit Counts(Scene::Scene3D& scene);

  size_t points, brushes, pens, objects;
  bool hasBrushes, hasPens;  ///< without these lists, defaults are drawn
};

/// Numbers of an object and its regions that make every shot fail.
void findErrors(Scene::Object& object, const Counts& counts, Findings& findings);

/// Numbers that point at nothing where a shot does not need them, and lists that contradict each
/// other.
void findLooseNumbers(Scene::Object& object, const Counts& counts, Findings& findings);

/// Two objects of one id. The depth sort takes the first object of an id for all of them, so a
/// region that only a later one has is an error: a shot that sees it fails.
///
/// \param least  what is told: all, or errors only
void findDoubleIds(Scene::Scene3D& scene, Severity least, Findings& findings);

}  // namespace Lumivane::Check
