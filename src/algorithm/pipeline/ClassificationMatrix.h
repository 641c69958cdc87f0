#pragma once

#include "kernel/SparseCells.h"

namespace Lumivane::Algorithm {

/// The cells of the depth sort by positions in its list of objects. A name of its own, so that the
/// public header need not know the kernels.
class ClassificationMatrix : public Kernel::SparseCells {};

}  // namespace Lumivane::Algorithm
