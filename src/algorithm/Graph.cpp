// The promised order is that of a plain scan of all edges for every node taken; the kernel finds it
// with an index of the edges by node. Here names become numbers, and the rest of a cycle is
// reported.

#include "algorithm/pipeline/CycleReport.h"
#include "kernel/Order.h"
#include "utils/Shapes.h"

#include <lumivane/algorithm/Graph.h>

#include <algorithm>
#include <cstdint>
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
      const std::uint32_t start = numberOf(edge.getStart());
      arrows.emplace_back(start, numberOf(edge.getEnd()));
    }
  }

 private:
  std::uint32_t numberOf(std::string name) {
    const auto found = numbers.emplace(name, static_cast<std::uint32_t>(names.size()));
    if (found.second) names.push_back(std::move(name));
    return found.first->second;
  }

  std::unordered_map<std::string, std::uint32_t> numbers;
};

Edge edgeBetween(const std::string& start, const std::string& end) {
  Edge edge;
  edge.setStart(start);
  edge.setEnd(end);
  return edge;
}

std::vector<Edge> edgesOf(const std::vector<Kernel::Arrow>& arrows,
                          const std::vector<std::string>& names) {
  std::vector<Edge> edges;
  edges.reserve(arrows.size());
  for (const Kernel::Arrow& arrow : arrows)
    edges.push_back(edgeBetween(names[arrow.first], names[arrow.second]));
  return edges;
}

bool holds(const std::vector<std::string>& list, const std::string& name) {
  return std::find(list.begin(), list.end(), name) != list.end();
}

}  // namespace

Graph::Graph(const std::vector<std::vector<std::string>>& rows) {
  edges.reserve(rows.size());
  for (const std::vector<std::string>& row : rows) {
    if (row.size() < 2) Utils::throwInvalidSubscript();
    edges.push_back(edgeBetween(row[0], row[1]));
  }
}

std::vector<std::string>* Graph::topologicalSort() {
  const NumberedEdges numbered(edges);
  Kernel::TopologicalOrder order = Kernel::topologicalOrder(numbered.names.size(), numbered.arrows);
  auto sorted = std::make_unique<std::vector<std::string>>();
  for (const std::uint32_t node : order.nodes) sorted->push_back(numbered.names[node]);

  edges = edgesOf(order.remaining, numbered.names);  // what stays if a name is no number
  if (edges.empty()) return sorted.release();
  reportCycle(logFileName, numbered.names, order);
  edges = edgesOf(order.remaining, numbered.names);
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
