#pragma once

#include <ostream>
#include <string>

namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::IO {

/// The text of a shot: what `documentWriter` writes of `shot.serialize()`.
std::string shotText(Shot::Shot2d& shot);

/// The same into a stream, block by block.
void writeShotText(Shot::Shot2d& shot, std::ostream& stream);

}  // namespace Lumivane::IO
