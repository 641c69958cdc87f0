#pragma once

#include "scene/Model.h"

namespace Lumivane::Bench {

/// A town of boxes of random size and turn, each on a lot of its own, with streets between the lots
/// and one ground tile under each lot; the lots fill a square, the last of them may be empty. A box
/// has four walls and a roof, to be seen from outside. The same on every machine.
///
/// The views: "air", over a corner, with the whole town ahead; "street", an eye at 1.7 metres in
/// the middle of the town; "sky", the same eye looking up. All are spherical.
BenchScene city(int boxes, std::uint64_t seed = 1);

}  // namespace Lumivane::Bench
