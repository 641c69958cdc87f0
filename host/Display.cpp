#include "Display.h"

#include <cstdlib>

#include <X11/Xlib.h>

namespace Lumivane::Host {
namespace {

constexpr const char* WayOut = "; run it under xvfb-run, e.g. \"xvfb-run -a lumivane ...\"";

}  // namespace

std::string displayFault() {
  const char* const name = std::getenv("DISPLAY");
  if (name == nullptr || *name == '\0')
    return std::string("no display (DISPLAY is not set)") + WayOut;

  // Left open to the end of the process: a server whose last client leaves starts anew, and may
  // turn VTK away meanwhile.
  static Display* const display = XOpenDisplay(nullptr);
  if (display == nullptr)
    return "the display \"" + std::string(name) + "\" cannot be opened" + WayOut;
  int opcode = 0;
  int event = 0;
  int error = 0;
  const bool draws = XQueryExtension(display, "GLX", &opcode, &event, &error) != 0;
  if (!draws) return "the display \"" + std::string(name) + "\" has no OpenGL" + WayOut;
  return "";
}

}  // namespace Lumivane::Host
