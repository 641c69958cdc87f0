#pragma once

#include "importers/SourceModel.h"
#include "kernel/Vec.h"

#include <string>

namespace Lumivane::Importers {

/// The colour of a semantic surface, by its type as "RoofSurface"; null if the type is none of
/// CityJSON's.
const SourceMaterial* surfaceColour(const std::string& surfaceType);

/// The colour of a city object without semantic surfaces, by its type as "Road". Every type has
/// one: those that CityJSON does not know, as those of extensions, share one.
const SourceMaterial& objectColour(const std::string& objectType);

/// The class of a surface: its semantic type without "Surface" ("Roof" for "RoofSurface") and
/// without the "+" of an extension, or, where it has no semantics, the type of its city object, for
/// parts that of what they are parts of.
std::string cityClass(const std::string& surfaceType, const std::string& objectType);

/// Whether objects of this type are buildings and the like, whose surfaces are distinguished by
/// their slope where there are no semantics.
bool isBuildingType(const std::string& objectType);

/// Whether objects of this type are pieces of the ground, which are mostly triangulated.
bool isTerrainType(const std::string& objectType);

/// The semantic type that the slope of a building's surface suggests.
/// \param normal  to the outside, of length 1
const char* surfaceTypeBySlope(Kernel::Vec3 normal);

}  // namespace Lumivane::Importers
