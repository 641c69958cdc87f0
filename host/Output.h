#pragma once

#include <string>

namespace Lumivane::Host {

/// Fails if the file surely cannot be written, so that it is known before the long work: an empty
/// name, a missing folder, a folder in the file's place.
/// \throws HostError
void checkWritable(const std::string& path);

/// Writes a file whole or not at all: into a new file beside it, which then takes its name. What is
/// no plain file, as a device or a pipe, is written directly. Every write is checked.
/// \throws HostError
void writeFile(const std::string& path, const std::string& bytes);

/// Whether two names mean one file.
bool sameFile(const std::string& a, const std::string& b);

}  // namespace Lumivane::Host
