#pragma once

#include "kernel/Vec.h"
#include "visibility/IndexState.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Lumivane::Visibility {

/// A box in single precision that holds what it was made for, whatever rounding did.
struct FloatBox {
  float low[3];
  float high[3];
};

/// The least box around some points. \pre there is one, with coordinates up to 1e30
FloatBox boxAround(const Kernel::Vec3* points, std::size_t count);

/// A bounding volume hierarchy, and the order of the boxes in its leaves.
struct BoxHierarchy {
  static constexpr int LeafSize = 4;    ///< most boxes of a leaf
  static constexpr int MostDepth = 80;  ///< most nodes on the way from the root down to a leaf

  std::vector<BoxNode> nodes;       ///< the first is the root; empty if there are no boxes
  std::vector<std::int32_t> order;  ///< for each place in a leaf the position of its box
};

/// Divides boxes where the surface area heuristic over up to 16 bins for each axis finds least cost
/// (I. Wald, On fast Construction of SAH-based Bounding Volume Hierarchies, 2007). The same boxes
/// give the same tree on every machine.
BoxHierarchy makeHierarchy(const std::vector<FloatBox>& boxes);

}  // namespace Lumivane::Visibility
