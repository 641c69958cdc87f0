#pragma once

#include <lumivane/algorithm/ProjectionType.h>

namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::Measure {

/// The projection of a shot that knows its view. \throws std::invalid_argument if it has no view or
/// the view no camera of a known kind
Algorithm::ProjectionType projectionOf(const Shot::Shot2d& shot);

}  // namespace Lumivane::Measure
