#pragma once

#include "kernel/BoxTree.h"
#include "kernel/Classify.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

/// Which faces are wholly hidden, found without testing every pair: HiderSearch.cpp says why that
/// is what all pairs say.
namespace Lumivane::Kernel {

/// Looks for faces that wholly hide others. It knows the faces by reference, and may be asked by
/// any number of threads at a time.
class HiderSearch {
 public:
  static constexpr std::uint32_t None = std::numeric_limits<std::uint32_t>::max();

  /// \param boxes  the meeting boxes of the faces
  /// \param tree   of these boxes
  HiderSearch(const FaceShapes& shapes, const std::vector<Box>& boxes, const BoxTree& tree);

  /// A face that hides the given one, the same one at every call; None if no face does.
  ///
  /// \param found  room for one position more than there are faces
  std::uint32_t hiderOf(std::uint32_t face, PairScan& scan, std::uint32_t* found) const;

 private:
  const FaceShapes* shapes;
  const std::vector<Box>* boxes;
  const BoxTree* tree;
  bool isTame;  // whether a hider's box encloses what it hides along x, too
};

/// Whether the cell of a pair hides one of the two, asked of a pair in any order.
bool isHiddenBy(const FaceShapes& shapes, std::size_t face, std::size_t other, PairScan& scan);

/// At least as many as there are pairs of boxes that meet; exactly as many if each box that meets
/// anything has its sides in order.
std::uint64_t mostMeetingPairs(const std::vector<Box>& boxes);

}  // namespace Lumivane::Kernel
