#pragma once

#include "kernel/Projection.h"

#include <lumivane/pictures/MapPicture.h>

namespace Lumivane::Pictures {

/// What is known of a projection of maps. \throws std::invalid_argument if there is no such one
const Kernel::Projection& ruleOf(MapProjection projection);

}  // namespace Lumivane::Pictures
