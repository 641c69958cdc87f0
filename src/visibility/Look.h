#pragma once

#include "kernel/Vec.h"
#include "visibility/LookPolygons.h"

#include <lumivane/visibility/LookOptions.h>
#include <lumivane/visibility/VisibleMap.h>

namespace Lumivane::Visibility {

/// Looks in all directions, and fills all of the map but its view and names.
void lookAround(const LookSetup& setup, const LookOptions& options, VisibleMap& map);

bool isFinite(const Vector& v);
/// Of length 1; of any vector but zero.
Kernel::Vec3 unitOf(const Vector& v);
/// The part of a wanted direction that is at right angles to forward, of length 1. If there is
/// none, that of the scene's axis that is farthest from forward, z first.
Kernel::Vec3 upOf(const Vector& wanted, Kernel::Vec3 forward);

}  // namespace Lumivane::Visibility
