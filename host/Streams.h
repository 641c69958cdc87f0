#pragma once

#include <string>

namespace Lumivane::Host {

/// Opens to nowhere what of standard input, output and error is closed: else the next file that is
/// opened would get its number, and with it what is printed.
void openStandardStreams();

/// Keeps standard output free for one output: what is printed from now on goes to standard error.
/// \return the name of a file to write that is standard output; empty if it is taken already
std::string takeStandardOutput();

/// A message in which standard output, once it is taken, has its own name.
std::string withStandardOutputNamed(const std::string& message);

/// Writes out what has been printed.
/// \throws HostError if standard output did not take all of it
void finishStandardOutput();

}  // namespace Lumivane::Host
