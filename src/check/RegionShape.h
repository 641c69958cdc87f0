#pragma once

#include "check/Findings.h"

namespace Lumivane::Scene {
class Object;
class Scene3D;
}  // namespace Lumivane::Scene

namespace Lumivane::Check {

/// What is odd in the outlines of an object's regions: too few, repeated or far points, bends,
/// crossings, short edges; and normals of faces that look elsewhere than the outlines are wound.
void findOddShapes(Scene::Object& object, Scene::Scene3D& scene, Findings& findings);

}  // namespace Lumivane::Check
