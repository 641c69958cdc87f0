#pragma once

#include <string>

namespace Lumivane::IO {

/// Logs `verb`, the path and a line end, as three messages.
void logPath(const char* verb, const std::string& path);

}  // namespace Lumivane::IO
