#pragma once

#include <lumivane/algorithm/Edge.h>
#include <lumivane/export.h>

#include <string>
#include <vector>

namespace Lumivane::Algorithm {

/// A directed graph, known by its edges alone, that can be sorted topologically.
///
/// A node is a string and exists only as an end of some edge. Sorting consumes the edges.
class LUMIVANE_EXPORT Graph {
 public:
  Graph() = default;  ///< A graph without edges.
  /// One edge per row, in the order of the rows: from element 0 to element 1 of the row. Further
  /// elements are ignored.
  ///
  /// \throws std::out_of_range "invalid vector subscript" if a row has fewer than 2 elements
  explicit Graph(const std::vector<std::vector<std::string>>& rows);

  /// The nodes in an order in which every edge leads from an earlier to a later one.
  ///
  /// The order among nodes that are free at the same time is fixed: Kahn's algorithm with a
  /// first-in, first-out list, which begins with the free nodes in the order of their first
  /// appearance as the start of an edge, and follows the edges in their order. Kahn, "Topological
  /// Sorting of Large Networks" (1962).
  ///
  /// On a cycle the list lacks every node on a cycle and every node that only a cycle leads to, the
  /// edges between them stay in the graph, sorted by the numbers of their ends, a message is
  /// printed, and a report is written to "log_sort.txt" in the working directory. A report that
  /// cannot be written is passed over in silence.
  ///
  /// \return a new list, which the caller owns
  /// \throws std::invalid_argument "invalid stoi argument", on a cycle, if the name of a node that
  ///         has to be compared is no number
  /// \throws std::out_of_range "stoi argument out of range", likewise, if it is beyond int
  std::vector<std::string>* topologicalSort();

  /// Appends to `list` every node that an edge starts from and none leads to, in the order of first
  /// appearance, except those that `list` holds already. The list stays the caller's.
  void getNodesWithNoIncomingEdges(std::vector<std::string>* list);

  /// Whether no edge leads to `node`; true for a name that the graph does not know.
  bool noIncomingEdges(std::string node);

  /// A copy of the first element.
  ///
  /// \throws std::out_of_range "invalid vector subscript" if the list is empty
  std::string getFirstElement(std::vector<std::string>* list);

 private:
  std::vector<Edge> edges;
  std::string logFileName = "log_sort.txt";
};

}  // namespace Lumivane::Algorithm
