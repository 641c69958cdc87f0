#pragma once

#include "algorithm/pipeline/SortShapes.h"
#include "kernel/SparseCells.h"

#include <lumivane/algorithm/ObjectData.h>

#include <vector>

namespace Lumivane::Algorithm {

/// Which cells are wanted.
enum class CellsWanted {
  All,
  Deciding  ///< those that the drawing order depends on; the others read "apart"
};

/// Decides one cell for every pair of faces, by their places in `shapes`, and reports progress.
/// Cells, messages and errors do not depend on the number of threads (`ShotLimits::threads`), and
/// the drawing order, messages and errors not on which cells are wanted.
///
/// \param objects  the faces' objects, named in errors
/// \throws std::length_error if more pairs lie over each other than the memory limit has room for
void classifyFaces(const SortShapes& shapes, const std::vector<ObjectData*>& objects,
                   CellsWanted wanted, Kernel::SparseCells& cells);

}  // namespace Lumivane::Algorithm
