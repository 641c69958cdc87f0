#pragma once

#include "algorithm/pipeline/SortShapes.h"
#include "kernel/SparseCells.h"

#include <lumivane/algorithm/ObjectData.h>

#include <vector>

namespace Lumivane::Algorithm {

/// Decides one cell for every pair of faces, by their places in `shapes`, and reports progress.
///
/// \param objects  the faces' objects, named in errors
/// \throws std::length_error if more pairs lie over each other than the memory limit has room for
void classifyFaces(const SortShapes& shapes, const std::vector<ObjectData*>& objects,
                   Kernel::SparseCells& cells);

}  // namespace Lumivane::Algorithm
