#pragma once

#include <string_view>

namespace Lumivane::Importers {

/// Fails if lists and objects of a JSON text lie deeper within each other than any model needs:
/// what reads and copies their trees calls itself for each level.
/// \throws ImportError
void checkDepth(std::string_view json);

}  // namespace Lumivane::Importers
