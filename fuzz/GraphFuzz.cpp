// The order of a graph's nodes: every node once, no edge against the order, unless it has a cycle.

#include "Bytes.h"

#include <lumivane/algorithm/Graph.h>

#include <algorithm>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Rows = std::vector<std::vector<std::string>>;
using Lumivane::Fuzz::Bytes;
using Lumivane::Fuzz::require;

std::string name(Bytes& bytes) {
  const auto kind = bytes.take<std::uint8_t>();
  if (kind == 255) return std::string(1, static_cast<char>(bytes.take<std::uint8_t>()));
  return std::to_string(kind % 32);
}

void checkOrder(const Rows& rows, const std::vector<std::string>& order) {
  std::map<std::string, std::size_t> place;
  for (std::size_t i = 0; i < order.size(); ++i) require(place.emplace(order[i], i).second);
  for (const auto& row : rows) {
    const auto from = place.find(row[0]), to = place.find(row[1]);
    // What is missing lies on or behind a cycle.
    if (to != place.end()) require(from != place.end() && from->second < to->second);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lumivane::Fuzz::silence();
  Bytes bytes(data, size);
  Rows rows;
  while (!bytes.empty() && rows.size() < 512) rows.push_back({name(bytes), name(bytes)});
  try {
    Lumivane::Algorithm::Graph graph(rows);
    const std::unique_ptr<std::vector<std::string>> order(graph.topologicalSort());
    checkOrder(rows, *order);
  } catch (const std::invalid_argument&) {
    // a cycle of names that are no numbers
  } catch (const std::out_of_range&) {
    // or of too large ones
  }
  return 0;
}
