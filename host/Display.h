#pragma once

#include <string>

namespace Lumivane::Host {

/// Why nothing can be drawn here, with the way out; empty if a display with OpenGL is there.
/// VTK draws off screen through a display too, and ends the process if there is none.
std::string displayFault();

}  // namespace Lumivane::Host
