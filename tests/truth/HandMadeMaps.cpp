#include "truth/HandMadeMaps.h"

#include "truth/Invariants.h"
#include "truth/LongVector.h"

#include <map>
#include <utility>

namespace Lumivane::Truth {

using Visibility::Field;
using Visibility::Vector;
using Visibility::VisibleMap;

namespace {

void addEdges(VisibleMap& map, const std::vector<HandMadeCell>& cells) {
  std::map<std::pair<int, int>, int> left;
  for (std::size_t c = 0; c < cells.size(); ++c)
    for (const std::vector<int>& ring : cells[c].rings)
      for (std::size_t i = 0; i < ring.size(); ++i)
        left[{ring[i], ring[(i + 1) % ring.size()]}] = static_cast<int>(c);
  for (const auto& [ends, cell] : left) {
    const auto other = left.find({ends.second, ends.first});
    if (other != left.end() && ends.first > ends.second) continue;
    VisibleMap::Edge edge;
    edge.from = ends.first;
    edge.to = ends.second;
    edge.left = cell;
    edge.right = other == left.end() ? -1 : other->second;
    edge.kind = edge.right < 0 ? VisibleMap::EdgeKind::Field : VisibleMap::EdgeKind::Silhouette;
    map.edges.push_back(edge);
  }
}

}  // namespace

VisibleMap handMadeMap(Field field, const std::vector<Vector>& vertices,
                       const std::vector<HandMadeCell>& cells) {
  VisibleMap map;
  map.field = field;
  for (const Vector& vertex : vertices) map.vertices.push_back(narrow(unit(wide(vertex))));
  map.ringOffsets = {0};
  for (const HandMadeCell& made : cells) {
    VisibleMap::Cell cell;
    cell.label = made.label;
    cell.firstRing = map.ringOffsets.size() - 1;
    cell.ringCount = made.rings.size();
    cell.minDistance = made.label.object > 0 ? 1.0 : 0.0;
    cell.maxDistance = made.label.object > 0 ? 2.0 : 0.0;
    for (const std::vector<int>& ring : made.rings) {
      map.ringVertices.insert(map.ringVertices.end(), ring.begin(), ring.end());
      map.ringOffsets.push_back(map.ringVertices.size());
    }
    map.cells.push_back(cell);
  }
  addEdges(map, cells);
  for (std::size_t i = 0; i < map.cells.size(); ++i) {
    map.cells[i].solidAngle = solidAngleOf(map, i);
    if (field == Field::Hemisphere) map.cells[i].viewFactor = viewFactorOf(map, i);
  }
  return map;
}

VisibleMap cubeMap() {
  std::vector<Vector> corners;
  for (int i = 0; i < 8; ++i)
    corners.push_back(
        {(i & 1) != 0 ? 1.0 : -1.0, (i & 2) != 0 ? 1.0 : -1.0, (i & 4) != 0 ? 1.0 : -1.0});
  // Each ring runs counter-clockwise as the eye in the middle sees it.
  return handMadeMap(Field::Sphere, corners,
                     {{{1, 1, 1}, {{0, 1, 3, 2}}},
                      {{1, 2, 2}, {{4, 6, 7, 5}}},
                      {{1, 3, 3}, {{0, 4, 5, 1}}},
                      {{1, 4, 4}, {{2, 3, 7, 6}}},
                      {{1, 5, 5}, {{0, 2, 6, 4}}},
                      {{1, 6, 6}, {{1, 5, 7, 3}}}});
}

VisibleMap windowMap() {
  const std::vector<Vector> vertices{{0, 1, 0}, {0, 0, 1},  {0, -1, 0},  {0, 0, -1},
                                     {2, 1, 1}, {2, 1, -1}, {2, -1, -1}, {2, -1, 1}};
  return handMadeMap(Field::Hemisphere, vertices,
                     {{{1, 1, 1}, {{4, 5, 6, 7}}}, {{0, 0, 0}, {{0, 3, 2, 1}, {7, 6, 5, 4}}}});
}

}  // namespace Lumivane::Truth
