#include "importers/OpenBodies.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace Lumivane::Importers {
namespace {

// The smaller and the greater vertex, then the object. One body may be spread over several objects,
// as the groups of an OBJ file are, so an edge counts whosever polygons use it.
using EdgeOfObject = std::array<int, 3>;

std::vector<EdgeOfObject> edgesOf(const SourceModel& model) {
  std::vector<EdgeOfObject> edges;
  for (const SourcePolygon& polygon : model.polygons)
    for (const std::vector<int>& loop : polygon.loops) {
      if (loop.size() < 3) continue;
      for (std::size_t i = 0; i < loop.size(); ++i) {
        const auto [low, high] = std::minmax(loop[i], loop[(i + 1) % loop.size()]);
        edges.push_back({low, high, polygon.object});
      }
    }
  std::sort(edges.begin(), edges.end());
  return edges;
}

}  // namespace

std::vector<OpenBody> openBodiesOf(const SourceModel& model) {
  const std::vector<EdgeOfObject> edges = edgesOf(model);
  std::vector<std::size_t> open(model.objects.size(), 0);
  for (std::size_t start = 0; start < edges.size();) {
    std::size_t end = start + 1;
    while (end < edges.size() && edges[end][0] == edges[start][0] &&
           edges[end][1] == edges[start][1])
      ++end;
    if (end - start == 1) ++open[static_cast<std::size_t>(edges[start][2])];
    start = end;
  }
  std::vector<OpenBody> bodies;
  for (std::size_t i = 0; i < open.size(); ++i)
    if (open[i] > 0 && !model.objects[i].isTerrain)
      bodies.push_back({model.objects[i].id, open[i]});
  return bodies;
}

}  // namespace Lumivane::Importers
