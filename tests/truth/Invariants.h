#pragma once

#include <lumivane/visibility/VisibleMap.h>

#include <string>
#include <vector>

namespace Lumivane::Truth {

/// What is wrong with a map by its own account, without the scene: one line for each kind of fault,
/// with the number of times and an example. Empty for a sound map.
std::vector<std::string> faultsOf(const Visibility::VisibleMap& map);

/// The same as one text, for messages of tests.
std::string faultText(const Visibility::VisibleMap& map);

/// Solid angle of a cell, from its rings.
double solidAngleOf(const Visibility::VisibleMap& map, std::size_t cell);

/// Lambert's contour sum over the rings of a cell.
double viewFactorOf(const Visibility::VisibleMap& map, std::size_t cell);

/// The sum of all cells' solid angles less that of the field.
double areaError(const Visibility::VisibleMap& map);

}  // namespace Lumivane::Truth
