#pragma once

#include "algorithm/pipeline/SortShapes.h"

#include <lumivane/algorithm/ObjectData.h>

#include <vector>

namespace Lumivane::Scene {
class Scene3D;
}
namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::Algorithm {

/// Takes the faces of a shot into flat lists: one object and one face of `shapes` for each face
/// that has a polygon, with the polygon of the scene that each piece was made of.
///
/// \param objects  gets the new objects, which end by `SortObject::release`
/// \throws std::out_of_range if a face, a region or an object refers to something that is not there
void collectFaces(Scene::Scene3D& scene, Shot::Shot2d& shot, SortShapes& shapes,
                  std::vector<ObjectData*>& objects);

}  // namespace Lumivane::Algorithm
