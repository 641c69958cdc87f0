#pragma once

#include "Wholes.h"

#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/MapText.h>

#include <vector>

namespace Lumivane::Host {

/// The rows of a table of shares by building: parts of one whole are summed up under its id, other
/// objects stand for themselves; in the order in which they are first named, the sky last.
std::vector<Visibility::ShareRow> buildingRows(const Visibility::VisibleMap& map,
                                               const Visibility::MapShares& shares,
                                               const Wholes& wholes);

}  // namespace Lumivane::Host
