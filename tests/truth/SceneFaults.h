#pragma once

#include "truth/Judge.h"

#include <lumivane/visibility/VisibleMap.h>

#include <string>

namespace Lumivane::Truth {

/// What is wrong with a map by the planes of the scene's flat regions: least and greatest distances
/// of cells, and edges whose kind says that two regions meet where they do not. One line for each
/// kind of fault; empty if there is none.
std::string sceneFaultText(const Judge& judge, const Visibility::VisibleMap& map);

}  // namespace Lumivane::Truth
