// The promised order is that of a plain scan of all edges for every node taken; the kernel finds it
// with an index of the edges by node. Here names become numbers, and the rest of a cycle is told.

#include "kernel/NumberText.h"
#include "kernel/Order.h"
#include "utils/Shapes.h"

#include <lumivane/algorithm/Graph.h>
#include <lumivane/cmd/Log.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <unordered_map>
#include <utility>

namespace Lumivane::Algorithm {
namespace {

// The edges between numbers of nodes, in the order in which the names appear.
struct NumberedEdges {
  std::vector<std::string> names;
  std::vector<Kernel::Arrow> arrows;

  explicit NumberedEdges(const std::vector<Edge>& edges) {
    arrows.reserve(edges.size());
    for (const Edge& edge : edges) {
      const std::size_t start = numberOf(edge.getStart());
      arrows.emplace_back(start, numberOf(edge.getEnd()));
    }
  }

 private:
  std::size_t numberOf(std::string name) {
    const auto found = numbers.emplace(name, names.size());
    if (found.second) names.push_back(std::move(name));
    return found.first->second;
  }

  std::unordered_map<std::string, std::size_t> numbers;
};

// By the numbers of the ends. A name is read only where the comparison comes to it, so one that is
// no number does no harm in a list of one edge.
bool isBefore(const Edge& a, const Edge& b) {
  const int startOfA = Kernel::parseInt(a.getStart());
  const int startOfB = Kernel::parseInt(b.getStart());
  if (startOfA != startOfB) return startOfA < startOfB;
  return Kernel::parseInt(a.getEnd()) < Kernel::parseInt(b.getEnd());
}

void writeReport(const std::string& fileName, const std::string& lastEnd,
                 const std::vector<Edge>& unsorted) {
  std::string text =
      "LOGFILE:\nTopological sorting of a graph\n\nerror: graph is cyclic\n\nm = " + lastEnd +
      "\n\nedges with unsorted nodes:\n";
  for (const Edge& edge : unsorted) text += edge.getStart() + " -> " + edge.getEnd() + "\n";
  // A file that cannot be written is passed over in silence.
  std::ofstream file(fileName, std::ios::out | std::ios::trunc);
  file << text;
}

bool holds(const std::vector<std::string>& list, const std::string& name) {
  return std::find(list.begin(), list.end(), name) != list.end();
}

}  // namespace

Graph::Graph(const std::vector<std::vector<std::string>>& rows) {
  edges.reserve(rows.size());
  for (const std::vector<std::string>& row : rows) {
    if (row.size() < 2) Utils::throwInvalidSubscript();
    Edge edge;
    edge.setStart(row[0]);
    edge.setEnd(row[1]);
    edges.push_back(std::move(edge));
  }
}

std::vector<std::string>* Graph::topologicalSort() {
  const NumberedEdges numbered(edges);
  const Kernel::TopologicalOrder order =
      Kernel::topologicalOrder(numbered.names.size(), numbered.arrows);
  auto sorted = std::make_unique<std::vector<std::string>>();
  for (const std::size_t node : order.nodes) sorted->push_back(numbered.names[node]);
  const std::string lastEnd =
      order.erasedEdges.empty() ? std::string() : edges[order.erasedEdges.back()].getEnd();

  std::vector<Edge> unsorted;
  for (const std::size_t edge : order.remainingEdges) unsorted.push_back(edges[edge]);
  edges = std::move(unsorted);
  if (edges.empty()) return sorted.release();

  Cmd::logMessage("\nError: Graph is cyclic\n\n");
  std::sort(edges.begin(), edges.end(), isBefore);
  if (!logFileName.empty()) writeReport(logFileName, lastEnd, edges);
  return sorted.release();
}

void Graph::getNodesWithNoIncomingEdges(std::vector<std::string>* list) {
  if (list == nullptr) return;
  for (const Edge& edge : edges) {
    const std::string start = edge.getStart();
    if (noIncomingEdges(start) && !holds(*list, start)) list->push_back(start);
  }
}

bool Graph::noIncomingEdges(std::string node) {
  return std::none_of(edges.begin(), edges.end(),
                      [&](const Edge& edge) { return edge.getEnd() == node; });
}

std::string Graph::getFirstElement(std::vector<std::string>* list) {
  if (list == nullptr || list->empty()) Utils::throwInvalidSubscript();
  return list->front();
}

}  // namespace Lumivane::Algorithm
