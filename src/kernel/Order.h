#pragma once

#include "kernel/Classify.h"

#include <cstddef>
#include <utility>
#include <vector>

/// From pair relations to one order. Nodes and faces are positions, from 0.
namespace Lumivane::Kernel {

/// An edge: drawn earlier, drawn later.
using Arrow = std::pair<std::size_t, std::size_t>;

/// A topological order of the nodes of a list of edges.
struct TopologicalOrder {
  std::vector<std::size_t> nodes;
  std::vector<std::size_t> remainingEdges;  ///< ascending; empty if there is no cycle
  std::vector<std::size_t> erasedEdges;     ///< in the order of their erasing
};

/// The edges by the node they start from, in their order.
struct EdgesByStart {
  std::vector<std::size_t> firstOf;  ///< per node, and one past the last
  std::vector<std::size_t> edges;

  EdgesByStart(std::size_t nodeCount, const std::vector<Arrow>& arrows)
      : firstOf(nodeCount + 1, 0), edges(arrows.size()) {
    for (const Arrow& arrow : arrows) ++firstOf[arrow.first + 1];
    for (std::size_t node = 0; node < nodeCount; ++node) firstOf[node + 1] += firstOf[node];
    std::vector<std::size_t> next(firstOf);
    for (std::size_t edge = 0; edge < arrows.size(); ++edge)
      edges[next[arrows[edge].first]++] = edge;
  }
};

/// Kahn's algorithm with a first-in, first-out list that begins with the free nodes in the order of
/// their first appearance as a start. A node becomes free once, when the last edge to it is erased,
/// so counting the edges to each node finds what a scan of all edges finds.
inline TopologicalOrder topologicalOrder(std::size_t nodeCount, const std::vector<Arrow>& arrows) {
  std::vector<std::size_t> incoming(nodeCount, 0);
  for (const Arrow& arrow : arrows) ++incoming[arrow.second];
  const EdgesByStart byStart(nodeCount, arrows);

  TopologicalOrder result;
  std::vector<char> isListed(nodeCount, 0);
  for (const Arrow& arrow : arrows) {
    if (incoming[arrow.first] != 0 || isListed[arrow.first] != 0) continue;
    isListed[arrow.first] = 1;
    result.nodes.push_back(arrow.first);
  }
  // The list of free nodes is the tail of the result, from `taken` on.
  for (std::size_t taken = 0; taken < result.nodes.size(); ++taken) {
    const std::size_t node = result.nodes[taken];
    for (std::size_t k = byStart.firstOf[node]; k < byStart.firstOf[node + 1]; ++k) {
      const std::size_t end = arrows[byStart.edges[k]].second;
      result.erasedEdges.push_back(byStart.edges[k]);
      if (--incoming[end] == 0) result.nodes.push_back(end);
    }
  }
  std::vector<char> isErased(arrows.size(), 0);
  for (const std::size_t edge : result.erasedEdges) isErased[edge] = 1;
  for (std::size_t edge = 0; edge < arrows.size(); ++edge)
    if (isErased[edge] == 0) result.remainingEdges.push_back(edge);
  return result;
}

/// Who is hidden, row by row as found, so that a face may come in several times. Of the matrix the
/// cells [i][j] with i > j are read.
inline std::vector<std::size_t> hiddenFaces(const std::vector<std::vector<int>>& matrix,
                                            std::size_t count) {
  std::vector<std::size_t> hidden;
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (matrix[i][j] == Cell::SecondHidden) hidden.push_back(j);
      if (matrix[i][j] == Cell::FirstHidden) hidden.push_back(i);
    }
  }
  return hidden;
}

/// One flag per face: whether the list names it.
inline std::vector<char> flagsOf(const std::vector<std::size_t>& faces, std::size_t count) {
  std::vector<char> flags(count, 0);
  for (const std::size_t face : faces) flags[face] = 1;
  return flags;
}

/// The drawn-before relations among the faces that are not hidden, row by row.
// Deliberate: a hidden face has no relation, not even to faces that it would cover.
inline std::vector<Arrow> drawnBefore(const std::vector<std::vector<int>>& matrix,
                                      const std::vector<char>& isHidden) {
  std::vector<Arrow> arrows;
  for (std::size_t i = 0; i < isHidden.size(); ++i) {
    if (isHidden[i] != 0) continue;
    for (std::size_t j = 0; j < i; ++j) {
      if (isHidden[j] != 0) continue;
      // A cell that hides one of the two has a hidden end and does not come here.
      if (matrix[i][j] == Cell::FirstInFront) arrows.emplace_back(j, i);
      if (matrix[i][j] == Cell::SecondInFront) arrows.emplace_back(i, j);
    }
  }
  return arrows;
}

/// The final order: the sorted faces, then all others in their own order, without the hidden.
inline std::vector<std::size_t> drawingOrder(const std::vector<std::size_t>& sorted,
                                             const std::vector<char>& isHidden) {
  const std::vector<char> isSorted = flagsOf(sorted, isHidden.size());
  std::vector<std::size_t> order;
  for (const std::size_t face : sorted)
    if (isHidden[face] == 0) order.push_back(face);
  for (std::size_t face = 0; face < isHidden.size(); ++face)
    if (isSorted[face] == 0 && isHidden[face] == 0) order.push_back(face);
  return order;
}

}  // namespace Lumivane::Kernel
