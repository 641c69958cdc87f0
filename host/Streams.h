#pragma once

namespace Lumivane::Host {

/// Opens to nowhere what of standard input, output and error is closed: else the next file that is
/// opened would get its number, and with it what is printed.
void openStandardStreams();

/// Writes out what has been printed.
/// \throws HostError if standard output did not take all of it
void finishStandardOutput();

}  // namespace Lumivane::Host
