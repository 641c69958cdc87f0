#pragma once

#include "truth/HardScenes.h"

#include <cstddef>

namespace Lumivane::Truth {

/// The number of kinds of wild scenes.
constexpr std::size_t WildKinds = 16;

/// Scenes made to break an engine rather than to resemble anything: corners, edges and eyes on one
/// small grid, outlines that touch and repeat themselves, eyes a hair from bent edges and planes,
/// lengths from 1e-200 to 1e25, hundreds of edges on one line. Number i is of kind i % WildKinds;
/// the same on every machine, and as many as are asked for.
HardScene wildScene(std::size_t number);

}  // namespace Lumivane::Truth
