#pragma once

#include <string>
#include <vector>

namespace Lumivane::Exchange {

/// Checks a PLY file from end to end: the header, that every number of every element is there,
/// that the coordinates are finite, and that the faces refer to vertices that exist.
///
/// \throws ImportError
void checkPly(const std::string& bytes);

}  // namespace Lumivane::Exchange
