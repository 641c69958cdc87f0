#pragma once

namespace Lumivane::Test {

/// Keeps the OpenGL driver in the process once it has been loaded. Otherwise it goes with the last
/// window, and a leak checker can no longer find whose memory the driver left behind.
void keepDrivers();

}  // namespace Lumivane::Test
