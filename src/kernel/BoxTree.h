#pragma once

#include "kernel/Bounds.h"
#include "kernel/Lanes.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Which of many boxes meet a given one, without asking them all.
namespace Lumivane::Kernel {

/// A tree of boxes, each node with as many children as there are lanes, so that one comparison of
/// lanes asks all of them. Neighbours in the tree are neighbours on the picture: the boxes are
/// sorted by the place of their centres on a Z-shaped curve. After Kamel and Faloutsos, "On Packing
/// R-trees" (1993), with Morton's curve in place of Hilbert's.
///
/// A box with a side that is not a number meets nothing.
class BoxTree {
 public:
  explicit BoxTree(const std::vector<Box>& boxes);

  /// Writes the positions below `limit` of the boxes that meet `box`, ascending.
  ///
  /// \param found  room for one position more than `limit`
  /// \return how many there are
  std::size_t findMeeting(const Box& box, std::uint32_t limit, std::uint32_t* found) const;

  /// Writes the positions of the boxes that enclose `box`, in the order of the tree: they may touch
  /// it on all sides but the upper one. Sides may be past each other, as in a box that was shrunk.
  ///
  /// \param found  room for one position more than there are boxes
  /// \return how many there are
  std::size_t findEnclosing(const Box& box, std::uint32_t* found) const;

 private:
  struct Node {
    double xMin[Lanes], xMax[Lanes], yMin[Lanes], yMax[Lanes];
    std::uint32_t lowest[Lanes];  // of a leaf the position itself, else the lowest one below
  };

  static Node emptyNode();
  static void setLane(Node& node, std::size_t lane, const Box& box, std::uint32_t lowest);
  void addLeaves(const std::vector<Box>& boxes);
  void addLevel(std::size_t first, std::size_t count);
  template <class IsWanted>
  std::size_t walk(std::uint32_t limit, std::uint32_t* found, IsWanted isWanted) const;
  std::size_t walkMeeting(const Box& box, std::uint32_t limit, std::uint32_t* found) const;
  std::size_t walkEnclosing(const Box& box, std::uint32_t* found) const;

  std::vector<Node> nodes;          // level by level, the leaves first
  std::vector<std::size_t> levels;  // where each level starts
};

}  // namespace Lumivane::Kernel
