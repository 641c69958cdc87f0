// The bytes are names, two to an edge of a graph. The order of its nodes is that of a plain scan of
// all edges, with a cycle or without.

#include "Bytes.h"
#include "plain/DepthSort.h"

#include <lumivane/algorithm/Graph.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Rows = std::vector<std::vector<std::string>>;
using Lumivane::Fuzz::Bytes;
using Lumivane::Fuzz::require;

constexpr std::size_t MostEdges = 256;

// Mostly one of 32 numbers, so that edges meet; sometimes any text, which may be no number.
std::string name(Bytes& bytes) {
  const auto kind = bytes.take<std::uint8_t>();
  if (kind < 224) return std::to_string(kind % 32);
  std::string text;
  for (int length = kind % 16; length > 0 && !bytes.empty(); --length)
    text.push_back(bytes.take<char>());
  return text;
}

bool hasLoop(const Rows& left) { return !left.empty(); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lumivane::Fuzz::silence();
  Bytes bytes(data, size);
  Rows rows;
  while (!bytes.empty() && rows.size() < MostEdges) {
    std::string start = name(bytes);
    rows.push_back({std::move(start), name(bytes)});
  }
  const Lumivane::Plain::Sorted expected = Lumivane::Plain::sortGraph(rows);
  try {
    Lumivane::Algorithm::Graph graph(rows);
    const std::unique_ptr<std::vector<std::string>> order(graph.topologicalSort());
    require(*order == expected.nodes);
  } catch (const std::invalid_argument&) {
    require(hasLoop(expected.edges));  // of names that are no numbers
  } catch (const std::out_of_range&) {
    require(hasLoop(expected.edges));  // or of too large ones
  }
  return 0;
}
