#pragma once

#include "algorithm/pipeline/SortShapes.h"
#include "kernel/SparseCells.h"

#include <lumivane/algorithm/ObjectData.h>

#include <vector>

namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::Algorithm {

/// Puts the objects into the order in which they are drawn, by the cells of their pairs, and
/// numbers them; those that are hidden are destroyed. A cyclic overlap is reported, noted in
/// `sortFacts`, and survived.
void orderObjects(std::vector<ObjectData*>& objects, const SortShapes& shapes,
                  const Kernel::SparseCells& cells);

/// Rewrites the regions and faces of the shot in the order of the objects.
void rewriteShot(Shot::Shot2d& shot, SortShapes& shapes,
                 const std::vector<ObjectData*>& sortedObjects);

}  // namespace Lumivane::Algorithm
