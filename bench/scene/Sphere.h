#pragma once

#include "scene/Model.h"

namespace Lumivane::Bench {

/// A ball of triangles between circles of latitude, to be seen from outside, in one object; radius
/// 10 metres. The view "air" looks at it from a distance of three radii.
///
/// \param triangles  an even number, best twice a square: the bands are as many as the largest
///                   divisor of its half that is no larger than the root of it
/// \throws std::invalid_argument for a number that makes no ball
BenchScene sphere(int triangles);

}  // namespace Lumivane::Bench
