#pragma once

#include <lumivane/session/ShotPolygons.h>

#include <string>

namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::Session {

/// The polygons of a shot. \throws Error, with `name` as its subject, for a number that points at
/// nothing
ShotPolygons polygonsOf(Shot::Shot2d& shot, const std::string& name);

}  // namespace Lumivane::Session
