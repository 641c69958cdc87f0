#pragma once

#include "kernel/Classify.h"

namespace Lumivane::Algorithm {

/// The polygons of the objects of a sort, face k those of object k as the list of objects was made.
/// A name of its own, so that public headers need not know the kernels.
class SortShapes : public Kernel::FaceShapes {};

}  // namespace Lumivane::Algorithm
