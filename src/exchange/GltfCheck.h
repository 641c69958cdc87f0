#pragma once

#include <string>

namespace Lumivane::Exchange {

/// Checks a glTF 2.0 document, text or binary, for all that VTK's loader takes on trust: that
/// every number that refers to something refers to something that is there, that the nodes make
/// trees, and that buffers, their views and the accessors to them lie within each other.
///
/// \param path  of the document: buffers in files of their own stand beside it
/// \throws ImportError
void checkGltf(const std::string& path, const std::string& bytes);

}  // namespace Lumivane::Exchange
