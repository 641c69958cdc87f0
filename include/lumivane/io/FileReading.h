#pragma once

#include <lumivane/export.h>

#include <string>

namespace Lumivane::IO {

/// Fails unless the file can be read, so that it is known before the work.
/// \throws Error
LUMIVANE_EXPORT void checkReadable(const std::string& path);

/// The bytes of a file, line ends included. Devices but a terminal are refused: some never end.
/// \throws Error
LUMIVANE_EXPORT std::string readBytes(const std::string& path);

/// The text of a scene or shot file as `IO::DataReader` joins it: without its line feeds.
/// \throws Error
LUMIVANE_EXPORT std::string readDocument(const std::string& path);

}  // namespace Lumivane::IO
