#include "algorithm/pipeline/CycleReport.h"

#include "cmd/NumberText.h"

#include <lumivane/cmd/Log.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <mutex>
#include <optional>

namespace Lumivane::Algorithm {
namespace {

using Kernel::Arrow;

// The numbers that nodes are named after. A name is read only where a comparison comes to it, so
// one that is no number does no harm in a list of one edge, and only once.
class NodeNumbers {
 public:
  explicit NodeNumbers(const std::vector<std::string>& nodeNames)
      : names(nodeNames), numbers(nodeNames.size()) {}

  int operator[](std::uint32_t node) {
    if (!numbers[node]) numbers[node] = Cmd::parseInt(names[node]);
    return *numbers[node];
  }

 private:
  const std::vector<std::string>& names;
  std::vector<std::optional<int>> numbers;
};

void sortByNumbers(std::vector<Arrow>& edges, const std::vector<std::string>& names) {
  NodeNumbers numbers(names);
  std::sort(edges.begin(), edges.end(), [&numbers](const Arrow& a, const Arrow& b) {
    const int startOfA = numbers[a.first];
    const int startOfB = numbers[b.first];
    if (startOfA != startOfB) return startOfA < startOfB;
    return numbers[a.second] < numbers[b.second];
  });
}

}  // namespace

void reportCycle(const std::string& fileName, const std::vector<std::string>& names,
                 Kernel::TopologicalOrder& order) {
  Cmd::logMessage("\nError: Graph is cyclic\n\n");
  sortByNumbers(order.remaining, names);
  if (fileName.empty()) return;
  std::string text = "LOGFILE:\nTopological sorting of a graph\n\nerror: graph is cyclic\n\nm = " +
                     (order.lastEnd ? names[*order.lastEnd] : std::string()) +
                     "\n\nedges with unsorted nodes:\n";
  for (const Arrow& edge : order.remaining)
    text.append(names[edge.first]).append(" -> ").append(names[edge.second]).append("\n");
  static std::mutex oneAtATime;  // two threads would mix their reports
  const std::lock_guard<std::mutex> lock(oneAtATime);
  std::ofstream file(fileName, std::ios::out | std::ios::trunc);
  file << text;
}

}  // namespace Lumivane::Algorithm
