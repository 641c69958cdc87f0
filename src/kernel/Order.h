#pragma once

#include "kernel/SparseCells.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

/// From pair relations to one order. Nodes and faces are positions, from 0.
namespace Lumivane::Kernel {

/// An edge: drawn earlier, drawn later.
using Arrow = std::pair<std::uint32_t, std::uint32_t>;

/// A topological order of the nodes of a list of edges.
struct TopologicalOrder {
  std::vector<std::uint32_t> nodes;
  std::vector<Arrow> remaining;          ///< edges left by a cycle, in their order; else empty
  std::optional<std::uint32_t> lastEnd;  ///< where the edge led that was erased last
};

/// The ends of the edges by the node they start from, in the order of the edges.
struct EndsByStart {
  std::vector<std::size_t> firstOf;  ///< per node, and one past the last
  std::vector<std::uint32_t> ends;

  EndsByStart(std::size_t nodeCount, const std::vector<Arrow>& arrows)
      : firstOf(nodeCount + 1, 0), ends(arrows.size()) {
    for (const Arrow& arrow : arrows) ++firstOf[arrow.first + 1];
    for (std::size_t node = 0; node < nodeCount; ++node) firstOf[node + 1] += firstOf[node];
    std::vector<std::size_t> next(firstOf);
    for (const Arrow& arrow : arrows) ends[next[arrow.first]++] = arrow.second;
  }
};

/// Kahn's algorithm with a first-in, first-out list that begins with the free nodes in the order of
/// their first appearance as a start. A node becomes free once, when the last edge to it is erased,
/// so counting the edges to each node finds what a scan of all edges finds; and all edges from a
/// node are erased when it is taken, so those that remain start from nodes never taken.
inline TopologicalOrder topologicalOrder(std::size_t nodeCount, const std::vector<Arrow>& arrows) {
  std::vector<std::size_t> incoming(nodeCount, 0);
  for (const Arrow& arrow : arrows) ++incoming[arrow.second];
  const EndsByStart byStart(nodeCount, arrows);

  TopologicalOrder result;
  std::vector<char> isListed(nodeCount, 0);
  const auto list = [&](std::uint32_t node) {
    isListed[node] = 1;
    result.nodes.push_back(node);
  };
  for (const Arrow& arrow : arrows)
    if (incoming[arrow.first] == 0 && isListed[arrow.first] == 0) list(arrow.first);
  // The list of free nodes is the tail of the result, from `taken` on.
  for (std::size_t taken = 0; taken < result.nodes.size(); ++taken) {
    const std::uint32_t node = result.nodes[taken];
    for (std::size_t k = byStart.firstOf[node]; k < byStart.firstOf[node + 1]; ++k) {
      const std::uint32_t end = byStart.ends[k];
      result.lastEnd = end;
      if (--incoming[end] == 0) list(end);
    }
  }
  for (const Arrow& arrow : arrows)
    if (isListed[arrow.first] == 0) result.remaining.push_back(arrow);
  return result;
}

/// Who is hidden, row by row as found, so that a face may come in several times.
inline std::vector<std::uint32_t> hiddenFaces(const SparseCells& cells) {
  std::vector<std::uint32_t> hidden;
  for (std::uint32_t i = 0; i < cells.rowCount(); ++i) {
    for (const SparseCells::Entry& entry : cells.row(i)) {
      if (entry.cell == Cell::SecondHidden) hidden.push_back(entry.column);
      if (entry.cell == Cell::FirstHidden) hidden.push_back(i);
    }
  }
  return hidden;
}

/// One flag per face: whether the list names it.
inline std::vector<char> flagsOf(const std::vector<std::uint32_t>& faces, std::size_t count) {
  std::vector<char> flags(count, 0);
  for (const std::uint32_t face : faces) flags[face] = 1;
  return flags;
}

/// The drawn-before relations among the faces that are not hidden, row by row.
// Deliberate: a hidden face has no relation, not even to faces that it would cover.
inline std::vector<Arrow> drawnBefore(const SparseCells& cells, const std::vector<char>& isHidden) {
  std::vector<Arrow> arrows;
  for (std::uint32_t i = 0; i < isHidden.size(); ++i) {
    if (isHidden[i] != 0) continue;
    for (const SparseCells::Entry& entry : cells.row(i)) {
      const std::uint32_t j = entry.column;
      if (isHidden[j] != 0) continue;
      // A cell that hides one of the two has a hidden end and does not come here.
      if (entry.cell == Cell::FirstInFront) arrows.emplace_back(j, i);
      if (entry.cell == Cell::SecondInFront) arrows.emplace_back(i, j);
    }
  }
  return arrows;
}

/// The final order: the sorted faces, then all others in their own order, without the hidden.
inline std::vector<std::uint32_t> drawingOrder(const std::vector<std::uint32_t>& sorted,
                                               const std::vector<char>& isHidden) {
  std::vector<char> isPlaced(isHidden);
  std::vector<std::uint32_t> order;
  order.reserve(isHidden.size());
  const auto place = [&](std::uint32_t face) {
    if (isPlaced[face] != 0) return;
    isPlaced[face] = 1;
    order.push_back(face);
  };
  for (const std::uint32_t face : sorted) place(face);
  for (std::uint32_t face = 0; face < isHidden.size(); ++face) place(face);
  return order;
}

}  // namespace Lumivane::Kernel
