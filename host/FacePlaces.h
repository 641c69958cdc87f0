#pragma once

#include "ExactGrid.h"
#include "SceneSurfaces.h"

#include <string>
#include <vector>

namespace Lumivane::Host {

/// Surfaces that rise no more than this from upright, by the sine of their normal to the
/// horizontal, are walls where a scene has no classes; others that look up are roofs.
inline constexpr double WallSine = 0.25881904510252074;  // 15 degrees

/// Places on faces, in a square lattice on each, its lines level and along the slope. A face
/// between whose outlines no place of the lattice lies has one in its middle.
///
/// \param on         `all`; `roofs` and `walls`, by class or, where the scene has none or the class
///                   is that of a whole building, by slope; or a class
/// \param spacing    between two places, above 0
/// \param clearance  that the places are off their faces
/// \throws HostError that names `scene` if it has no such faces, or too many places would be made
std::vector<FacePlace> placesOnFaces(const SceneSurfaces& surfaces, const std::string& on,
                                     double spacing, double clearance, const std::string& scene);

}  // namespace Lumivane::Host
