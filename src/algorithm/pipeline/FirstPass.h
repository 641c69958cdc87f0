#pragma once

#include "algorithm/pipeline/ObjectProjection.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

/// The first pass over a scene's objects: clip, keep what faces away from the eye, project.
namespace Lumivane::Algorithm {

/// When the eye is stepped off a polygon that it stands on.
struct EyeShift {
  double reach;  ///< nearer to the polygon's plane than this, in scene units
  double tilt;   ///< looking along the plane to within this angle, in degrees
};

/// What the first pass leaves for the second, which frees each object's part when it has used it.
struct ProjectedObjects {
  struct Part {
    PlaneRegions plane;
    std::size_t uses = 0;  ///< how often the object is listed
  };
  std::unordered_map<const Scene::Object*, Part> of;
};

/// Projects the objects one by one. What is found stays on each object, too, as the working lists
/// of the model; an eye that is shifted stays where it is for all that follow.
///
/// \throws as projectRegions
ProjectedObjects projectObjects(const std::vector<Scene::Object*>& objects,
                                const ProjectionSetting& setting, const EyeShift& shift);

}  // namespace Lumivane::Algorithm
